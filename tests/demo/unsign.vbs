' Removes a signature from a signed file, or all of them, once they are verified.
'   cscript //nologo unsign.vbs PROFILE SIGNED RESULT [NUMBER]
' NUMBER counts from 0; without it all signatures are removed, and RESULT is the document.
Option Explicit

Const Flag_Verify_Pkcs7 = 1
Const Flag_Verify_DelSign = 4
Const Delete_All_Signs = -1
' No file. On Windows a null string (vbNullString) says the same; Wine's script hosts cannot pass one.
Const NoFile = "NUL"

Dim quivo, param, results

On Error Resume Next
Set quivo = CreateObject("TAVL.QUIVO")
Check "The module is not registered"
quivo.Initialize WScript.Arguments(0), 0
Check "The session cannot be opened"

Set param = CreateObject("TAVL.VerifyParam")
param.flag = Flag_Verify_Pkcs7 + Flag_Verify_DelSign
param.nSignToDelete = Delete_All_Signs
If WScript.Arguments.Count > 3 Then param.nSignToDelete = CLng(WScript.Arguments(3))
quivo.VerifyFile param, NoFile, WScript.Arguments(1), WScript.Arguments(2), results
Check "VerifyFile"
WScript.Echo "VerifyFile: removed"
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
