' Refreshes the revocation lists: adds lists that lie in files, and lets the engine fetch what it can.
'   cscript //nologo refresh-lists.vbs PROFILE [FILE...] [/lang:en]
' Exit code: 0 refreshed, 1 some list was refused, 2 wrong arguments.
Option Explicit

Const Flag_Import_Crl = 4
Const Flag_Import_Update = 16

Dim language, given, quivo, import, text, failed, i
ReadArguments 1, 99

On Error Resume Next
Set quivo = CreateObject("TAVL.QUIVO")
Check T("Модуль не зарегистрирован (см. doctor.vbs)", "The module is not registered (see doctor.vbs)")
quivo.Initialize given(0), 0
Check T("Сеанс не открыт", "The session cannot be opened")

' With Update, a list that is older than the store's is passed over.
Set import = CreateObject("TAVL.ImportParam")
import.flag = Flag_Import_Crl + Flag_Import_Update
failed = 0
For i = 1 To UBound(given)
  quivo.ImportFile import, given(i)
  If Err.Number = 0 Then
    WScript.Echo given(i) & ": " & T("список принят", "accepted")
  Else
    failed = failed + 1
    WScript.Echo given(i) & ": " & TextOf(Err.Number)
  End If
Next

' An engine that fails but has something to report succeeds: only the text says what happened, so it is always shown.
text = quivo.UpdateCrl()
Check T("Списки не обновлены", "The lists are not refreshed")
WScript.Echo text
quivo.Uninitialize
If failed > 0 Then WScript.Quit 1

Sub Usage
  WScript.Echo T("Обновляет списки отозванных сертификатов:", "Refreshes the revocation lists:")
  WScript.Echo "  cscript //nologo refresh-lists.vbs " & T("ПРОФИЛЬ [ФАЙЛ...]", "PROFILE [FILE...]") & " [/lang:en]"
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
