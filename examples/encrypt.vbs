' Encrypts a file to the holders of certificates.
'   cscript //nologo encrypt.vbs PROFILE FILE RESULT CERTIFICATE...
Option Explicit

Const Flag_Encrypt_Pkcs7 = 1
Const Field_All = 524287

Dim quivo, param, receivers, i

On Error Resume Next
Set quivo = CreateObject("TAVL.QUIVO")
Check "The module is not registered"
quivo.Initialize WScript.Arguments(0), 0
Check "The session cannot be opened"

receivers = Array()
ReDim receivers(WScript.Arguments.Count - 4)
For i = 0 To UBound(receivers)
  Set receivers(i) = quivo.ParseCert(ReadBytes(WScript.Arguments(i + 3)), Field_All)
  Check WScript.Arguments(i + 3)
Next

' The objects are not held by Receivers when they come in an array of a script's: they live until the encryption is done.
Set param = CreateObject("TAVL.EncryptParam")
param.flag = Flag_Encrypt_Pkcs7
param.Receivers = receivers
Check "Receivers"
quivo.StrEncryptFile param, WScript.Arguments(1), WScript.Arguments(2)
Check "StrEncryptFile"
WScript.Echo "StrEncryptFile: encrypted to " & UBound(receivers) + 1
quivo.Uninitialize

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
  Set file = CreateObject("Scripting.FileSystemObject").OpenTextFile(path)
  text = file.ReadAll
  file.Close
  result = Array()
  ReDim result(Len(text) - 1)
  For i = 1 To Len(text)
    result(i - 1) = CByte(Asc(Mid(text, i, 1)))
  Next
  ReadBytes = result
End Function
