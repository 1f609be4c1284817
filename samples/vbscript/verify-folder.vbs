' Verifies the signatures of a folder (*.p7s), and writes a report for people: what is wrong with each, and what to do.
'   cscript //nologo verify-folder.vbs PROFILE FOLDER REPORT.html [/lang:en]
' The signature NAME.p7s stands beside its document if there is a file NAME, and contains it otherwise.
' Exit code: 0 all are good, or good with remarks, 1 some are not, 2 wrong arguments.
Option Explicit

Const Field_Issuer = 2
Const Field_Subject = 4
Const Flag_Verify_Pkcs7 = 1
Const Flag_Verify_Detached = 2
Const VerifiedWithRemarks = &hE0700019

Dim language, given, quivo, files, isWine, report, verdicts(2), walks, file
ReadArguments 3, 3
Set files = CreateObject("Scripting.FileSystemObject")
isWine = files.FileExists(files.GetSpecialFolder(1) & "\winecfg.exe")
walks = True

On Error Resume Next
Set quivo = CreateObject("TAVL.QUIVO")
Check T("Модуль не зарегистрирован (см. doctor.vbs)", "The module is not registered (see doctor.vbs)")
quivo.Initialize given(0), 0
Check T("Сеанс не открыт", "The session cannot be opened")

Set report = files.CreateTextFile(given(2), True)
Check T("Отчёт не создан", "The report cannot be written")
BeginReport
For Each file In files.GetFolder(given(1)).Files
  If LCase(files.GetExtensionName(file.Name)) = "p7s" Then VerifyOne file.Path
Next
Check T("Папка не прочитана", "The folder cannot be read")
EndReport
quivo.Uninitialize
If verdicts(2) > 0 Then WScript.Quit 1

Sub VerifyOne(path)
  Dim param, document, results, code, statuses, words, i
  On Error Resume Next
  Set param = CreateObject("TAVL.VerifyParam")
  param.flag = Flag_Verify_Pkcs7
  param.info = Field_Issuer + Field_Subject
  document = Left(path, Len(path) - 4)
  If files.FileExists(document) Then
    param.flag = Flag_Verify_Pkcs7 + Flag_Verify_Detached
  Else
    document = ""
  End If
  ' No file is a null string; Wine's host cannot pass one, and the engine there takes the device NUL for the same.
  If isWine Then
    If document = "" Then document = "NUL"
    quivo.StrVerifyFile param, document, path, "NUL", results
  ElseIf document = "" Then
    quivo.StrVerifyFile param, vbNullString, path, vbNullString, results
  Else
    quivo.StrVerifyFile param, document, path, vbNullString, results
  End If
  ' A verification that fails gives its results all the same.
  code = Err.Number
  Err.Clear
  If IsArray(results) Then
    statuses = Elements(results)
    If IsEmpty(statuses) Then walks = False
  End If

  words = Explain(code)
  WScript.Echo files.GetFileName(path) & ": " & words(0)
  verdicts(Level(code)) = verdicts(Level(code)) + 1
  report.WriteLine "<section class='" & Mark(code) & "'><h2>" & Html(files.GetFileName(path)) & "</h2><table>"
  report.WriteLine "<tr><th>" & T("Кто подписал", "Signer") & "<th>" & T("Когда, UTC", "When, UTC") & "<th>" & _
                   T("Что с подписью", "Verdict") & "<th>" & T("Что делать", "What to do")
  If IsEmpty(statuses) Then
    WriteRow "", "", code
  ElseIf UBound(statuses) < 0 Then
    WriteRow "", "", code
  Else
    For i = 0 To UBound(statuses)
      If statuses(i).cert Is Nothing Then
        WriteRow "", statuses(i).time, statuses(i).status
      Else
        WriteRow statuses(i).cert.subject, statuses(i).time, statuses(i).status
      End If
    Next
  End If
  report.WriteLine "</table></section>"
End Sub

Sub WriteRow(signer, time, code)
  Dim words
  words = Explain(code)
  report.WriteLine "<tr><td>" & Html(signer) & "<td>" & time & "<td class='" & Mark(code) & "'>" & Html(words(0)) & "<td>" & _
      Html(words(1))
