' Signs, encrypts and decrypts a file by the older object, which has no parameter objects and talks to the user in windows.
'   cscript //nologo old-object.vbs PROFILE FILE FOLDER MAIL [/lang:en]
' Writes NAME.p7s (signed), NAME.p7e (encrypted to who has the MAIL address) and NAME.opened (decrypted again) into FOLDER.
' Exit code: 0 all written, 1 not all, 2 wrong arguments.
Option Explicit

Dim language, given, pkiobj, files, target
ReadArguments 4, 4
Set files = CreateObject("Scripting.FileSystemObject")
target = given(2) & "\" & files.GetFileName(given(1))

On Error Resume Next
Set pkiobj = CreateObject("TAVL.pkiobj")
Check T("Модуль не зарегистрирован (см. doctor.vbs)", "The module is not registered (see doctor.vbs)")
pkiobj.Init given(0)
Check T("Сеанс не открыт", "The session cannot be opened")

' A script cannot tell every failure from success: a cancelled window and a positive code of the engine succeed without a
' result. That is why the files are looked for. IsSigned answers in the same way, so a script learns nothing from it.
pkiobj.Sign given(1), target & ".p7s", 0
Check T("Не подписан", "Not signed")
Look target & ".p7s"

' A recipient needs a certificate for both signatures and key encipherment: others are not found by an address.
pkiobj.SetRecipients "SMTP:" & given(3)
Check given(3)
pkiobj.Encrypt given(1), target & ".p7e"
Check T("Не зашифрован", "Not encrypted")
Look target & ".p7e"

' The last argument keeps the results sheet away. A file that is marked read-only is so no longer afterwards.
pkiobj.Unencrypt target & ".p7e", target & ".opened", 0
Check T("Не расшифрован", "Not decrypted")
Look target & ".opened"
pkiobj.Uninit

Sub Look(path)
  If Not files.FileExists(path) Then
    WScript.Echo T("Отказано или отменено, файла нет: ", "Refused or cancelled, there is no ") & path
    WScript.Quit 1
  End If
  WScript.Echo T("Записан ", "Written: ") & path
End Sub

' Ends the script if the statement before failed. The object itself has shown the user why.
Sub Check(what)
  Dim code
  code = Err.Number
  If code = 0 Then Exit Sub
  WScript.Echo what & ": " & Err.Description & " (0x" & Hex(code) & ")"
  WScript.Quit 1
End Sub

Sub Usage
  WScript.Echo T("Работает с файлом через прежний объект:", "Works on a file by the older object:")
  WScript.Echo "  cscript //nologo old-object.vbs " & T("ПРОФИЛЬ ФАЙЛ ПАПКА ПОЧТА", "PROFILE FILE FOLDER MAIL") & " [/lang:en]"
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

' The text in the language of the messages.
Function T(russian, english)
  If language = "en" Then T = english Else T = russian
End Function
