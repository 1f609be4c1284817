' Decrypts a file, and reports whose certificate its sender named, if any.
'   cscript //nologo decrypt.vbs PROFILE ENCRYPTED RESULT
Option Explicit

Const Flag_Decrypt_Pkcs7 = 1
Const Field_Subject = 4

Dim quivo, param, sender

On Error Resume Next
Set quivo = CreateObject("TAVL.QUIVO")
Check "The module is not registered"
quivo.Initialize WScript.Arguments(0), 0
Check "The session cannot be opened"

Set param = CreateObject("TAVL.DecryptParam")
param.flag = Flag_Decrypt_Pkcs7
param.info = Field_Subject
Set sender = quivo.StrDecryptFile(param, WScript.Arguments(1), WScript.Arguments(2))
Check "StrDecryptFile"
If sender.subject = "" Then
  WScript.Echo "StrDecryptFile: decrypted"
Else
  WScript.Echo "StrDecryptFile: decrypted, sent by " & sender.subject
End If
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
