' Signs a document in the ways that a script has: files by their names, and bytes in memory.
'   cscript //nologo sign.vbs PROFILE DOCUMENT FOLDER
' PROFILE names the keys of who signs; the signatures are written into FOLDER.
Option Explicit

Const Flag_Sign_Pkcs7 = 1
Const Flag_Sign_Detached = 2
Const Flag_Sign_SendSert = 8
Const Flag_Init_Nocrlupdate = 1
Const Flag_Init_Noldap = 4
' No file. On Windows a null string (vbNullString) says the same; Wine's script hosts cannot pass one.
Const NoFile = "NUL"

Dim quivo, files, document, folder, param, bytes, signature

document = WScript.Arguments(1)
folder = WScript.Arguments(2) & "\"
Set files = CreateObject("Scripting.FileSystemObject")

' From here on a failed call is met by the Check behind it.
On Error Resume Next
Set quivo = CreateObject("TAVL.QUIVO")
Check "The module is not registered"

quivo.Initialize WScript.Arguments(0), Flag_Init_Nocrlupdate + Flag_Init_Noldap
Check "The session cannot be opened"

Set param = CreateObject("TAVL.SignParam")

' Files: a signature that contains the document, and one that stands beside it. Str methods read the file as a stream,
' so its size does not matter.
param.flag = Flag_Sign_Pkcs7 + Flag_Sign_SendSert
quivo.SignFile param, document, NoFile, folder & "attached.p7s"
Check "SignFile"
WScript.Echo "SignFile    attached.p7s, contains the document"

param.flag = Flag_Sign_Pkcs7 + Flag_Sign_SendSert + Flag_Sign_Detached
quivo.StrSignFile param, document, NoFile, folder & "detached.p7s"
Check "StrSignFile"
WScript.Echo "StrSignFile detached.p7s, stands beside the document"

' Bytes in the form of scripts: an array with a Byte in each element. The result has the same form.
bytes = ReadBytes(document)
Check "The document cannot be read"
quivo.SignMem param, bytes, Empty, signature
Check "SignMem"
WriteBytes folder & "bytes.p7s", signature
Check "The signature cannot be written"
WScript.Echo "SignMem     bytes.p7s, of " & UBound(bytes) + 1 & " bytes in an array of VARIANTs"

quivo.Uninitialize
Check "The session cannot be closed"

' Ends the script with the engine's text when the statement before failed.
Sub Check(what)
  If Err.Number = 0 Then Exit Sub
  Dim code, text
  code = Err.Number
  text = Err.Description
  Err.Clear
  If IsObject(quivo) Then quivo.GetPKIErrorTextVBS code, text
  WScript.Echo what & ": 0x" & Hex(code) & " " & text
  WScript.Quit 1
End Sub

' With a code page of one byte a character, each character of the text is one byte of the file.
Function ReadBytes(path)
  Dim file, text, result, i
  Set file = files.OpenTextFile(path)
  text = file.ReadAll
  file.Close
  result = Array()
  ReDim result(Len(text) - 1)
  For i = 1 To Len(text)
    result(i - 1) = CByte(Asc(Mid(text, i, 1)))
  Next
  ReadBytes = result
End Function

Sub WriteBytes(path, bytes)
  Dim file, i
  Set file = files.CreateTextFile(path, True)
  For i = 0 To UBound(bytes)
    file.Write Chr(bytes(i))
  Next
  file.Close
End Sub
