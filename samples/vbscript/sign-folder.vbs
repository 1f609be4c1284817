' Signs every file of a folder. The signature of NAME is written beside it as NAME.p7s; files that have one are passed over.
'   cscript //nologo sign-folder.vbs PROFILE FOLDER REPORT [/lang:en]
' REPORT becomes a table: file, size, result, separated by tabs.
' Exit code: 0 all is signed, 1 something is not, 2 wrong arguments.
Option Explicit

Const Flag_Sign_Pkcs7 = 1
Const Flag_Sign_Detached = 2
Const Flag_Sign_SendSert = 8

Dim language, given, quivo, param, files, isWine, names, report, i, failed, passed, result
ReadArguments 3, 3
Set files = CreateObject("Scripting.FileSystemObject")
isWine = files.FileExists(files.GetSpecialFolder(1) & "\winecfg.exe")

On Error Resume Next
Set quivo = CreateObject("TAVL.QUIVO")
Check T("Модуль не зарегистрирован (см. doctor.vbs)", "The module is not registered (see doctor.vbs)")
quivo.Initialize given(0), 0
Check T("Сеанс не открыт", "The session cannot be opened")

names = NamesToSign(given(1))
Check T("Папка не прочитана", "The folder cannot be read")
Set report = files.CreateTextFile(given(2), True)
Check T("Отчёт не создан", "The report cannot be written")

Set param = CreateObject("TAVL.SignParam")
param.flag = Flag_Sign_Pkcs7 + Flag_Sign_Detached + Flag_Sign_SendSert
report.WriteLine T("Подписание папки ", "Signing of the folder ") & given(1) & ", " & Now & ", " & given(0)
failed = 0
passed = 0
For i = 0 To UBound(names)
  result = SignOne(given(1) & "\" & names(i))
  WScript.Echo "[" & i + 1 & "/" & UBound(names) + 1 & "] " & names(i) & ": " & result
  report.WriteLine names(i) & vbTab & files.GetFile(given(1) & "\" & names(i)).Size & vbTab & result
Next
result = T("Подписано: ", "Signed: ") & UBound(names) + 1 - failed - passed & T(", пропущено: ", ", passed over: ") & passed & _
         T(", ошибок: ", ", failed: ") & failed
report.WriteLine result
report.Close
WScript.Echo result
quivo.Uninitialize
If failed > 0 Then WScript.Quit 1

' What became of one file, in words.
Function SignOne(path)
  On Error Resume Next
  If files.FileExists(path & ".p7s") Then
    SignOne = T("подпись уже есть", "has a signature already")
    passed = passed + 1
    Exit Function
  End If
  ' The Str form reads the file as a stream: its size does not matter. There is no signature to add to, so its name is a null
  ' string; Wine's host cannot pass one, and the engine there takes the device NUL for the same.
  If isWine Then
    quivo.StrSignFile param, path, "NUL", path & ".p7s"
  Else
    quivo.StrSignFile param, path, vbNullString, path & ".p7s"
  End If
  SignOne = T("подписан", "signed")
  If Err.Number = 0 Then Exit Function
  SignOne = TextOf(Err.Number)
  failed = failed + 1
End Function

' The names are collected before the first file is signed: then the folder grows.
Function NamesToSign(folder)
  Dim file, result
  result = Array()
  For Each file In files.GetFolder(folder).Files
    If LCase(files.GetExtensionName(file.Name)) <> "p7s" And LCase(file.Path) <> LCase(files.GetAbsolutePathName(given(2))) Then
      ReDim Preserve result(UBound(result) + 1)
      result(UBound(result)) = file.Name
    End If
  Next
  NamesToSign = result
End Function

Sub Usage
  WScript.Echo T("Подписывает все файлы папки:", "Signs every file of a folder:")
  WScript.Echo "  cscript //nologo sign-folder.vbs " & T("ПРОФИЛЬ ПАПКА ОТЧЁТ", "PROFILE FOLDER REPORT") & " [/lang:en]"
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
