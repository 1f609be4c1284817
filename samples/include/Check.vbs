' Turns the number of a failed call into words, and ends the script. The file is in Windows-1251.
'
'   On Error Resume Next
'   Set quivo = CreateObject("TAVL.QUIVO")
'   Check quivo, "TAVL.QUIVO"
'   quivo.Initialize "Anna", 0
'   Check quivo, "Initialize"
'
' Copy these procedures to the end of a script, or read them in at its beginning:
'   ExecuteGlobal CreateObject("Scripting.FileSystemObject").OpenTextFile("Check.vbs").ReadAll
' The first argument is a TAVL.QUIVO, which need not have a session, or Nothing: without one the engine's texts are missing.
' The texts of the table are Russian unless CheckLanguage is "en"; the engine's are always in its own language.
Dim CheckLanguage

Sub Check(object, what)
  If Err.Number = 0 Then Exit Sub
  Dim code, description
  code = Err.Number
  description = Err.Description
  Err.Clear
  WScript.Echo what & ": 0x" & Hex(code) & " " & ErrorText(object, code, description)
  WScript.Quit 1
End Sub

' The text of a number, for scripts that go on after a failure. `description` is what the host said of it, if anything.
Function ErrorText(object, code, description)
  Dim text
  text = ""
  On Error Resume Next
  Select Case code And &hFFFF0000
    Case &hE0680000, &hE0690000
      text = EngineText(object, code)
  End Select
  If text = "" Then text = KnownText(code)
  ' Numbers above zero are the script host's own, and it has a text for each.
  If text = "" And code < 0 Then text = EngineText(object, code)
  If text = "" Then text = description
  ErrorText = text
End Function

Function EngineText(object, code)
  Dim text
  EngineText = ""
  On Error Resume Next
  object.GetPKIErrorTextVBS code, text
  If Err.Number = 0 Then EngineText = text
  Err.Clear
End Function

Function KnownText(code)
  Select Case code
    Case &hE0680001
      KnownText = InWords("Объект уже инициализирован: сначала Uninitialize", "The object has a session already: call Uninitialize first")
    Case &hE0690005
      KnownText = InWords("Нет доступа к файлу, или файловые методы запрещены узлом сценария", "Access denied, or the host forbids the file methods")
    Case &hE069000E, &h8007000E, 7
      KnownText = InWords("Недостаточно памяти", "Out of memory")
    Case &hE0690057
      KnownText = InWords("Аргумент не того типа: данные - это массив байтов, объекты - только этого модуля", "An argument has the wrong type: data is an array of bytes, objects are this module's only")
    Case &hFFFFFFFF
      KnownText = InWords("Причина - в последнем аргументе вызова", "The reason is in the last argument of the call")
    Case &hE0700019
      KnownText = InWords("Подпись проверена с замечаниями", "The signature is verified, with remarks")
    Case &hE0700036
      KnownText = InWords("Срок действия сертификата не наступил или истёк", "The certificate is not valid yet, or no more")
    Case &hE072008A
      KnownText = InWords("Сертификат не выбран", "No certificate was selected")
    Case &h80000008
      KnownText = InWords("Недостаточно памяти для списка получателей", "Out of memory for the list of recipients")
    Case &h80000057
      KnownText = InWords("Получатель не задан или не найден", "No recipient is given, or none is found")
    Case &h80004005
      KnownText = InWords("Не выполнено: сертификат не найден, или причина - в последнем аргументе вызова", "Failed: no certificate is found, or the reason is in the last argument of the call")
    Case &h80004002, 430
      KnownText = InWords("Передан объект другого класса", "An object of another class was passed")
    Case &h80004003
      KnownText = InWords("Нет места для результата", "There is no place for the result")
    Case &h80070005, 70
      KnownText = InWords("Отказано в доступе", "Access denied")
    Case &h80070057, 5
      KnownText = InWords("Неверное значение. У CertId сначала задают type", "Invalid value. The type of a CertId is set first")
    Case &h80020003, 438
      KnownText = InWords("У объекта нет такого метода или свойства", "The object has no such method or property")
    Case &h80020005, 13
      KnownText = InWords("Несовпадение типов", "Type mismatch")
    Case &h8002000E, 450
      KnownText = InWords("Неверное число аргументов", "Wrong number of arguments")
    Case &h80040154, &h800401F3, 429
      KnownText = InWords("Модуль не зарегистрирован для программ этой разрядности: нужен 64-разрядный узел", "The module is not registered for programs of this bitness: a 64-bit host is needed")
    Case &h80040111
      KnownText = InWords("В модуле нет такого класса", "The module has no such class")
    Case &h800401F0
      KnownText = InWords("COM не инициализирован в этом потоке", "COM is not initialised on this thread")
    Case &h8007007E
      KnownText = InWords("Не найдена библиотека tavl1.dll или библиотека, которая ей нужна", "tavl1.dll is missing, or a library that it needs")
    Case &h8007007F
      KnownText = InWords("В tavl1.dll нет функции, которую вызывает модуль", "tavl1.dll lacks a function that the module calls")
    Case Else
      KnownText = ""
  End Select
End Function

Function InWords(russian, english)
  If CheckLanguage = "en" Then InWords = english Else InWords = russian
End Function
