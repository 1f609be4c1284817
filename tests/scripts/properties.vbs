' Every property of every class that holds something: what a new object has, and that what is put is what is got.
Option Explicit
On Error Resume Next

Const InvalidArgument = 5
Const ArrayOfObjects = 8201
Const ArrayOfStrings = 8200

Dim object, other, certid, certificate, altname, word, class_name

' A Russian word passes through the engine's code page and comes back; a character outside it would not.
word = Chr(207) & Chr(240) & Chr(232) & Chr(236) & Chr(229) & Chr(240)

' The certificate identifier: its properties belong to its type.
Set object = CreateObject("TAVL.CertId")
equal object.type, -1, "CertId.type at first"
equal object.issuer, "", "CertId.issuer at first"
equal object.serialNumber, "", "CertId.serialNumber at first"
equal object.keyId, "", "CertId.keyId at first"
equal object.certHash, Empty, "CertId.certHash at first"
object.issuer = word
refused InvalidArgument, "CertId.issuer before the type"
object.type = 0
object.issuer = word
object.serialNumber = "0A 0B"
equal object.issuer, word, "CertId.issuer"
equal object.serialNumber, "0A 0B", "CertId.serialNumber"
object.keyId = "0C"
refused InvalidArgument, "CertId.keyId of type 0"
object.type = 0
equal object.issuer, word, "CertId.issuer after the same type again"
object.type = 1
equal object.issuer, "", "CertId.issuer of type 1"
object.keyId = "0C"
equal object.keyId, "0C", "CertId.keyId"
object.type = 0
equal object.issuer, "", "CertId.issuer after another type"
object.type = 2
equal object.certHash, Empty, "CertId.certHash of type 2"
object.certHash = Empty
equal object.certHash, Empty, "CertId.certHash takes Empty"
object.certHash = bytes_of("abc")
refused InvalidArgument, "CertId.certHash refuses an array of VARIANTs"
object.certHash = "abc"
refused InvalidArgument, "CertId.certHash refuses a string"
object.type = 5
equal object.type, 5, "CertId.type takes any number"
object.keyId = "0C"
refused InvalidArgument, "CertId.keyId of type 5"

' The parameter objects.
For Each class_name In Array("SignParam", "VerifyParam", "EncryptParam", "DecryptParam", "FindParam", "ExportParam", "ImportParam")
  Set object = CreateObject("TAVL." & class_name)
  equal object.flag, 0, class_name & ".flag at first"
  object.flag = -1
  equal object.flag, -1, class_name & ".flag takes every bit"
  ok object.mycert Is Nothing, class_name & ".mycert at first"
  Set certid = CreateObject("TAVL.CertId")
  Set object.mycert = certid
  ok object.mycert Is certid, class_name & ".mycert"
  Set object.mycert = Nothing
  ok object.mycert Is Nothing, class_name & ".mycert takes Nothing"
Next

Set object = CreateObject("TAVL.VerifyParam")
equal object.keyUsage, 0, "VerifyParam.keyUsage at first"
equal object.nSignToDelete, 0, "VerifyParam.nSignToDelete at first"
equal object.minsigns, 0, "VerifyParam.minsigns at first"
equal object.info, 0, "VerifyParam.info at first"
object.keyUsage = 3
object.nSignToDelete = -1
object.minsigns = 2
object.info = &h7FFFF
equal object.keyUsage, 3, "VerifyParam.keyUsage"
equal object.nSignToDelete, -1, "VerifyParam.nSignToDelete"
equal object.minsigns, 2, "VerifyParam.minsigns"
equal object.info, 524287, "VerifyParam.info"
equal VarType(object.policies), ArrayOfObjects, "VerifyParam.policies at first"
equal VarType(object.extensions), ArrayOfObjects, "VerifyParam.extensions at first"
equal VarType(object.extKeyUsage), ArrayOfStrings, "VerifyParam.extKeyUsage at first"
object.policies = Empty
object.extensions = Empty
object.extKeyUsage = Empty
ok True, "VerifyParam takes Empty for its arrays"
object.policies = Array(CreateObject("TAVL.Policy"))
refused InvalidArgument, "VerifyParam.policies refuses an array of VARIANTs"
object.extensions = Array(CreateObject("TAVL.Extension"))
refused InvalidArgument, "VerifyParam.extensions refuses an array of VARIANTs"
object.extKeyUsage = Array("1.3.6.1.5.5.7.3.4")
refused InvalidArgument, "VerifyParam.extKeyUsage refuses an array of VARIANTs"
object.extKeyUsage = object.extKeyUsage
ok True, "VerifyParam.extKeyUsage takes what it gave"

