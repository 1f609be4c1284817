' Lists the certificates that have expired or expire soon.
'   cscript //nologo expiring.vbs PROFILE [DAYS [FOLDER]] [/lang:en]
' Looks at the store of the profile and, if it is named, at the certificates (*.cer) of FOLDER. DAYS is 30 unless it is given.
' Exit code: 0 none expires, 1 some do, 2 wrong arguments, 3 it could not be found out.
Option Explicit

Const Field_Subject = 4
Const Field_NotAfter = 64
Const Flag_Find_All = 2
Const Flag_Find_NoTimeCheck = 16

Dim language, given, quivo, find, found, certificates, days, text, files, file, expiring, i
ReadArguments 1, 3
days = 30
If UBound(given) > 0 Then days = given(1)
If Not IsNumeric(days) Then
  Usage
  WScript.Quit 2
End If
days = CLng(days)
expiring = 0

On Error Resume Next
Set quivo = CreateObject("TAVL.QUIVO")
Check T("Модуль не зарегистрирован (см. doctor.vbs)", "The module is not registered (see doctor.vbs)")
quivo.Initialize given(0), 0
Check T("Сеанс не открыт", "The session cannot be opened")

Set find = CreateObject("TAVL.FindParam")
find.flag = Flag_Find_All + Flag_Find_NoTimeCheck
find.info = Field_Subject + Field_NotAfter
quivo.FindCert find, found
Check T("Справочник не прочитан", "The store cannot be read")
certificates = Elements(found)
If IsEmpty(certificates) Then
  WScript.Echo T("Данный сервер сценариев не читает массивы объектов: из справочника показан только свой сертификат.", _
                 "This script host walks no arrays of objects: of the store, only the own certificate is shown.")
  quivo.GetMyCertB64 text
  Check T("Нет своего сертификата", "No own certificate")
  Look quivo.ParseCert(BytesOfBase64(text), Field_Subject + Field_NotAfter)
  Check T("Свой сертификат не прочитан", "The own certificate cannot be read")
Else
  For i = 0 To UBound(certificates)
    Look certificates(i)
  Next
End If
If UBound(given) > 1 Then
  Set files = CreateObject("Scripting.FileSystemObject")
  For Each file In files.GetFolder(given(2)).Files
    If LCase(files.GetExtensionName(file.Name)) = "cer" Then
      Look quivo.ParseCert(ReadBytes(file.Path), Field_Subject + Field_NotAfter)
    End If
    Check file.Name
  Next
  Check given(2)
End If
quivo.Uninitialize
WScript.Echo T("Истекают в ближайшие дни (", "Expiring within days (") & days & "): " & expiring
If expiring > 0 Then WScript.Quit 1

Sub Look(certificate)
  Dim left
  ' Times are UTC; half a day more or less changes nothing here.
  left = Int(certificate.notAfter - Now)
  If left >= days Then Exit Sub
  expiring = expiring + 1
  If left < 0 Then
    WScript.Echo T("истёк", "expired") & vbTab & certificate.subject
  Else
    WScript.Echo T("дней: ", "days: ") & left & vbTab & certificate.subject
  End If
End Sub

Sub Usage
  WScript.Echo T("Показывает сертификаты, срок которых истекает:", "Lists certificates that expire:")
  WScript.Echo "  cscript //nologo expiring.vbs " & T("ПРОФИЛЬ [ДНЕЙ [ПАПКА]]", "PROFILE [DAYS [FOLDER]]") & " [/lang:en]"
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

Function BytesOfBase64(text)
  Dim element
  Set element = WScript.CreateObject("Msxml2.DOMDocument.3.0").createElement("bytes")
  element.dataType = "bin.base64"
  element.text = text
  BytesOfBase64 = element.nodeTypedValue
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
  WScript.Quit 3
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
