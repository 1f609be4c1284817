' Shows what is in a certificate.
'   cscript //nologo certificate.vbs FILE [/lang:en]
' FILE is a certificate in DER or PEM. No profile is needed, and none is asked whether the certificate can be trusted.
' Exit code: 0 shown, 1 not a certificate, 2 wrong arguments.
Option Explicit

Const Field_All = &h7FFFF

Dim language, given, quivo, certificate, uses, i
ReadArguments 1, 1

On Error Resume Next
Set quivo = CreateObject("TAVL.QUIVO")
Check T("Модуль не зарегистрирован (см. doctor.vbs)", "The module is not registered (see doctor.vbs)")
quivo.InitMinimal
Check "InitMinimal"
Set certificate = quivo.ParseCert(ReadBytes(given(0)), Field_All)
Check T("Не сертификат: ", "Not a certificate: ") & given(0)

Show T("Владелец", "Subject"), certificate.subject
Show T("Издатель", "Issuer"), certificate.issuer
Show T("Номер", "Serial number"), certificate.serialNumber
Show T("Действует с", "Valid from"), Moment(certificate.notBefore)
Show T("Действует по", "Valid to"), Moment(certificate.notAfter) & Remaining(certificate.notAfter)
' A certificate without a period of its key reads as 1970.
If certificate.notAfterPrivate > DateSerial(1970, 1, 1) Then
  Show T("Ключ по", "Key valid to"), Moment(certificate.notAfterPrivate)
End If
Show T("Алгоритм", "Algorithm"), certificate.algorithm
Show T("Ключ", "Key identifier"), certificate.keyId
Show T("Отпечаток", "Hash"), HashDigits
Show T("Назначение", "Key usage"), Usages(certificate.keyUsage)
Show T("Почта", "Mail"), certificate.subjectAltName.emailAddress
Show "DNS", certificate.subjectAltName.DNS
ShowList T("Применение", "Extended usage"), certificate.extKeyUsage
ShowList T("Политика", "Policy"), certificate.policies
ShowList T("Расширение", "Extension"), certificate.extensions

Sub Show(name, value)
  If value <> "" Then WScript.Echo name & ": " & value
End Sub

Sub ShowList(name, list)
  Dim items, i
  items = Elements(list)
  If IsEmpty(items) Then
    Show name, T("(данный сервер сценариев не читает массивы объектов и строк)", _
                 "(this script host walks no arrays of objects and strings)")
    Exit Sub
  End If
  For i = 0 To UBound(items)
    If IsObject(items(i)) Then
      Show name, items(i).oid
    Else
      Show name, items(i)
    End If
  Next
End Sub

Function Usages(bits)
  Dim names, i, bit
  names = Array(T("подпись", "digital signature"), T("неотрекаемость", "non-repudiation"), _
                T("шифрование ключей", "key encipherment"), _
                T("шифрование данных", "data encipherment"), T("согласование ключей", "key agreement"), _
                T("подпись сертификатов", "certificate signing"), T("подпись списков отзыва", "revocation list signing"), _
                T("только шифрование", "encipher only"), T("только расшифрование", "decipher only"))
  bit = 1
  For i = 0 To UBound(names)
    If bits And bit Then
      If Usages <> "" Then Usages = Usages & ", "
      Usages = Usages & names(i)
    End If
    bit = bit * 2
  Next
End Function

Function Moment(time)
  Moment = Year(time) & "-" & Two(Month(time)) & "-" & Two(Day(time)) & " " & Two(Hour(time)) & ":" & Two(Minute(time)) & " UTC"
End Function

Function Two(number)
  Two = Right("0" & number, 2)
End Function

Function Remaining(time)
  If time < Now Then
    Remaining = T(" - истёк", " - expired")
  Else
    Remaining = T(", осталось дней: ", ", days left: ") & Int(time - Now)
  End If
End Function

' The hash in hexadecimal digits. No script of this language can index an array of bytes by itself.
Function HashDigits
  Dim element
  Set element = WScript.CreateObject("Msxml2.DOMDocument.3.0").createElement("bytes")
  element.dataType = "bin.hex"
  element.nodeTypedValue = certificate.certHash
  HashDigits = UCase(element.text)
End Function

Sub Usage
  WScript.Echo T("Показывает содержимое сертификата:", "Shows what is in a certificate:")
  WScript.Echo "  cscript //nologo certificate.vbs " & T("ФАЙЛ", "FILE") & " [/lang:en]"
End Sub

' The bytes of a file as the module takes them. Where there is no ADODB.Stream, as under Wine, they are read as letters of the
' ANSI code page, each of which is a byte.
Function ReadBytes(path)
  Dim stream, text, result, i
  On Error Resume Next
  Set stream = CreateObject("ADODB.Stream")
  stream.Type = 1
  stream.Open
  stream.LoadFromFile path
  ReadBytes = stream.Read
  If Err.Number = 0 Then Exit Function
  Err.Clear
  text = CreateObject("Scripting.FileSystemObject").OpenTextFile(path).ReadAll
  If Err.Number <> 0 Then Exit Function
  result = Array()
  ReDim result(Len(text) - 1)
  For i = 1 To Len(text)
    result(i - 1) = CByte(Asc(Mid(text, i, 1)))
  Next
  ReadBytes = result
End Function

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
