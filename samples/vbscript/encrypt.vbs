' Encrypts a file to recipients, who are named by a part of the subject of their certificates, such as a mail address.
'   cscript //nologo encrypt.vbs PROFILE FILE RESULT PART [PART...] [/lang:en]
' Each part has to fit exactly one certificate of the store: where it fits none or several, nothing is encrypted.
' Exit code: 0 encrypted, 1 not encrypted, 2 wrong arguments.
Option Explicit

Const Field_Subject = 4
Const Flag_Encrypt_Pkcs7 = 1
Const Flag_Encrypt_PartialSubject = 512

Dim language, given, quivo, param, receivers, i
ReadArguments 4, 99

On Error Resume Next
Set quivo = CreateObject("TAVL.QUIVO")
Check T("Модуль не зарегистрирован (см. doctor.vbs)", "The module is not registered (see doctor.vbs)")
quivo.Initialize given(0), 0
Check T("Сеанс не открыт", "The session cannot be opened")

' A receiver can be a search: a certificate of which only the subject is stated.
receivers = Array()
ReDim receivers(UBound(given) - 3)
For i = 0 To UBound(receivers)
  Set receivers(i) = CreateObject("TAVL.Certificate")
  receivers(i).fields = Field_Subject
  receivers(i).subject = given(i + 3)
Next

' Receivers holds no references to the objects of a script's array: they live until the file is encrypted.
Set param = CreateObject("TAVL.EncryptParam")
param.flag = Flag_Encrypt_Pkcs7 + Flag_Encrypt_PartialSubject
param.Receivers = receivers
Check "Receivers"
quivo.StrEncryptFile param, given(1), given(2)
Check T("Не зашифрован", "Not encrypted")
WScript.Echo T("Зашифрован, получателей: ", "Encrypted, recipients: ") & UBound(receivers) + 1
quivo.Uninitialize

Sub Usage
  WScript.Echo T("Шифрует файл получателям, сертификаты которых находит по части имени:", _
                 "Encrypts a file to recipients found by a part of their names:")
  WScript.Echo "  cscript //nologo encrypt.vbs " & T("ПРОФИЛЬ ФАЙЛ РЕЗУЛЬТАТ ЧАСТЬ [ЧАСТЬ...]", _
                                                     "PROFILE FILE RESULT PART [PART...]") & " [/lang:en]"
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
