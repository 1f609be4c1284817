' Certificate requests, the check of an identifier in the own certificate, and the session's lists. Arguments: a folder,
' the name of a profile, the folder of the PKI.
Option Explicit
On Error Resume Next

Const ArrayOfVariants = 8204
Const ArrayOfBytes = 8209
Const Failed = &h80004005

Dim arrays, files, quivo, own, folder, template, request, text, profile

Set arrays = CreateObject("TavlTests.Arrays")
Set files = CreateObject("Scripting.FileSystemObject")
folder = WScript.Arguments(0) & "\"
Set quivo = CreateObject("TAVL.QUIVO")
quivo.Initialize WScript.Arguments(1), 0

quivo.CheckOID "1.3.6.1.5.5.7.3.4", text
ok Err.Number = 0, "CheckOID of an identifier that is there"
equal text, Empty, "its text"
quivo.CheckOID "1.3.6.1.5.5.7.3.40", text
refused Failed, "CheckOID of an identifier that is not there"
equal text, "OID 1.3.6.1.5.5.7.3.40 " & absent, "its text"
quivo.UpdateCrl text
ok Err.Number = 0 And VarType(text) = 8, "UpdateCrl"
profile = quivo.UpdateCrl()
equal profile, text, "UpdateCrl as a function"
quivo.Uninitialize

' A request makes a key: it is kept in a store of this test's own.
Set own = CreateObject("TAVL.LocalParam")
own.pse = WScript.Arguments(2) & "\anna.p12"
own.pincode = "12345678"
own.localstore = folder & "store"
If files.FolderExists(folder & "store") Then files.DeleteFolder folder & "store", True
files.CreateFolder folder & "store"
quivo.InitializeEx own
Set template = CreateObject("TAVL.Certificate")
template.fields = 4
template.subject = "CN=Script, O=Tests, C=RU"
quivo.CreateXmlRequest 0, template, request, False
equal VarType(request), ArrayOfBytes, "CreateXmlRequest gives an array of bytes"
ok InStr(arrays.text(request), "<?xml") = 1, "which is XML"
quivo.CreateXmlRequest 0, template, request, True
equal VarType(request), ArrayOfVariants, "CreateXmlRequest gives an array of VARIANTs when it is asked for"
arrays.save folder & "request.xml", request

finish

' The words behind the identifier, in the code page 1251.
Function absent
  Dim codes, i
  codes = Array(238, 242, 241, 243, 242, 241, 242, 226, 243, 229, 242, 32, 226, 32, 240, 224, 225, 238, 247, 229, 236, 32, 241, 229, 240, _
                242, 232, 244, 232, 234, 224, 242, 229)
  absent = ""
  For i = 0 To UBound(codes)
    absent = absent & Chr(codes(i))
  Next
End Function
