' Examines the installation of the module on this machine: what is wrong, and what to do. The script of support.
'   cscript //nologo doctor.vbs [PROFILE] [/lang:en]
' With PROFILE a session is opened as well, which may ask for the PIN of the keys.
' To see whether this user is an administrator, it writes an empty file into the folder of programs and removes it again.
' Exit code: 0 all is well, 1 something is wrong, 2 wrong arguments.
Option Explicit

Const LibraryId = "{6C5ACF4C-A048-4640-8A59-D6D1511153B1}"
Const Flag_Init_Nocrlupdate = 1
Const Flag_Init_Noldap = 4

' The classes with their identifiers, in the order of registration.
Dim classes
classes = Array( _
  "QUIVO", "{4D9C12F3-1D48-4A4D-A2EC-E740E455FEEA}", "LocalParam", "{236C9B37-B991-48C2-B14A-340A28638282}", _
  "RSrvParam", "{DFDABA17-D518-42A6-81DE-C90C8EC32BCF}", "CertId", "{2FE53899-07E9-4CB2-BB03-D559BE2FC5D5}", _
  "SignParam", "{5B584C94-8FB4-4647-AFE6-879085600DBF}", "Policy", "{931F33F5-525B-4613-A5A7-D0E28115DD9A}", _
  "Extension", "{7D42ABCB-3B36-4B75-8610-3DE59F556435}", "VerifyParam", "{638DCAAF-63A6-40D2-BE7B-00E0D60B43D6}", _
  "AltName", "{A87DDCC9-0E5C-4FD2-9336-C183B2068817}", "Certificate", "{A2B25429-5D39-44B8-B48F-421BBBD18E52}", _
  "SignStatus", "{34349D2D-14C6-414B-9771-A7BD2A7C7180}", "EncryptParam", "{904023D8-3EB6-4079-B062-45C68095682E}", _
  "DecryptParam", "{3DBDF772-F8AB-4DD8-9A7A-C9650637EE32}", "ExportParam", "{5D343B47-FDD0-4802-930B-EADDA0CE37D9}", _
  "ImportParam", "{8C4D3DF5-889F-434C-BA1C-22F23FD7CB1B}", "FindParam", "{B67689B6-7C60-465C-A541-9878368A6AE5}", _
  "StreamCtx", "{F0723AEE-B2DB-40C0-9205-B3CE505E8B2C}", "pkiobj", "{D107033F-3A53-4406-AF19-13543470DDB2}")

' What the engine has to export.
Dim functions
functions = Array( _
  "AddCRL", "AddCertificate", "AllocMem", "CreateXmlRequest", "Ctrl", "DecryptAndVerifyFile", "DecryptFile", "DecryptMem", _
  "EncodeMem", "EncryptFile", "EncryptMem", "ExportFile", "ExportMem", "FindCert", "FreeCert", "FreeDecryptResult", _
  "FreeFindResult", "FreeMem", "FreeSignedInfoResult", "FreeVerifyResult", "GenRandom", "GetErrorText", "HashFile", _
  "HashMem", "ImportFile", "ImportMem", "InitMinimal", "Initialize", "InitializeEx", "ParseCert", "ShowCertificate", _
  "ShowCrl", "SignAndEncryptFile", "SignFile", "SignMem", "SignedInfoFile", "StrDecryptFile", "StrDecryptFinalMem", _
  "StrDecryptInitMem", "StrDecryptUpdateMem", "StrEncryptFile", "StrEncryptFinalMem", "StrEncryptInitMem", _
  "StrEncryptUpdateMem", "StrHashFile", "StrHashFinalMem", "StrHashInitMem", "StrHashUpdateMem", "StrSignFile", _
  "StrSignFinalMem", "StrSignInitMem", "StrSignUpdateMem", "StrVerifyFile", "StrVerifyFinalMem", "StrVerifyInitMem", _
  "StrVerifyUpdateMem", "Uninitialize", "VerifyCert", "VerifyFile", "VerifyMem")

Dim language, given, shell, files, modulePath, quivo, problems
ReadArguments 0, 1
Set shell = CreateObject("WScript.Shell")
Set files = CreateObject("Scripting.FileSystemObject")

ExamineHost
ExamineRegistration
ExamineEngine
ExamineObjects
ExamineProfiles
ExamineRights

WScript.Echo ""
If problems = 0 Then
  WScript.Echo T("Замечаний нет.", "All is well.")
  WScript.Quit 0
