' Encrypts a file to one receiver and states who encrypts it. Arguments: the sender's profile, a part of the receiver's subject, the
' key identifier of the sender's certificate, the input and the output file.
Option Explicit

Dim quivo, template, find, found, sender, encrypt

Set quivo = CreateObject("TAVL.QUIVO")
quivo.Initialize WScript.Arguments(0), 0

Set template = CreateObject("TAVL.Certificate")
template.fields = 4
template.subject = WScript.Arguments(1)
Set find = CreateObject("TAVL.FindParam")
find.flag = 512
find.info = &h7FFFF
Set find.certTemplate = template
quivo.FindCert find, found

Set sender = CreateObject("TAVL.CertId")
sender.type = 1
sender.keyId = WScript.Arguments(2)

Set encrypt = CreateObject("TAVL.EncryptParam")
encrypt.flag = 1
encrypt.Receivers = found
Set encrypt.mycert = sender
quivo.EncryptFile encrypt, WScript.Arguments(3), WScript.Arguments(4)
quivo.Uninitialize