End Sub

Sub BeginReport
  report.WriteLine "<!DOCTYPE html><html lang='" & language & "'><meta charset='windows-1251'><title>" & _
      T("Проверка подписей", "Signatures") & "</title><style>"
  report.WriteLine "body{font:15px/1.4 'Segoe UI',Arial,sans-serif;margin:2em auto;max-width:60em;color:#222;background:#f4f5f7}"
  report.WriteLine "h1{font-size:1.5em;margin-bottom:0}.about{color:#667}"
  report.WriteLine "section{background:#fff;border-left:6px solid;border-radius:4px;margin:1em 0;padding:.6em 1em}"
  report.WriteLine "section.good{border-color:#2a8a43}section.remark{border-color:#d99a00}section.bad{border-color:#c0392b}"
  report.WriteLine "h2{font-size:1.05em;margin:.2em 0}table{border-collapse:collapse;width:100%;table-layout:fixed}"
  report.WriteLine "th{text-align:left;color:#667;font-weight:normal;font-size:.85em}td,th{padding:.25em 1em .25em 0;vertical-align:top}"
  report.WriteLine "th:nth-child(1){width:38%}th:nth-child(2){width:9em}th:nth-child(3){width:21%}"
  report.WriteLine "td.good{color:#2a8a43}td.remark{color:#9a6d00}td.bad{color:#c0392b}"
  report.WriteLine "</style><h1>" & T("Проверка подписей", "Signatures") & "</h1><p class='about'>" & Html(given(1)) & ", " & _
      Now & "</p>"
End Sub

Sub EndReport
  Dim text
  text = T("Верны: ", "Good: ") & 0 + verdicts(0) & T(", с замечаниями: ", ", with remarks: ") & 0 + verdicts(1) & _
         T(", неверны: ", ", bad: ") & 0 + verdicts(2)
  WScript.Echo text
  report.WriteLine "<p>" & text & "</p>"
  If Not walks Then
    text = T("Данный сервер сценариев не читает массивы объектов: каждый файл оценён в целом.", _
             "This script host walks no arrays of objects: each file is judged as a whole.")
    WScript.Echo text
    report.WriteLine "<p>" & text & "</p>"
  End If
  report.WriteLine "</html>"
  report.Close
End Sub

' 0 good, 1 good with remarks, 2 bad.
Function Level(code)
  Level = 2
  If code = 0 Then Level = 0
  If code = VerifiedWithRemarks Then Level = 1
  Select Case code And &hFFFF&
    Case &h702F, &h7060, &h7061
      Level = 1
  End Select
End Function

Function Mark(code)
  Dim marks
  marks = Array("good", "remark", "bad")
  Mark = marks(Level(code))
End Function