Set certificate = CreateObject("TAVL.Certificate")
Set object = CreateObject("TAVL.EncryptParam")
equal VarType(object.Receivers), ArrayOfObjects, "EncryptParam.Receivers at first"
object.Receivers = Array(certificate, CreateObject("TAVL.Certificate"))
ok True, "EncryptParam.Receivers takes an array of certificates"
equal VarType(object.Receivers), ArrayOfObjects, "EncryptParam.Receivers"
object.Receivers = object.Receivers
ok True, "EncryptParam.Receivers takes what it gave"
object.Receivers = 5
refused InvalidArgument, "EncryptParam.Receivers refuses a number"
object.Receivers = Array(CreateObject("TAVL.CertId"))
refused InvalidArgument, "EncryptParam.Receivers refuses objects of another class"
object.Receivers = Empty
ok True, "EncryptParam.Receivers takes Empty"

Set object = CreateObject("TAVL.DecryptParam")
equal object.info, 0, "DecryptParam.info at first"
object.info = 1
equal object.info, 1, "DecryptParam.info"

Set object = CreateObject("TAVL.FindParam")
equal object.info, 0, "FindParam.info at first"
object.info = &h80000000
equal object.info, &h80000000, "FindParam.info"
ok object.certTemplate Is Nothing, "FindParam.certTemplate at first"
Set object.certTemplate = certificate
ok object.certTemplate Is certificate, "FindParam.certTemplate"
Set object.certTemplate = Nothing
ok object.certTemplate Is Nothing, "FindParam.certTemplate takes Nothing"

' The certificate and its parts.
Set object = CreateObject("TAVL.Certificate")
equal object.fields, 0, "Certificate.fields at first"
equal object.keyUsage, 0, "Certificate.keyUsage at first"
equal object.issuer, "", "Certificate.issuer at first"
equal object.certEncoded, Empty, "Certificate.certEncoded at first"
equal object.certHash, Empty, "Certificate.certHash at first"
object.fields = 7
object.keyUsage = 511
object.issuer = word & " 1"
object.serialNumber = word & " 2"
object.subject = word & " 3"
object.algorithm = word & " 4"
object.issuerUID = word & " 5"
object.subjectUID = word & " 6"
object.keyId = word & " 7"
equal object.fields, 7, "Certificate.fields"
equal object.keyUsage, 511, "Certificate.keyUsage"
equal object.issuer, word & " 1", "Certificate.issuer"
equal object.serialNumber, word & " 2", "Certificate.serialNumber"
equal object.subject, word & " 3", "Certificate.subject"
equal object.algorithm, word & " 4", "Certificate.algorithm"
equal object.issuerUID, word & " 5", "Certificate.issuerUID"
equal object.subjectUID, word & " 6", "Certificate.subjectUID"
equal object.keyId, word & " 7", "Certificate.keyId"
object.certEncoded = Empty
object.certHash = Empty
ok True, "Certificate takes Empty for its byte arrays"
object.certEncoded = bytes_of("abc")
refused InvalidArgument, "Certificate.certEncoded refuses an array of VARIANTs"
object.certHash = bytes_of("abc")
refused InvalidArgument, "Certificate.certHash refuses an array of VARIANTs"

' Setting the start of a period clears its end: the end is set after it.
equal object.notBefore, DateSerial(1970, 1, 1), "Certificate.notBefore at first"
object.notBefore = DateSerial(2026, 1, 2) + TimeSerial(3, 4, 5)
object.notAfter = DateSerial(2027, 1, 2)
equal object.notBefore, DateSerial(2026, 1, 2) + TimeSerial(3, 4, 5), "Certificate.notBefore"
equal object.notAfter, DateSerial(2027, 1, 2), "Certificate.notAfter"
object.notBefore = DateSerial(2026, 1, 3)
equal object.notAfter, DateSerial(1970, 1, 1), "Certificate.notAfter after notBefore"
object.notBeforePrivate = DateSerial(2026, 1, 2)
object.notAfterPrivate = DateSerial(2027, 1, 2)
equal object.notBeforePrivate, DateSerial(2026, 1, 2), "Certificate.notBeforePrivate"
equal object.notAfterPrivate, DateSerial(2027, 1, 2), "Certificate.notAfterPrivate"
object.notBeforePrivate = DateSerial(2026, 1, 3)
equal object.notAfterPrivate, DateSerial(1970, 1, 1), "Certificate.notAfterPrivate after notBeforePrivate"
object.notAfter = DateSerial(9999, 12, 31) + TimeSerial(12, 0, 0)
refused InvalidArgument, "Certificate.notAfter on the last date, behind midnight"

equal VarType(object.policies), ArrayOfObjects, "Certificate.policies at first"
equal VarType(object.extensions), ArrayOfObjects, "Certificate.extensions at first"
equal VarType(object.extKeyUsage), ArrayOfStrings, "Certificate.extKeyUsage at first"
object.policies = object.policies
object.extensions = object.extensions
object.extKeyUsage = object.extKeyUsage
ok True, "Certificate takes the arrays that it gave"
object.policies = Array(CreateObject("TAVL.Policy"))
refused InvalidArgument, "Certificate.policies refuses an array of VARIANTs"

ok object.issuerAltName Is Nothing, "Certificate.issuerAltName at first"
ok object.subjectAltName Is Nothing, "Certificate.subjectAltName at first"
Set altname = CreateObject("TAVL.AltName")
Set other = CreateObject("TAVL.AltName")
Set object.issuerAltName = altname
Set object.subjectAltName = other
ok object.issuerAltName Is altname, "Certificate.issuerAltName"
ok object.subjectAltName Is other, "Certificate.subjectAltName"