End If
WScript.Echo T("Найдено неисправностей: ", "Problems found: ") & problems
WScript.Quit 1

' The module and its engine are programs of 64 bits, and exchange text in the code page 1251.
Sub ExamineHost
  Title T("Сервер сценариев", "Script host")
  Dim processor
  processor = Variable("PROCESSOR_ARCHITECTURE")
  If processor = "AMD64" Then
    Good T("64-разрядный", "64 bits")
  Else
    Bad T("не 64-разрядный: ", "not of 64 bits: ") & processor, _
        T("запустите %SystemRoot%\Sysnative\cscript.exe вместо SysWOW64\cscript.exe", _
          "run %SystemRoot%\Sysnative\cscript.exe instead of SysWOW64\cscript.exe")
  End If
  If Registry("HKLM\SYSTEM\CurrentControlSet\Control\Nls\CodePage\ACP") = "1251" Then
    Good T("кодовая страница 1251", "code page 1251")
  Else
    Bad T("кодовая страница не 1251", "the code page is not 1251"), _
        T("выберите русский язык для программ, не поддерживающих Юникод", _
          "choose Russian as the language for programs that do not support Unicode")
  End If
End Sub

Sub ExamineRegistration
  Title T("Регистрация", "Registration")
  Dim i, key, path, missing, elsewhere, again
  modulePath = Registry("HKCR\CLSID\" & classes(1) & "\InprocServer32\")
  For i = 0 To UBound(classes) Step 2
    key = "HKCR\CLSID\" & classes(i + 1) & "\InprocServer32\"
    path = Registry(key)
    If Registry("HKCR\TAVL." & classes(i) & "\CLSID\") <> classes(i + 1) Or Registry(key & "ThreadingModel") <> "Apartment" Then
      missing = missing & " TAVL." & classes(i)
    ElseIf path <> modulePath Then
      elsewhere = elsewhere & " TAVL." & classes(i)
    End If
  Next
  again = T("зарегистрируйте модуль снова: ", "register the module again: ") & "regsvr32 """ & modulePath & """"
  If modulePath = "" Then
    Bad T("модуль не зарегистрирован", "the module is not registered"), _
        T("выполните от имени администратора: regsvr32 tavlcom.dll", "run as administrator: regsvr32 tavlcom.dll")
    Exit Sub
  End If
  If missing <> "" Then
    Bad T("нет классов:", "classes are missing:") & missing, again
  ElseIf elsewhere <> "" Then
    Bad T("классы другого файла:", "classes of another file:") & elsewhere, again
  Else
    Good T("классов: ", "classes: ") & (UBound(classes) + 1) / 2
  End If
  If files.FileExists(modulePath) Then
    Good modulePath & VersionOf(modulePath)
  Else
    Bad T("файла нет: ", "the file is not there: ") & modulePath, _
        T("верните файл на место или зарегистрируйте его там, где он есть", "put it back, or register it where it is")
  End If
  ' Such a key hides the one of the machine from this user.
  path = Registry("HKCU\Software\Classes\CLSID\" & classes(1) & "\InprocServer32\")
  If path <> "" Then Bad T("у этого пользователя своя регистрация: ", "this user has a registration of his own: ") & path, _
                         T("удалите раздел ", "delete the key ") & "HKCU\Software\Classes\CLSID\" & classes(1)
  path = Registry("HKCR\TypeLib\" & LibraryId & "\1.0\0\win64\")
  If path <> "" And files.FileExists(path) Then
    Good T("библиотека типов: ", "type library: ") & path
  Else
    Bad T("нет библиотеки типов", "no type library"), again
  End If
End Sub

' The engine is looked for where the module looks: in its own folder, in the system folder, in absolute folders of PATH.
Sub ExamineEngine
  Title T("Криптографическая библиотека", "Engine")
  Dim folders, folder, i, path, found, names, missing, count
  If modulePath = "" Then Exit Sub
  folders = Split(files.GetParentFolderName(modulePath) & ";" & files.GetSpecialFolder(1) & ";" & _
                  Variable("PATH"), ";")
  For i = 0 To UBound(folders)
    folder = folders(i)
    If Right(folder, 1) = "\" Then folder = Left(folder, Len(folder) - 1)
    path = folder & "\tavl1.dll"
    If (Mid(folder, 2, 2) = ":\" Or Left(folder, 2) = "\\") And LCase(path) <> LCase(found) And files.FileExists(path) Then
      If found = "" Then
        found = path
      Else
        Remark T("не используется: ", "not used: ") & path
      End If
    End If
  Next
  If found = "" Then
    Bad T("нет файла tavl1.dll", "there is no tavl1.dll"), T("положите его в папку ", "put it into the folder ") & _
        files.GetParentFolderName(modulePath)
    Exit Sub
  End If
  names = ExportedNames(found)
  If names = "" Then
    Bad T("не 64-разрядная библиотека: ", "not a library of 64 bits: ") & found, _
        T("замените её на 64-разрядную", "replace it by the one of 64 bits")
    Exit Sub
  End If
  Good found & VersionOf(found)
  For i = 0 To UBound(functions)
    If InStr(names, " QUIVO_" & functions(i) & " ") = 0 Then missing = missing & " QUIVO_" & functions(i)
  Next
  If missing = "" Then
    Good T("функций: ", "functions: ") & UBound(functions) + 1
  Else
    Bad T("нет функций:", "functions are missing:") & missing, _
        T("поставьте версию библиотеки, для которой сделан модуль", _
          "install the version of the engine that the module was made for")
  End If
End Sub

' The names that a library exports, with a blank before and behind each; nothing if it is not one of 64 bits.
Function ExportedNames(path)
  Const Machine64 = &h8664&
  Dim image, header, sections, count, table, i, name, place, letter
  image = files.OpenTextFile(path).ReadAll
  If Len(image) < 512 Then Exit Function
  header = NumberAt(image, 60, 4)
  If NumberAt(image, header + 4, 2) <> Machine64 Then Exit Function
  ExportedNames = " "
  table = Position(image, header, NumberAt(image, header + 136, 4))
  If table = 0 Then Exit Function
  count = NumberAt(image, table + 24, 4)
  table = Position(image, header, NumberAt(image, table + 32, 4))
  For i = 0 To count - 1
    place = Position(image, header, NumberAt(image, table + 4 * i, 4)) + 1
    name = ""
    letter = Mid(image, place, 1)
    Do While Asc(letter) <> 0
      name = name & letter
      place = place + 1
      letter = Mid(image, place, 1)
    Loop
    ExportedNames = ExportedNames & name & " "
  Next
End Function

' The number of so many bytes, lowest first, at an offset that counts from 0.
Function NumberAt(image, offset, size)
  Dim i
  NumberAt = 0
  For i = size To 1 Step -1
    NumberAt = NumberAt * 256 + Asc(Mid(image, offset + i, 1))
  Next
End Function

' Where in the file the section lies that is loaded at an address.
Function Position(image, header, address)
  Dim i, entry, start
  Position = 0
  If address = 0 Then Exit Function
  For i = 0 To NumberAt(image, header + 6, 2) - 1
    entry = header + 24 + NumberAt(image, header + 20, 2) + 40 * i
    start = NumberAt(image, entry + 12, 4)
    If address >= start And address < start + NumberAt(image, entry + 16, 4) Then
      Position = address - start + NumberAt(image, entry + 20, 4)
    End If
  Next
End Function

Sub ExamineObjects
  Title T("Объекты", "Objects")
  Dim i, object, failed, text
  On Error Resume Next
  For i = 0 To UBound(classes) Step 2
    Err.Clear
    Set object = Nothing
    Set object = CreateObject("TAVL." & classes(i))
    If object Is Nothing Then
      failed = failed & " TAVL." & classes(i)
    ElseIf TypeName(object) <> "I" & classes(i) Then
      failed = failed & " TAVL." & classes(i) & " (" & TypeName(object) & ")"
    End If
  Next
  Err.Clear
  If failed <> "" Then
    Bad T("не создаются:", "cannot be created:") & failed, _
        T("устраните неисправности, названные выше; если их нет, рядом с tavl1.dll не хватает её библиотек", _
          "mend what is named above; if nothing is, a library that tavl1.dll needs is missing")
    Exit Sub
  End If
  Good T("создаются все", "all can be created")
  Set quivo = CreateObject("TAVL.QUIVO")
  quivo.InitMinimal
  If Failure(text) Then
    Bad T("библиотека не отвечает: ", "the engine does not answer: ") & text, _
        T("обратитесь к поставщику tavl1.dll", "ask whoever supplies tavl1.dll")
  Else
    Good T("библиотека отвечает", "the engine answers")
  End If
  quivo.Uninitialize
  Err.Clear
End Sub

Sub ExamineProfiles
  Const Profiles = "HKCU\SOFTWARE\KORVENTA\tavl\Profiles\"
  Title T("Профили", "Profiles")
  Dim i, name, count, selected, text
  On Error Resume Next
  selected = Registry(Profiles & "CurSel")
  count = 0
  For i = 0 To 99
    name = Registry(Profiles & i & "\ProfileName")
    If name <> "" Then
      count = count + 1
      If CStr(i) = CStr(selected) Then name = name & T(" - выбран", " - selected")
      Good i & ": " & name
    End If
  Next
  If count = 0 Then
    Bad T("у этого пользователя нет профилей", "this user has no profiles"), _
        T("создайте профиль средствами tavl1.dll", "make a profile with the tools of tavl1.dll")
  ElseIf Registry(Profiles & selected & "\ProfileName") = "" Then
    Bad T("выбранного профиля нет: ", "the selected profile does not exist: ") & selected, _
        T("выберите профиль", "select a profile")
  End If
  If UBound(given) < 0 Then Exit Sub
  Err.Clear
  quivo.Initialize given(0), Flag_Init_Nocrlupdate + Flag_Init_Noldap
  If Failure(text) Then
    Bad given(0) & ": " & text, T("проверьте имя профиля, его ключи и PIN", "check the name of the profile, its keys and the PIN")
    Exit Sub
  End If
  Good given(0) & T(": сеанс открыт", ": the session is open")
  quivo.GetMyCertB64 name
  If Failure(text) Then
    Bad T("нет своего сертификата: ", "no own certificate: ") & text, _
        T("получите сертификат (request.vbs)", "request a certificate (request.vbs)")
  Else
    Good T("свой сертификат есть", "there is an own certificate")
  End If
  quivo.Uninitialize
End Sub

Sub ExamineRights
  Title T("Права", "Rights")
  If IsWritable(Variable("ProgramFiles")) Then
    Good T("администратор: регистрация разрешена", "an administrator: registration is allowed")
  Else
    Remark T("не администратор: для работы прав хватает, для регистрации - нет", _
             "not an administrator: enough to work, not to register")
  End If
  If IsWritable(files.GetSpecialFolder(2)) Then
    Good T("временная папка доступна: ", "the temporary folder can be written: ") & files.GetSpecialFolder(2)
  Else
    Bad T("временная папка недоступна: ", "the temporary folder cannot be written: ") & files.GetSpecialFolder(2), _
        T("дайте этому пользователю право записи", "give this user the right to write")
  End If
End Sub

Function IsWritable(folder)
  Dim path, file
  On Error Resume Next
  Err.Clear
  path = folder & "\" & files.GetTempName
  Set file = files.CreateTextFile(path, True)
  IsWritable = (Err.Number = 0)
  If Not IsWritable Then Exit Function
  file.Close
  files.DeleteFile path
End Function

' A variable of the environment. Wine's host leaves a NUL character behind it.
Function Variable(name)
  Variable = Replace(shell.ExpandEnvironmentStrings("%" & name & "%"), Chr(0), "")
End Function

' A file without a version is an error to the host.
Function VersionOf(path)
  On Error Resume Next
  VersionOf = ", " & files.GetFileVersion(path)
End Function

' A value of the registry; nothing where there is none.
Function Registry(name)
  On Error Resume Next
  Registry = ""
  Registry = shell.RegRead(name)
End Function

' True if the statement before failed; its text is the engine's.
Function Failure(text)
  Dim code
  code = Err.Number
  Failure = code <> 0
  If Not Failure Then Exit Function
  text = Err.Description
  Err.Clear
  quivo.GetPKIErrorTextVBS code, text
  text = text & " (0x" & Hex(code) & ")"
  Err.Clear
End Function

Sub Title(what)
  WScript.Echo what
End Sub

Sub Good(what)
  WScript.Echo "  ok  " & what
End Sub

Sub Remark(what)
  WScript.Echo "  --  " & what
End Sub

Sub Bad(what, advice)
  problems = problems + 1
  WScript.Echo "  !!  " & what
  WScript.Echo "      > " & advice
End Sub

Sub Usage
  WScript.Echo T("Проверяет установку модуля:", "Examines the installation of the module:")
  WScript.Echo "  cscript //nologo doctor.vbs " & T("[ПРОФИЛЬ]", "[PROFILE]") & " [/lang:en]"
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
