' Tells everything of a certificate, line by line, for openssl to say the same. Arguments: a folder, a certificate.
Option Explicit
On Error Resume Next

Dim arrays, files, quivo, certificate, lines, i, item

Set arrays = CreateObject("TavlTests.Arrays")
Set files = CreateObject("Scripting.FileSystemObject")
Set quivo = CreateObject("TAVL.QUIVO")
quivo.InitMinimal
Set certificate = quivo.ParseCert(arrays.load(WScript.Arguments(1)), &h7FFFF)
ok IsObject(certificate), "ParseCert"

Set lines = files.CreateTextFile(WScript.Arguments(0) & "\lines", True)
tell "serial", certificate.serialNumber
tell "issuer", certificate.issuer
tell "subject", certificate.subject
tell "notBefore", iso(certificate.notBefore)
tell "notAfter", iso(certificate.notAfter)
tell "algorithm", certificate.algorithm
tell "keyUsage", certificate.keyUsage
tell "keyId", certificate.keyId
tell "hash", hex_of(certificate.certHash)
For i = 0 To arrays.count(certificate.extKeyUsage) - 1
  tell "usage", arrays.item(certificate.extKeyUsage, i)
Next
tell "email", certificate.subjectAltName.emailAddress
tell "dns", certificate.subjectAltName.DNS
tell "uri", certificate.subjectAltName.URI
tell "ip", certificate.subjectAltName.IP
tell "issuerEmail", certificate.issuerAltName.emailAddress
For i = 0 To arrays.count(certificate.policies) - 1
  Set item = arrays.item(certificate.policies, i)
  tell "policy", item.oid
  If item.org_name <> "" Then tell "notice", item.org_name & "," & item.not_num & "," & item.text
Next
For i = 0 To arrays.count(certificate.extensions) - 1
  Set item = arrays.item(certificate.extensions, i)
  tell "extension", item.critical & " " & hex_of(item.data)
Next
tell "der", hex_of(certificate.certEncoded)
lines.Close
ok Err.Number = 0, "every property"
finish

Sub tell(name, value)
  lines.WriteLine name & "=" & value
End Sub

' A time as openssl writes it.
Function iso(time)
  iso = Year(time) & "-" & two(Month(time)) & "-" & two(Day(time)) & " " & two(Hour(time)) & ":" & two(Minute(time)) & ":" & two(Second(time)) & "Z"
End Function

Function two(number)
  two = Right("0" & number, 2)
End Function

Function hex_of(bytes)
  Dim parts, k
  parts = arrays.variants(bytes)
  hex_of = ""
  For k = 0 To UBound(parts)
    hex_of = hex_of & Right("0" & Hex(parts(k)), 2)
  Next
End Function