' What a code means to a person, and what the person can do. Only its low half is the same in the status of a signature and
' in the failure of a call. A code that is not here has the engine's text.
Function Explain(code)
  Select Case code And &hFFFF&
    Case &h7010
      Explain = Array(T("Файл повреждён или это не подпись", "The file is damaged, or is not a signature"), _
                      T("Попросите прислать файл снова", "Ask for the file again"))
    Case &h7011
      Explain = Array(T("В файле нет подписи", "The file has no signature"), _
                      T("Попросите отправителя подписать документ", "Ask the sender to sign the document"))
    Case &h7013
      Explain = Array(T("Нет подписанного документа", "The signed document is missing"), _
                      T("Положите документ рядом с подписью", "Put the document beside its signature"))
    Case &h7014
      Explain = Array(T("Подписан другой документ", "Another document was signed"), _
                      T("Найдите документ, к которому относится подпись", "Find the document that the signature belongs to"))
    Case &h7021
      Explain = Array(T("Документ или подпись изменены", "The document or the signature was changed"), _
                      T("Не пользуйтесь документом; попросите прислать его и подпись снова", _
                        "Do not rely on the document; ask for it and the signature again"))
    Case &h7022
      Explain = Array(T("Нет сертификата подписавшего", "The signer's certificate is not at hand"), _
                      T("Попросите сертификат и добавьте его в справочник", "Ask for the certificate and add it to the store"))
    Case &h7023
      Explain = Array(T("Сертификат выдан неизвестным центром", "An unknown authority issued the certificate"), _
                      T("Если центру можно доверять, добавьте его сертификат в справочник", _
                        "If the authority can be trusted, add its certificate to the store"))
    Case &h7024
      Explain = Array(T("Срок сертификата истёк", "The certificate has expired"), _
                      T("Попросите подписать документ действующим сертификатом", "Ask for a signature with a valid certificate"))
    Case &h7025
      Explain = Array(T("Срок сертификата не наступил", "The certificate is not yet valid"), _
                      T("Проверьте часы компьютера", "Check the clock of this computer"))
    Case &h7026
      Explain = Array(T("Сертификат отозван", "The certificate is revoked"), _
                      T("Не доверяйте подписи; спросите подписавшего другим путём", _
                        "Do not trust the signature; ask the signer by other means"))
    Case &h7027
      Explain = Array(T("Цепочка сертификатов не прошла проверку", "The chain of certificates is broken"), _
                      T("Сообщите администратору", "Report it to the administrator"))
    Case &h7028
      Explain = Array(T("Сертификат не предназначен для подписи", "The certificate is not meant for signatures"), _
                      T("Попросите подписать документ другим сертификатом", "Ask for a signature with another certificate"))
    Case &h702E
      Explain = Array(T("Неизвестный алгоритм", "Unknown algorithm"), _
                      T("Обновите криптографическую библиотеку", "Update the engine"))
    Case &h702F
      Explain = Array(T("Подписано вне срока действия ключа", "Signed outside of the period of the key"), _
                      T("Спросите подписавшего, когда он подписал документ", "Ask the signer when the document was signed"))
    Case &h7043
      Explain = Array(T("Список отзыва подделан", "A revocation list is forged"), _
                      T("Удалите список и получите его от центра (refresh-lists)", _
                        "Remove the list and get the authority's (refresh-lists)"))
    Case &h7049
      Explain = Array(T("Список отзыва непригоден", "A revocation list cannot be used"), _
                      T("Получите список от центра (refresh-lists)", "Get the list from the authority (refresh-lists)"))
    Case &h7060
      Explain = Array(T("Слабый алгоритм или короткий ключ", "Weak algorithm or short key"), _
                      T("Попросите в будущем подписывать более стойким ключом", "Ask for a stronger key in future"))
    Case &h7061
      Explain = Array(T("Списки отзыва не охватывают сертификат", "The revocation lists do not cover the certificate"), _
                      T("Обновите списки отзыва (refresh-lists)", "Refresh the revocation lists (refresh-lists)"))
    Case Else
      Explain = Array(TextOf(code), T("Сообщите администратору этот код", "Report this code to the administrator"))
  End Select
  If code = 0 Then Explain = Array(T("Подпись верна", "The signature is good"), T("Ничего делать не нужно", "Nothing to do"))
  If code = VerifiedWithRemarks Then Explain = Array( _
    T("Список отзыва устарел", "A revocation list is out of date"), _
        T("Обновите списки отзыва (refresh-lists)", "Refresh the revocation lists (refresh-lists)"))
End Function

Function Html(text)
  Html = Replace(Replace(Replace(text, "&", "&amp;"), "<", "&lt;"), ">", "&gt;")
End Function

Sub Usage
  WScript.Echo T("Проверяет подписи папки и пишет отчёт:", "Verifies the signatures of a folder and writes a report:")
  WScript.Echo "  cscript //nologo verify-folder.vbs " & T("ПРОФИЛЬ ПАПКА ОТЧЁТ.html", "PROFILE FOLDER REPORT.html") & _
      " [/lang:en]"
End Sub

' The elements of an array that the module returned, in one that a script can index. Nothing if this host cannot walk
' such arrays: Wine's cannot.
Function Elements(found)
  Dim element, result
  On Error Resume Next
  result = Array()
  For Each element In found
    If Err.Number <> 0 Then Exit For
    ReDim Preserve result(UBound(result) + 1)
    If IsObject(element) Then
      Set result(UBound(result)) = element
    Else
      result(UBound(result)) = element
    End If
  Next
  If Err.Number = 0 Then Elements = result
  Err.Clear
End Function

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
