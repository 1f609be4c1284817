
' What every test in this language ends with: counted checks. It stands behind the test, so that line numbers stay the test's.
Dim checks_done, checks_failed

' A check that finds an error pending has failed too: a statement before it did not run to its end.
Sub ok(condition, what)
  checks_done = checks_done + 1
  ' Counted first and taken back at the end: an error in the check itself would leave the procedure.
  checks_failed = checks_failed + 1
  If Err.Number <> 0 Then
    WScript.Echo "FAILED: " & what & ": error " & Hex(Err.Number) & " " & Err.Description
    Err.Clear
    Exit Sub
  End If
  If Not condition Then
    WScript.Echo "FAILED: " & what
    Exit Sub
  End If
  checks_failed = checks_failed - 1
End Sub

' Numbers are equal by value, whatever their width; everything else is equal in type and value.
Sub equal(actual, expected, what)
  If IsArray(actual) Or IsObject(actual) Then
    ok False, what & ": of type " & VarType(actual) & ", not '" & expected & "'"
  ElseIf VarType(actual) <> VarType(expected) And Not (is_number(actual) And is_number(expected)) Then
    ok False, what & ": '" & actual & "' of type " & VarType(actual) & ", not '" & expected & "' of type " & VarType(expected)
  ElseIf IsEmpty(actual) Then
    ok True, what
  Else
    ok actual = expected, what & ": '" & actual & "', not '" & expected & "'"
  End If
End Sub

Function is_number(value)
  Select Case VarType(value)
    Case 2, 3, 4, 5, 17
      is_number = True
    Case Else
      is_number = False
  End Select
End Function

' The statement before this one was refused with this number.
Sub refused(number, what)
  Dim actual
  actual = Err.Number
  Err.Clear
  ok actual = number, what & ": error " & Hex(actual) & ", not " & Hex(number)
End Sub

' The statement before this one was refused with a code of the engine's, whichever.
Sub refused_by_engine(what)
  Dim actual
  actual = Err.Number
  Err.Clear
  ok &hE0690000 = (actual And &hFFFF0000), what & ": error " & Hex(actual) & ", not one of the engine's"
End Sub

' An array of single bytes, the form in which a script gives and takes data.
Function bytes_of(text)
  Dim result, i
  result = Array()
  ReDim result(Len(text) - 1)
  For i = 1 To Len(text)
    result(i - 1) = CByte(Asc(Mid(text, i, 1)))
  Next
  bytes_of = result
End Function

Function text_of(bytes)
  Dim i
  text_of = ""
  For i = 0 To UBound(bytes)
    text_of = text_of & Chr(bytes(i))
  Next
End Function

' Without this marker the runner fails the test, whatever was printed before.
Sub finish
  If Err.Number <> 0 Then ok True, "the last statements"
  WScript.Echo "finished: " & 0 + checks_done & " checks, " & 0 + checks_failed & " failed"
End Sub