equal altname.emailAddress, "", "AltName.emailAddress at first"
altname.emailAddress = word & " 1"
altname.DNS = word & " 2"
altname.URI = word & " 3"
altname.IP = word & " 4"
altname.organizationName = word & " 5"
altname.registredAddress = word & " 6"
altname.surname = word & " 7"
altname.businessCategory = word & " 8"
altname.telephoneNumber = word & " 9"
altname.description = word & " 10"
altname.account_number = word & " 11"
altname.bank_id = word & " 12"
altname.physicalDelivery = word & " 13"
altname.exchange_address = word & " 14"
equal altname.emailAddress, word & " 1", "AltName.emailAddress"
equal altname.DNS, word & " 2", "AltName.DNS"
equal altname.URI, word & " 3", "AltName.URI"
equal altname.IP, word & " 4", "AltName.IP"
equal altname.organizationName, word & " 5", "AltName.organizationName"
equal altname.registredAddress, word & " 6", "AltName.registredAddress"
equal altname.surname, word & " 7", "AltName.surname"
equal altname.businessCategory, word & " 8", "AltName.businessCategory"
equal altname.telephoneNumber, word & " 9", "AltName.telephoneNumber"
equal altname.description, word & " 10", "AltName.description"
equal altname.account_number, word & " 11", "AltName.account_number"
equal altname.bank_id, word & " 12", "AltName.bank_id"
equal altname.physicalDelivery, word & " 13", "AltName.physicalDelivery"
equal altname.exchange_address, word & " 14", "AltName.exchange_address"
altname.extraName = "x"
refused 438, "AltName.extraName, which the type library does not describe"

Set object = CreateObject("TAVL.Policy")
equal object.oid, "", "Policy.oid at first"
equal object.not_num, 0, "Policy.not_num at first"
object.oid = "1.2.3"
object.org_name = word
object.not_num = 4
object.text = word & " 2"
equal object.oid, "1.2.3", "Policy.oid"
equal object.org_name, word, "Policy.org_name"
equal object.not_num, 4, "Policy.not_num"
equal object.text, word & " 2", "Policy.text"

Set object = CreateObject("TAVL.Extension")
equal object.oid, "", "Extension.oid at first"
equal object.data, Empty, "Extension.data at first"
object.oid = "1.2.3"
object.type = 2
object.critical = 1
object.data = Empty
equal object.oid, "1.2.3", "Extension.oid"
equal object.type, 2, "Extension.type"
equal object.critical, 1, "Extension.critical"
object.data = bytes_of("abc")
refused InvalidArgument, "Extension.data refuses an array of VARIANTs"

' The status of a signature: its time can be read only.
Set object = CreateObject("TAVL.SignStatus")
equal object.status, 0, "SignStatus.status at first"
object.status = 5
equal object.status, 5, "SignStatus.status"
equal object.time, DateSerial(1970, 1, 1), "SignStatus.time at first"
object.time = DateSerial(2026, 1, 2)
ok True, "SignStatus.time is put without an error"
equal object.time, DateSerial(1970, 1, 1), "SignStatus.time after a put"
object.time = DateSerial(9999, 12, 31) + TimeSerial(12, 0, 0)
refused InvalidArgument, "SignStatus.time on the last date, behind midnight"
ok object.cert Is Nothing, "SignStatus.cert at first"
Set object.cert = certificate
ok object.cert Is certificate, "SignStatus.cert"
Set object.cert = Nothing
ok object.cert Is Nothing, "SignStatus.cert takes Nothing"

' The session parameters.
Set object = CreateObject("TAVL.LocalParam")
equal object.pse, "", "LocalParam.pse at first"
equal object.flag, 0, "LocalParam.flag at first"
object.pse = word & " 1"
object.localstore = word & " 2"
object.ldap = word & " 3"
object.flag = &h80000000
object.pincode = word & " 4"
equal object.pse, word & " 1", "LocalParam.pse"
equal object.localstore, word & " 2", "LocalParam.localstore"
equal object.ldap, word & " 3", "LocalParam.ldap"
equal object.flag, &h80000000, "LocalParam.flag"
equal object.pincode, word & " 4", "LocalParam.pincode"

Set object = CreateObject("TAVL.RSrvParam")
equal object.timeout, 0, "RSrvParam.timeout at first"
equal object.flag, 0, "RSrvParam.flag at first"
equal VarType(object.servers), ArrayOfStrings, "RSrvParam.servers at first"
object.timeout = 30
object.flag = 1
object.servers = object.servers
object.servers = Empty
ok True, "RSrvParam.servers takes Empty and what it gave"
equal object.timeout, 30, "RSrvParam.timeout"
equal object.flag, 1, "RSrvParam.flag"
object.servers = Array("one", "two")
refused InvalidArgument, "RSrvParam.servers refuses an array of VARIANTs"

finish
