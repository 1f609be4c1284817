' Error numbers and their texts, with and without a session. Argument: the name of a profile.
Option Explicit
On Error Resume Next

Const AlreadyInitialized = &hE0680001
Const InvalidArgument = &hE0690057
Const FileNotFound = &hE0690002
' No file. On Windows a null string (vbNullString) means the same; Wine's script hosts cannot pass one.
Const NoFile = "NUL"

Dim quivo, other, text, code, parameters

Set quivo = CreateObject("TAVL.QUIVO")
Set parameters = CreateObject("TAVL.SignParam")

' The module's own texts.
quivo.GetPKIErrorTextVBS &hE0680001, text
equal text, cyrillic("CE E1 FA E5 EA F2 20 F3 E6 E5 20 E8 ED E8 F6 E8 E0 EB E8 E7 E8 F0 EE E2 E0 ED"), "text of 0xE0680001"
quivo.GetPKIErrorTextVBS &hE0680002, text
equal text, cyrillic("CD E5 E8 E7 E2 E5 F1 F2 ED EE E5 20 E8 F1 EA EB FE F7 E5 ED E8 E5 20 E1 E8 E1 EB E8 EE F2 E5 EA E8 20") & "QUIVO", _
      "text of 0xE0680002"
quivo.GetPKIErrorTextVBS &hE0680007, text
equal text, cyrillic("CD E5 E8 E7 E2 E5 F1 F2 ED E0 FF 20 E4 EE EF EE EB ED E8 F2 E5 EB FC ED E0 FF 20 EE F8 E8 E1 EA E0"), _
      "text of another number of the module"
' The engine's.
quivo.GetPKIErrorTextVBS 5, text
ok Len(text) > 0, "text of 5"
quivo.GetPKIErrorTextVBS &hE0690005, other
equal other, text, "text of 0xE0690005 is the text of 5"

' Sessions.
quivo.Uninitialize
ok True, "Uninitialize without a session"
quivo.Initialize "no such profile", 0
code = Err.Number
refused_by_engine "a profile that does not exist"
quivo.GetPKIErrorTextVBS code, text
ok Len(text) > 0, "text of a profile that does not exist"
quivo.Initialize WScript.Arguments(0), 0
ok True, "Initialize"
quivo.Initialize WScript.Arguments(0), 0
refused AlreadyInitialized, "Initialize on an open session"
quivo.InitMinimal
refused AlreadyInitialized, "InitMinimal on an open session"
quivo.InitializeEx CreateObject("TAVL.LocalParam")
refused AlreadyInitialized, "InitializeEx on an open session"
quivo.Uninitialize
quivo.Uninitialize
ok True, "Uninitialize twice"
quivo.InitializeEx CreateObject("TAVL.CertId")
refused InvalidArgument, "InitializeEx with an object of another class"
quivo.InitMinimal
ok True, "InitMinimal after Uninitialize"
quivo.Uninitialize

' Data that is no data.
quivo.Initialize WScript.Arguments(0), 0
quivo.SignMem parameters, "text", Empty, other
refused InvalidArgument, "SignMem of a string"
quivo.SignMem parameters, 5, Empty, other
refused InvalidArgument, "SignMem of a number"
quivo.SignMem parameters, Null, Empty, other
refused InvalidArgument, "SignMem of Null"
quivo.SignMem parameters, Array(CByte(1), 2), Empty, other
refused InvalidArgument, "SignMem of an array with an element that is no byte"
quivo.SignMem parameters, Array("a"), Empty, other
refused InvalidArgument, "SignMem of an array of strings"
quivo.SignMem Nothing, bytes_of("abc"), Empty, other
refused InvalidArgument, "SignMem without parameters"
quivo.SignFile parameters, "Z:\no\such\file", NoFile, "Z:\no\such\signature"
refused_by_engine "SignFile of a missing file"
quivo.SignFile parameters, WScript.ScriptFullName, NoFile, ""
refused_by_engine "SignFile without an output"
quivo.SignFile2B64Mem parameters, "Z:\no\such\file", other, text
refused &hFFFFFFFF, "SignFile2B64Mem of a missing file"
ok InStr(text, "Z:\no\such\file") > 0, "its text names the file"
quivo.NoSuchMethod
refused 438, "a method that does not exist"

finish

' Text of the code page 1251, from its bytes in hexadecimal.
Function cyrillic(bytes)
  Dim i
  cyrillic = ""
  For i = 1 To Len(bytes) Step 3
    cyrillic = cyrillic & Chr(CLng("&h" & Mid(bytes, i, 2)))
  Next
End Function
