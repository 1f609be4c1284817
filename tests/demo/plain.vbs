' The parts of the demonstration for which Wine's script hosts need help: bytes in the plain form, and the signatures one by one.
' On Windows, ADODB.Stream reads and writes plain bytes, and For Each walks an array of objects.
'   plain.vbs sign PROFILE DOCUMENT RESULT     plain.vbs list PROFILE SIGNED
Option Explicit

Dim arrays, quivo, param, signature, results, content, status, i

Set arrays = CreateObject("TavlTests.Arrays")
Set quivo = CreateObject("TAVL.QUIVO")
quivo.Initialize WScript.Arguments(1), 0
If WScript.Arguments(0) = "sign" Then SignPlain Else List
quivo.Uninitialize

Sub SignPlain
  Set param = CreateObject("TAVL.SignParam")
  param.flag = 1 + 2 + 8
  quivo.SignMem param, arrays.load(WScript.Arguments(2)), Empty, signature
  arrays.save WScript.Arguments(3), signature
  WScript.Echo "SignMem     plain.p7s, of an array of bytes"
End Sub

Sub List
  Set param = CreateObject("TAVL.VerifyParam")
  param.flag = 1
  param.info = 4
  On Error Resume Next
  quivo.VerifyMem param, Empty, arrays.load(WScript.Arguments(2)), content, results
  Err.Clear
  On Error GoTo 0
  For i = 0 To arrays.count(results) - 1
    Set status = arrays.item(results, i)
    WScript.Echo i & ": " & status.cert.subject & ", " & status.time & " UTC: " & Verdict(status.status)
  Next
End Sub

Function Verdict(code)
  Dim text
  Verdict = "good"
  If code = 0 Then Exit Function
  quivo.GetPKIErrorTextVBS code, text
  Verdict = text
End Function
