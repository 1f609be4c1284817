' Signs bytes and files in every way; sign.check has the results verified.
' Arguments: a folder for files, the name of a profile, the folder of the PKI.
Option Explicit
On Error Resume Next

Const Pkcs7 = 1
Const Detached = 2
Const SendCertificate = 8
Const InvalidArgument = &hE0690057
Const ArrayOfVariants = 8204
Const ArrayOfBytes = 8209
' No file. On Windows a null string (vbNullString) means the same; Wine's script hosts cannot pass one.
Const NoFile = "NUL"

Dim quivo, parameters, local_parameters, folder, files, text, signature, second, plain, message

folder = WScript.Arguments(0) & "\"
Set files = CreateObject("Scripting.FileSystemObject")
text = "Signed by a script." & Chr(13) & Chr(10) & Chr(0) & Chr(152) & Chr(255)
save "data.bin", text

Set quivo = CreateObject("TAVL.QUIVO")
quivo.Initialize WScript.Arguments(1), 0
Set parameters = CreateObject("TAVL.SignParam")

' Bytes, in the form of scripts.
parameters.flag = Pkcs7 + SendCertificate
quivo.SignMem parameters, bytes_of(text), Empty, signature
equal VarType(signature), ArrayOfVariants, "SignMem of an array of VARIANTs gives one"
save "attached.p7s", text_of(signature)
quivo.SignMem parameters, Empty, signature, second
equal VarType(second), ArrayOfBytes, "SignMem adds to what the signature contains; the form follows the data, which was not given"
quivo.SignMem parameters, bytes_of("other data"), signature, second
refused_by_engine "another content than the signature's"
parameters.flag = Pkcs7 + SendCertificate + Detached
quivo.SignMem parameters, bytes_of(text), Empty, signature
save "detached.p7s", text_of(signature)
quivo.SignMem parameters, Empty, signature, second
refused_by_engine "a detached signature without its data"
parameters.flag = Pkcs7 + Detached
quivo.SignMem parameters, bytes_of(text), Empty, signature
save "bare.p7s", text_of(signature)

' Bytes in the plain form: the module gives them where no data was given.
parameters.flag = Pkcs7 + SendCertificate
quivo.SignMem parameters, Empty, Empty, plain
equal VarType(plain), ArrayOfBytes, "SignMem of nothing gives an array of bytes"
quivo.SignMem parameters, plain, Empty, second
equal VarType(second), ArrayOfBytes, "SignMem of an array of bytes gives one"
quivo.SignMem parameters, plain, bytes_of("abc"), second
refused InvalidArgument, "data in the plain form and a signature in the form of scripts"
quivo.SignMem parameters, bytes_of("abc"), plain, second
refused InvalidArgument, "data in the form of scripts and a signature in the plain form"

' Files.
parameters.flag = Pkcs7 + SendCertificate
quivo.SignFile parameters, folder & "data.bin", NoFile, folder & "file.attached.p7s"
ok files.FileExists(folder & "file.attached.p7s"), "SignFile, attached"
quivo.StrSignFile parameters, folder & "data.bin", NoFile, folder & "stream.attached.p7s"
ok files.FileExists(folder & "stream.attached.p7s"), "StrSignFile, attached"
parameters.flag = Pkcs7 + SendCertificate + Detached
quivo.SignFile parameters, folder & "data.bin", NoFile, folder & "file.detached.p7s"
ok files.FileExists(folder & "file.detached.p7s"), "SignFile, detached"
quivo.StrSignFile parameters, folder & "data.bin", NoFile, folder & "stream.detached.p7s"
ok files.FileExists(folder & "stream.detached.p7s"), "StrSignFile, detached"

' As text.
parameters.flag = Pkcs7 + SendCertificate + Detached
quivo.SignFile2B64Mem parameters, folder & "data.bin", signature, message
equal VarType(signature), 8, "SignFile2B64Mem gives a string"
ok InStr(signature, Chr(0)) > 0, "which is longer than its text"
save "base64.p7s.txt", Left(signature, InStr(signature, Chr(0)) - 1)
quivo.GetMyCertB64 text
save "certificate.txt", text

' A second signature, by the other user, on what the first one gave.
quivo.Uninitialize
Set local_parameters = CreateObject("TAVL.LocalParam")
local_parameters.pse = WScript.Arguments(2) & "\boris.p12"
local_parameters.localstore = WScript.Arguments(2) & "\store"
local_parameters.pincode = "87654321"
quivo.InitializeEx local_parameters
parameters.flag = Pkcs7 + SendCertificate + Detached
quivo.SignMem parameters, bytes_of("abc"), Empty, second
refused_by_engine "a wrong PIN"
quivo.Uninitialize
local_parameters.pincode = "12345678"
quivo.InitializeEx local_parameters
quivo.SignFile parameters, folder & "data.bin", folder & "file.detached.p7s", folder & "two.detached.p7s"
ok files.FileExists(folder & "two.detached.p7s"), "SignFile adds a signature"
quivo.StrSignFile parameters, folder & "data.bin", folder & "stream.detached.p7s", folder & "stream.two.detached.p7s"
ok files.FileExists(folder & "stream.two.detached.p7s"), "StrSignFile adds a signature"
quivo.Uninitialize

finish

' Every character is one byte of the file.
Sub save(name, characters)
  Dim file
  Set file = files.CreateTextFile(folder & name, True)
  file.Write characters
  file.Close
End Sub
