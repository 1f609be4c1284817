' Verifies a signed file, and tells of each signature.
'   cscript //nologo verify.vbs PROFILE SIGNED [DOCUMENT]
' DOCUMENT is given when the signature stands beside it. Ends with 1 when the signatures are not good.
Option Explicit

Const Flag_Verify_Pkcs7 = 1
Const Flag_Verify_Detached = 2
Const Field_Issuer = 2
Const Field_Subject = 4
' No file. On Windows a null string (vbNullString) says the same; Wine's script hosts cannot pass one.
Const NoFile = "NUL"

Dim quivo, param, document, results, status, code, text

On Error Resume Next
Set quivo = CreateObject("TAVL.QUIVO")
If Err.Number <> 0 Then Fail "The module is not registered", Err.Number
quivo.Initialize WScript.Arguments(0), 0
If Err.Number <> 0 Then Fail "The session cannot be opened", Err.Number

Set param = CreateObject("TAVL.VerifyParam")
param.flag = Flag_Verify_Pkcs7
param.info = Field_Issuer + Field_Subject
document = NoFile
If WScript.Arguments.Count > 2 Then
  document = WScript.Arguments(2)
  param.flag = Flag_Verify_Pkcs7 + Flag_Verify_Detached
End If

' A refused verification gives its results all the same: the number is kept, and told of at the end.
quivo.StrVerifyFile param, document, WScript.Arguments(1), NoFile, results
code = Err.Number
Err.Clear

For Each status In results
  quivo.GetPKIErrorTextVBS status.status, text
  If status.status = 0 Then text = "good"
  WScript.Echo "signed by " & status.cert.subject & ", " & status.time & " UTC: " & text
Next
' Wine's script host walks no arrays of objects; there the script tells of the signatures as a whole.
Err.Clear

If code <> 0 Then Fail "StrVerifyFile", code
WScript.Echo "StrVerifyFile: every signature is good"
quivo.Uninitialize

Sub Fail(what, code)
  Dim text
  text = Err.Description
  Err.Clear
  If IsObject(quivo) Then quivo.GetPKIErrorTextVBS code, text
  WScript.Echo what & ": 0x" & Hex(code) & " " & text
  WScript.Quit 1
End Sub
