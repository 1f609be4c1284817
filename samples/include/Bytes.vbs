' Bytes in the form of scripts: an array with a Byte in each element. The file is in Windows-1251.
' Each character of a text, and of a file read as a text, is one byte of the ANSI code page.
' On Windows, ADODB.Stream reads and writes arrays of bytes, which the methods take as they are.

Function BytesOf(text)
  Dim result, i
  result = Array()
  If Len(text) > 0 Then ReDim result(Len(text) - 1)
  For i = 1 To Len(text)
    result(i - 1) = CByte(Asc(Mid(text, i, 1)))
  Next
  BytesOf = result
End Function

Function TextOf(bytes)
  Dim i
  TextOf = ""
  ' A result of no bytes is Empty.
  If Not IsArray(bytes) Then Exit Function
  For i = 0 To UBound(bytes)
    TextOf = TextOf & Chr(bytes(i))
  Next
End Function

Function ReadBytes(path)
  Dim files, file
  Set files = CreateObject("Scripting.FileSystemObject")
  If files.GetFile(path).Size = 0 Then
    ReadBytes = Array()
    Exit Function
  End If
  Set file = files.OpenTextFile(path)
  ReadBytes = BytesOf(file.ReadAll)
  file.Close
End Function

Sub WriteBytes(path, bytes)
  Dim file
  Set file = CreateObject("Scripting.FileSystemObject").CreateTextFile(path, True)
  file.Write TextOf(bytes)
  file.Close
End Sub
