' Decrypts a file, and names its sender if the message does. Nothing proves who the sender is: only a signature does.
'   cscript //nologo decrypt.vbs PROFILE ENCRYPTED RESULT [/lang:en]
' Exit code: 0 decrypted, 1 not decrypted, 2 wrong arguments.
Option Explicit

Const Field_Subject = 4
Const Flag_Decrypt_Pkcs7 = 1

Dim language, given, quivo, param, sender
ReadArguments 3, 3

On Error Resume Next
Set quivo = CreateObject("TAVL.QUIVO")
Check T("Модуль не зарегистрирован (см. doctor.vbs)", "The module is not registered (see doctor.vbs)")
quivo.Initialize given(0), 0
Check T("Сеанс не открыт", "The session cannot be opened")

Set param = CreateObject("TAVL.DecryptParam")
param.flag = Flag_Decrypt_Pkcs7
param.info = Field_Subject
Set sender = quivo.StrDecryptFile(param, given(1), given(2))
Check T("Не расшифрован", "Not decrypted")
If sender.subject = "" Then
  WScript.Echo T("Расшифрован, отправитель не назван", "Decrypted, the sender is not named")
Else
  WScript.Echo T("Расшифрован, отправитель: ", "Decrypted, the sender is ") & sender.subject
End If
quivo.Uninitialize

Sub Usage
  WScript.Echo T("Расшифровывает файл:", "Decrypts a file:")
  WScript.Echo "  cscript //nologo decrypt.vbs " & T("ПРОФИЛЬ ЗАШИФРОВАННЫЙ РЕЗУЛЬТАТ", "PROFILE ENCRYPTED RESULT") & _
      " [/lang:en]"
End Sub

' The arguments but the options go into `given`. Without the right number of them the script shows how it is used.
Sub ReadArguments(least, most)
  Dim i, argument
  language = "ru"
  given = Array()
  For i = 0 To WScript.Arguments.Count - 1
    argument = WScript.Arguments(i)
    If LCase(argument) = "/lang:en" Then
      language = "en"
    ElseIf Left(argument, 1) = "/" And LCase(argument) <> "/lang:ru" Then
      most = -1
    ElseIf LCase(argument) <> "/lang:ru" Then
      ReDim Preserve given(UBound(given) + 1)
      given(UBound(given)) = argument
    End If
  Next
  If UBound(given) + 1 >= least And UBound(given) < most Then Exit Sub
  Usage
  WScript.Quit 2
End Sub

' Ends the script if the statement before failed.
Sub Check(what)
  Dim code
  code = Err.Number
  If code = 0 Then Exit Sub
  WScript.Echo what & ": " & TextOf(code)
  WScript.Quit 1
End Sub

' A failure in words: of the module's codes the engine knows the text.
Function TextOf(code)
  Dim text
  text = Err.Description
  Err.Clear
  If (code And &hFFFE0000) = &hE0680000 Then quivo.GetPKIErrorTextVBS code, text
  TextOf = text & " (0x" & Hex(code) & ")"
End Function

' The text in the language of the messages.
Function T(russian, english)
  If language = "en" Then T = english Else T = russian
End Function
