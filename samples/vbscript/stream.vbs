' Signs a file in pieces, as a program does that gets its data from elsewhere, and shows how far it is.
'   cscript //nologo stream.vbs PROFILE FILE SIGNATURE [/lang:en]
' A file on a disk needs no pieces: StrSignFile reads it as a stream by itself (sign-folder.vbs).
' Exit code: 0 signed, 1 not signed, 2 wrong arguments.
Option Explicit

Const Flag_Sign_Pkcs7 = 1
Const Flag_Sign_Detached = 2
Const Flag_Sign_SendSert = 8

Dim language, given, quivo, param, context, reader, size, done, shown, signature
ReadArguments 3, 3

On Error Resume Next
Set quivo = CreateObject("TAVL.QUIVO")
Check T("Модуль не зарегистрирован (см. doctor.vbs)", "The module is not registered (see doctor.vbs)")
quivo.Initialize given(0), 0
Check T("Сеанс не открыт", "The session cannot be opened")

Set reader = New FilePieces
reader.Open given(1)
Check given(1)
size = CreateObject("Scripting.FileSystemObject").GetFile(given(1)).Size

Set param = CreateObject("TAVL.SignParam")
param.flag = Flag_Sign_Pkcs7 + Flag_Sign_Detached + Flag_Sign_SendSert
Set context = CreateObject("TAVL.StreamCtx")
quivo.StrSignInitMem param, Empty, context
Check "StrSignInitMem"
done = 0
shown = -1
Do While done < size
  ' All pieces of a stream have the same form, which the first one decides.
  quivo.StrSignUpdateMem param, context, reader.NextPiece
  Check "StrSignUpdateMem"
  done = done + reader.Length
  If done > size Then done = size
  Progress
Loop
quivo.StrSignFinalMem param, context, signature
Check "StrSignFinalMem"
reader.Save given(2), signature
Check given(2)
quivo.Uninitialize
WScript.Echo T("Подписано байт: ", "Bytes signed: ") & size

' One line that grows where the host can, else a line for each tenth.
Sub Progress
  Dim percent
  On Error Resume Next
  percent = Int(100 * done / size)
  WScript.StdOut.Write vbCr & percent & "%  "
  If Err.Number = 0 Then
    If done = size Then WScript.StdOut.WriteLine
  ElseIf Int(percent / 10) > shown Then
    WScript.Echo percent & "%"
    shown = Int(percent / 10)
  End If
  Err.Clear
End Sub

' A file that is read in pieces. Where there is no ADODB.Stream, as under Wine, bytes are letters of the ANSI code page.
Class FilePieces
  Public Length
  Private stream
  Private text

  Sub Open(path)
    On Error Resume Next
    Set stream = CreateObject("ADODB.Stream")
    stream.Type = 1
    stream.Open
    stream.LoadFromFile path
    Length = 1048576
    If Err.Number = 0 Then Exit Sub
    Err.Clear
    Set stream = Nothing
    Length = 4096
    Set text = CreateObject("Scripting.FileSystemObject").OpenTextFile(path)
  End Sub

  Function NextPiece
    Dim letters, bytes, i
    If Not stream Is Nothing Then
      NextPiece = stream.Read(Length)
      Exit Function
    End If
    letters = text.Read(Length)
    bytes = Array()
    ReDim bytes(Len(letters) - 1)
    For i = 1 To Len(letters)
      bytes(i - 1) = CByte(Asc(Mid(letters, i, 1)))
    Next
    NextPiece = bytes
  End Function

  Sub Save(path, bytes)
    Dim i, file
    If Not stream Is Nothing Then
      Set file = CreateObject("ADODB.Stream")
      file.Type = 1
      file.Open
      file.Write bytes
      file.SaveToFile path, 2
      Exit Sub
    End If
    Set file = CreateObject("Scripting.FileSystemObject").CreateTextFile(path, True)
    For i = 0 To UBound(bytes)
      file.Write Chr(bytes(i))
    Next
    file.Close
  End Sub
End Class

Sub Usage
  WScript.Echo T("Подписывает файл по частям:", "Signs a file in pieces:")
  WScript.Echo "  cscript //nologo stream.vbs " & T("ПРОФИЛЬ ФАЙЛ ПОДПИСЬ", "PROFILE FILE SIGNATURE") & " [/lang:en]"
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
