' Encrypts to two, decrypts as each, and opens what openssl encrypted; encryption.check has openssl open the rest.
' Arguments: a folder, the names of two profiles and of one that is no recipient, the folder of the messages.
Option Explicit
On Error Resume Next

Const ArrayOfVariants = 8204
Const ArrayOfBytes = 8209
Const NotARecipient = &hE0697034

Dim arrays, anna, boris, vera, encrypt, decrypt, find, template, folder, messages, data, found, receivers(1), out, opened, sender, own

Set arrays = CreateObject("TavlTests.Arrays")
Set anna = session(WScript.Arguments(1))
Set boris = session(WScript.Arguments(2))
Set vera = session(WScript.Arguments(3))
folder = WScript.Arguments(0) & "\"
messages = WScript.Arguments(4) & "\"
data = arrays.text(arrays.load(messages & "data.bin"))
arrays.save folder & "data.bin", data

' The receivers are certificates found in the store, by a part of their subject.
Set receivers(0) = certificate_of("anna@")
Set receivers(1) = certificate_of("boris@")
Set encrypt = CreateObject("TAVL.EncryptParam")
encrypt.flag = 1
encrypt.Receivers = receivers
' Only who is named is stated as the sender.
Set own = CreateObject("TAVL.CertId")
own.type = 1
own.keyId = receivers(0).keyId
Set encrypt.mycert = own
Set decrypt = CreateObject("TAVL.DecryptParam")
decrypt.flag = 1
decrypt.info = &h7FFFF

' In memory, in both forms.
anna.EncryptMem encrypt, arrays.variants(data), out
equal VarType(out), ArrayOfVariants, "EncryptMem of an array of VARIANTs gives one"
ok InStr(arrays.text(out), "Data of the tests") = 0, "the data cannot be read in the message"
arrays.save folder & "memory.p7m", out
Set sender = Nothing
Set sender = anna.DecryptMem(decrypt, out, opened)
equal VarType(opened), ArrayOfVariants, "DecryptMem of an array of VARIANTs gives one"
equal arrays.text(opened), data, "the first receiver decrypts"
ok InStr(sender.subject, "anna@") > 0, "the certificate that DecryptMem gives is the sender's"
anna.EncryptMem encrypt, arrays.bytes(data), out
equal VarType(out), ArrayOfBytes, "EncryptMem of an array of bytes gives one"
boris.DecryptMem decrypt, out, opened, sender
equal VarType(opened), ArrayOfBytes, "DecryptMem of an array of bytes gives one"
equal arrays.text(opened), data, "the second receiver decrypts"
opened = "kept"
vera.DecryptMem decrypt, out, opened, sender
refused NotARecipient, "DecryptMem by who is no receiver"
equal opened, "kept", "its output"

' Receivers as a search gives them.
certificate_of "boris@"
encrypt.Receivers = found
anna.EncryptMem encrypt, arrays.variants(data), out
boris.DecryptMem decrypt, out, opened
equal arrays.text(opened), data, "the result of a search as the receivers"
anna.DecryptMem decrypt, out, opened
refused NotARecipient, "which were one"
encrypt.Receivers = receivers

' Files.
anna.EncryptFile encrypt, folder & "data.bin", folder & "file.p7m"
boris.DecryptFile decrypt, folder & "file.p7m", folder & "file.bin", sender
equal arrays.text(arrays.load(folder & "file.bin")), data, "EncryptFile and DecryptFile"
anna.StrEncryptFile encrypt, folder & "data.bin", folder & "stream.p7m"
Set sender = boris.StrDecryptFile(decrypt, folder & "stream.p7m", folder & "stream.bin")
equal arrays.text(arrays.load(folder & "stream.bin")), data, "StrEncryptFile and StrDecryptFile"
ok InStr(sender.subject, "anna@") > 0, "the certificate that StrDecryptFile gives is the sender's"
vera.DecryptFile decrypt, folder & "file.p7m", folder & "none.bin", sender
refused NotARecipient, "DecryptFile by who is no receiver"
arrays.load folder & "none.bin"
ok_failed "it leaves no file"

' What openssl encrypted.
anna.DecryptMem decrypt, arrays.load(messages & "both.p7m"), opened, sender
equal arrays.text(opened), data, "an envelope of openssl, opened with an RSA key"
boris.DecryptMem decrypt, arrays.load(messages & "boris.p7m"), opened, sender
equal arrays.text(opened), data, "an envelope of openssl, opened with an EC key"
anna.DecryptMem decrypt, arrays.load(messages & "boris.p7m"), opened, sender
refused NotARecipient, "an envelope for the other"
anna.DecryptMem decrypt, arrays.load(messages & "truncated.p7m"), opened, sender
refused_by_engine "a truncated envelope"
anna.DecryptMem decrypt, arrays.load(messages & "attached.p7s"), opened, sender
refused_by_engine "a signed message"
encrypt.Receivers = Empty
anna.EncryptMem encrypt, arrays.variants(data), out
refused_by_engine "EncryptMem without receivers"

finish

Function session(profile)
  Set session = CreateObject("TAVL.QUIVO")
  session.Initialize profile, 0
End Function

Function certificate_of(mail)
  Set find = CreateObject("TAVL.FindParam")
  Set template = CreateObject("TAVL.Certificate")
  template.fields = 4
  template.subject = mail
  find.flag = 512
  find.info = &h7FFFF
  Set find.certTemplate = template
  anna.FindCert find, found
  equal arrays.count(found), 1, "one certificate of " & mail
  Set certificate_of = arrays.item(found, 0)
End Function

Sub ok_failed(what)
  Dim number
  number = Err.Number
  Err.Clear
  ok number <> 0, what
End Sub
