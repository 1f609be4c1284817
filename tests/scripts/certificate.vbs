' Prints everything in a certificate, line by line, to compare it with what openssl prints. Arguments: a folder, a certificate.
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
show "serial", certificate.serialNumber
show "issuer", certificate.issuer
show "subject", certificate.subject
show "notBefore", iso(certificate.notBefore)
show "notAfter", iso(certificate.notAfter)
show "algorithm", certificate.algorithm
show "keyUsage", certificate.keyUsage
show "keyId", certificate.keyId
show "hash", hex_of(certificate.certHash)
For i = 0 To arrays.count(certificate.extKeyUsage) - 1
  show "usage", arrays.item(certificate.extKeyUsage, i)
Next
show "email", certificate.subjectAltName.emailAddress
show "dns", certificate.subjectAltName.DNS
show "uri", certificate.subjectAltName.URI
show "ip", certificate.subjectAltName.IP
show "issuerEmail", certificate.issuerAltName.emailAddress
For i = 0 To arrays.count(certificate.policies) - 1
  Set item = arrays.item(certificate.policies, i)
  show "policy", item.oid
  If item.org_name <> "" Then show "notice", item.org_name & "," & item.not_num & "," & item.text
Next
For i = 0 To arrays.count(certificate.extensions) - 1
  Set item = arrays.item(certificate.extensions, i)
  show "extension", item.critical & " " & hex_of(item.data)
Next
show "der", hex_of(certificate.certEncoded)
lines.Close
ok Err.Number = 0, "every property"
finish

Sub show(name, value)
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
