' Gets a certificate: makes a key and a request, and takes the certificate that was issued.
'   cscript //nologo request.vbs new PROFILE SUBJECT REQUEST [/lang:en]
'   cscript //nologo request.vbs import PROFILE CERTIFICATE DOCUMENT SIGNATURE [/lang:en]
' The first form writes REQUEST (PKCS#10) for the authority to issue the certificate from, such as for "CN=Anna, C=RU". The
' second imports what it issued, and signs DOCUMENT with the new key to see that all is well.
' Exit code: 0 done, 1 not done, 2 wrong arguments.
Option Explicit

Const Field_Subject = 4
Const Field_KeyUsage = 128
Const Field_KeyID = 32768
Const Keyusage_DigitalSignature = 1
Const Keyusage_NonRepudation = 2
Const Keyusage_KeyEncipherment = 4
Const Id_KeyId = 1
Const Flag_Export_NewRequest = 4
Const Flag_Import_MyCertificate = 8
Const Flag_Sign_Pkcs7 = 1
Const Flag_Sign_Detached = 2
Const Flag_Sign_SendSert = 8

Dim language, given, quivo, files
ReadArguments 4, 5
Set files = CreateObject("Scripting.FileSystemObject")

On Error Resume Next
If given(0) = "new" And UBound(given) = 3 Then
  Open
  MakeRequest
ElseIf given(0) = "import" And UBound(given) = 4 Then
  Open
  ImportCertificate
Else
  Usage
  WScript.Quit 2
End If
quivo.Uninitialize

Sub Open
  On Error Resume Next
  Set quivo = CreateObject("TAVL.QUIVO")
  Check T("Модуль не зарегистрирован (см. doctor.vbs)", "The module is not registered (see doctor.vbs)")
  quivo.Initialize given(1), 0
  Check T("Сеанс не открыт", "The session cannot be opened")
End Sub

Sub MakeRequest
  Dim template, xml, export
  On Error Resume Next
  Set template = CreateObject("TAVL.Certificate")
  template.fields = Field_Subject + Field_KeyUsage
  template.subject = given(2)
  template.keyUsage = Keyusage_DigitalSignature + Keyusage_NonRepudation + Keyusage_KeyEncipherment
  Check given(2)
  ' The XML is for authorities that take it; the newest request of the store is the same one in the common form.
  quivo.CreateXmlRequest 0, template, xml, True
  Check T("Запрос не создан", "The request was not made")
  Set export = CreateObject("TAVL.ExportParam")
  export.flag = Flag_Export_NewRequest
  quivo.ExportFile export, given(3)
  Check T("Запрос не записан", "The request was not written")
  WScript.Echo T("Запрос: ", "Request: ") & given(3)
End Sub

Sub ImportCertificate
  Dim import, certificate, identifier, param
  On Error Resume Next
  Set import = CreateObject("TAVL.ImportParam")
  import.flag = Flag_Import_MyCertificate
  quivo.ImportFile import, given(2)
  Check T("Сертификат не принят", "The certificate was refused")
  Set certificate = quivo.ParseCert(ReadBytes(given(2)), Field_Subject + Field_KeyID)
  Check given(2)
  WScript.Echo T("Сертификат принят: ", "Imported: ") & certificate.subject

  ' The type comes first: without it the identifier takes nothing.
  Set identifier = CreateObject("TAVL.CertId")
  identifier.type = Id_KeyId
  identifier.keyId = certificate.keyId
  Set param = CreateObject("TAVL.SignParam")
  param.flag = Flag_Sign_Pkcs7 + Flag_Sign_Detached + Flag_Sign_SendSert
  Set param.mycert = identifier
  If files.FileExists(files.GetSpecialFolder(1) & "\winecfg.exe") Then
    ' Wine's host cannot pass a null string.
    quivo.StrSignFile param, given(3), "NUL", given(4)
  Else
    quivo.StrSignFile param, given(3), vbNullString, given(4)
  End If
  Check T("Не подписан", "Not signed")
  WScript.Echo T("Подписан новым ключом: ", "Signed with the new key: ") & given(3)
End Sub

Sub Usage
  WScript.Echo T("Получает сертификат:", "Gets a certificate:")
  WScript.Echo "  cscript //nologo request.vbs new " & T("ПРОФИЛЬ ""CN=Имя, C=RU"" ЗАПРОС", _
                                                         "PROFILE ""CN=Name, C=RU"" REQUEST") & " [/lang:en]"
  WScript.Echo "  cscript //nologo request.vbs import " & T("ПРОФИЛЬ СЕРТИФИКАТ ДОКУМЕНТ ПОДПИСЬ", _
                                                            "PROFILE CERTIFICATE DOCUMENT SIGNATURE") & " [/lang:en]"
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
