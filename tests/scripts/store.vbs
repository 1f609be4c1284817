' The certificate store: search, decoding, additions, export and import. Arguments: a folder, the name of a profile, the folder of the PKI.
Option Explicit
On Error Resume Next

Const ArrayOfObjects = 8201
Const ArrayOfVariants = 8204
Const ArrayOfBytes = 8209
Const NoDisplay = &hE069700C

Dim arrays, files, quivo, own, fresh, folder, pki, find, template, found, anna, certificate, export, import, bytes, name, identifier

Set arrays = CreateObject("TavlTests.Arrays")
Set files = CreateObject("Scripting.FileSystemObject")
folder = WScript.Arguments(0) & "\"
pki = WScript.Arguments(2) & "\"
Set quivo = CreateObject("TAVL.QUIVO")
quivo.Initialize WScript.Arguments(1), 0

' The own certificate, with everything that it has.
found = search(1, Nothing)
equal arrays.count(found), 1, "the own certificate"
Set anna = arrays.item(found, 0)
ok InStr(anna.subject, "anna@example.test") > 0, "its subject"
ok InStr(anna.issuer, "ca@example.test") > 0, "its issuer"
equal anna.serialNumber, "1000", "its serial number"
ok Abs(Now - anna.notBefore) < 1200, "the start of its validity"
equal Round(anna.notAfter - anna.notBefore), 1095, "its validity in days"
equal anna.keyUsage, 1 + 2 + 4, "its key usage"
ok Len(anna.keyId) > 0, "its key identifier"
equal anna.subjectAltName.emailAddress, "anna@example.test", "its alternative name"
equal arrays.item(anna.policies, 0).oid, "1.3.6.1.4.1.55555.1", "its policy"
equal arrays.item(anna.extKeyUsage, 0), "1.3.6.1.5.5.7.3.4", "its extended key usage"
ok arrays.count(anna.extensions) > 3, "its extensions"
equal VarType(anna.certEncoded), ArrayOfBytes, "its encoding"
equal arrays.text(anna.certEncoded), arrays.text(arrays.load(pki & "store\anna.cer")), "its encoding is what openssl made"

' All, and by a template.
equal arrays.count(search(2, Nothing)), 4, "all certificates"
Set template = CreateObject("TAVL.Certificate")
template.fields = 1 + 2
template.issuer = anna.issuer
template.serialNumber = "1001"
found = search(0, template)
equal arrays.count(found), 1, "by issuer and serial number"
ok InStr(arrays.item(found, 0).subject, "boris@") > 0, "and it is the one"
Set template = CreateObject("TAVL.Certificate")
template.fields = 4
template.subject = "vera@"
equal arrays.count(search(512 + 32, template)), 1, "by a part of the subject"
equal arrays.count(search(0, template)), 0, "a part of the subject is not the subject"
equal VarType(search(0, template)), ArrayOfObjects, "nothing found is an array too"
template.subject = anna.subject
equal arrays.count(search(0, template)), 1, "by the whole subject"
Set template = CreateObject("TAVL.Certificate")
template.fields = 32768
template.keyId = anna.keyId
equal arrays.count(search(0, template)), 1, "by the key identifier"
Set template = CreateObject("TAVL.Certificate")
template.fields = 131072
template.certHash = anna.certHash
equal arrays.count(search(0, template)), 1, "by the hash"

' Decoding.
Set certificate = Nothing
Set certificate = quivo.ParseCert(arrays.load(pki & "store\boris.cer"), &h7FFFF)
ok InStr(certificate.subject, "boris@") > 0, "ParseCert"
equal certificate.keyUsage, 1 + 2 + 16, "the key usage of a key for agreement"
quivo.ParseCert arrays.variants(arrays.load(pki & "store\boris.cer")), 4, certificate
equal certificate.issuer, "", "ParseCert under a mask"
Set certificate = quivo.ParseCert(bytes_of("no certificate"), 4)
refused_by_engine "ParseCert of something else"

' An identifier with the hash of a certificate, in the plain form that it takes.
Set identifier = CreateObject("TAVL.CertId")
identifier.type = 2
identifier.certHash = anna.certHash
equal arrays.text(identifier.certHash), arrays.text(anna.certHash), "CertId.certHash"

' Without a display there is nothing to show on.
quivo.ShowCertificate anna.certEncoded
refused NoDisplay, "ShowCertificate"
quivo.ShowCrl arrays.load(pki & "store\ca.crl")
refused NoDisplay, "ShowCrl"

' A store of this test's own, empty at first.
Set own = CreateObject("TAVL.LocalParam")
own.pse = pki & "anna.p12"
own.pincode = "12345678"
own.localstore = folder & "store"
If files.FolderExists(folder & "store") Then files.DeleteFolder folder & "store", True
files.CreateFolder folder & "store"
quivo.Uninitialize
quivo.InitializeEx own
Dim before
before = arrays.count(search(2 + 32, Nothing))
quivo.AddCertificate Nothing, arrays.load(pki & "store\boris.cer")
quivo.AddCertificate Nothing, arrays.variants(arrays.load(pki & "store\ca.cer"))
ok Err.Number = 0, "AddCertificate"
quivo.AddCRL Nothing, arrays.load(pki & "store\ca.crl")
ok Err.Number = 0, "AddCRL"
equal arrays.count(search(2 + 32, Nothing)) > before, True, "the store has what was added"
quivo.AddCertificate Nothing, bytes_of("no certificate")
refused_by_engine "AddCertificate of something else"
quivo.AddCRL Nothing, arrays.load(pki & "store\ca.cer")
refused_by_engine "AddCRL of a certificate"
Set identifier = CreateObject("TAVL.CertId")
identifier.type = 1
identifier.keyId = anna.keyId
quivo.AddCertificate identifier, arrays.load(pki & "store\vera.cer")
ok Err.Number = 0, "AddCertificate with the own certificate named"

' Out of one store and into another.
Set export = CreateObject("TAVL.ExportParam")
export.flag = 2
quivo.ExportMem export, bytes, False
equal VarType(bytes), ArrayOfBytes, "ExportMem gives an array of bytes"
quivo.ExportMem export, bytes, True
equal VarType(bytes), ArrayOfVariants, "ExportMem gives an array of VARIANTs when it is asked for"
quivo.ExportFile export, folder & "export.p7b"
ok files.FileExists(folder & "export.p7b"), "ExportFile"
own.localstore = folder & "store2"
If files.FolderExists(folder & "store2") Then files.DeleteFolder folder & "store2", True
files.CreateFolder folder & "store2"
quivo.Uninitialize
quivo.InitializeEx own
Set import = CreateObject("TAVL.ImportParam")
import.flag = 2
quivo.ImportMem import, bytes
ok Err.Number = 0, "ImportMem"
equal arrays.count(search(2 + 32, Nothing)) > before, True, "the other store has what was exported"
import.flag = 4
quivo.ImportFile import, folder & "export.p7b"
ok Err.Number = 0, "ImportFile"
quivo.ImportMem import, bytes_of("nothing of the kind")
refused_by_engine "ImportMem of something else"
quivo.ImportFile import, folder & "missing.p7b"
refused &hE0690002, "ImportFile of a missing file"

finish

Function search(flag, template)
  Set find = CreateObject("TAVL.FindParam")
  find.flag = flag
  find.info = &h7FFFF
  If Not template Is Nothing Then Set find.certTemplate = template
  Dim result
  quivo.FindCert find, result
  search = result
End Function
