' Adds a signature to a document that carries one already.
'   cscript //nologo countersign.vbs PROFILE SIGNED RESULT
Option Explicit

Const Flag_Sign_Pkcs7 = 1
Const Flag_Sign_SendSert = 8
' No file. On Windows a null string (vbNullString) says the same; Wine's script hosts cannot pass one.
Const NoFile = "NUL"

Dim quivo, param

On Error Resume Next
Set quivo = CreateObject("TAVL.QUIVO")
Check "The module is not registered"
quivo.Initialize WScript.Arguments(0), 0
Check "The session cannot be opened"

' The document is in the signed file: no data is given beside it.
Set param = CreateObject("TAVL.SignParam")
param.flag = Flag_Sign_Pkcs7 + Flag_Sign_SendSert
quivo.SignFile param, NoFile, WScript.Arguments(1), WScript.Arguments(2)
Check "SignFile"
WScript.Echo "SignFile: a signature is added"
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
