' Verifies what openssl signed, in every way. Arguments: a folder, the name of a profile, the folder of the messages.
Option Explicit
On Error Resume Next

Const ArrayOfObjects = 8201
Const ArrayOfVariants = 8204
Const ArrayOfBytes = 8209
Const InvalidArgument = &hE0690057
Const BadSignature = &hE0697021
Const Revoked = &hE0697026
Const KeyUsageMissing = &hE0697028
Const TooFew = &hE069702C
' No file. On Windows a null string (vbNullString) means the same; Wine's script hosts cannot pass one.
Const NoFile = "NUL"

Dim quivo, arrays, param, find, own, folder, messages, data, results, content, name, i

Set arrays = CreateObject("TavlTests.Arrays")
Set quivo = CreateObject("TAVL.QUIVO")
quivo.Initialize WScript.Arguments(1), 0
folder = WScript.Arguments(0) & "\"
messages = WScript.Arguments(2) & "\"
data = arrays.text(arrays.load(messages & "data.bin"))

' The content comes back in the form of the data, and data that is not given has the plain one.
Set param = verification(0)
param.info = &h7FFFF
For Each name In Array("attached.p7s", "ec.p7s", "keyid.p7s", "two.p7s")
  quivo.VerifyMem param, Empty, message(name), content, results
  ok Err.Number = 0, name & " is accepted"
  equal arrays.kind(content), ArrayOfBytes, name & ": the form of the content"
  equal arrays.text(content), data, name & ": the content"
  equal VarType(results), ArrayOfObjects, name & ": the form of the results"
  equal arrays.count(results), signers(name), name & ": the results"
  For i = 0 To arrays.count(results) - 1
    equal arrays.item(results, i).status, 0, name & ": the status of each signature"
    ok Abs(Now - arrays.item(results, i).time) < 2, name & ": the time of each signature"
    ok InStr(arrays.item(results, i).cert.subject, "@example.test") > 0, name & ": the signer's subject"
    ok Len(arrays.item(results, i).cert.issuer) > 0, name & ": the signer's issuer"
  Next
Next

' The mask decides what a certificate shows.
param.info = 4
quivo.VerifyMem param, Empty, message("attached.p7s"), content, results
ok Len(arrays.item(results, 0).cert.subject) > 0, "the subject, when it is asked for"
equal arrays.item(results, 0).cert.issuer, "", "no issuer, when it is not"

' Beside the data, in both forms.
Set param = verification(2)
quivo.VerifyMem param, arrays.variants(data), message("detached.p7s"), content, results
ok Err.Number = 0, "a detached signature is accepted"
quivo.VerifyMem param, arrays.bytes(data), arrays.load(messages & "two.detached.p7s"), content, results
equal arrays.count(results), 2, "a detached signature of two, in the plain form"
quivo.VerifyMem param, arrays.variants(data), arrays.load(messages & "detached.p7s"), content, results
refused InvalidArgument, "data and signature in different forms"
quivo.VerifyMem param, arrays.variants(data & "!"), message("two.detached.p7s"), content, results
refused BadSignature, "other data"
equal arrays.count(results), 2, "the results of a refused verification"
equal arrays.item(results, 0).status And &hFFFF, &h7021, "the status of a bad signature"

' Refusals, each with its number.
Set param = verification(0)
quivo.VerifyMem param, Empty, message("signature.flipped.p7s"), content, results
refused BadSignature, "a changed signature"
quivo.VerifyMem param, Empty, message("content.flipped.p7s"), content, results
refused BadSignature, "a changed content"
quivo.VerifyMem param, Empty, message("revoked.p7s"), content, results
refused Revoked, "a revoked certificate"
equal arrays.item(results, 0).status And &hFFFF, &h7026, "the status of a revoked signer"
quivo.VerifyMem param, Empty, message("data.bin"), content, results
refused_by_engine "what is no signature"

' What can be required.
Set param = verification(8)
param.keyUsage = 1
quivo.VerifyMem param, Empty, message("attached.p7s"), content, results
ok Err.Number = 0, "a key usage that the certificate has"
param.keyUsage = 32
quivo.VerifyMem param, Empty, message("attached.p7s"), content, results
refused KeyUsageMissing, "a key usage that it has not"
Set param = verification(128)
param.minsigns = 2
quivo.VerifyMem param, Empty, message("two.p7s"), content, results
ok Err.Number = 0, "two signatures required of two"
quivo.VerifyMem param, Empty, message("attached.p7s"), content, results
refused TooFew, "two signatures required of one"

' Lists for requirements come from certificates: scripts cannot make arrays of these types.
Set find = CreateObject("TAVL.FindParam")
find.flag = 1
find.info = &h7FFFF
quivo.FindCert find, results
Set own = arrays.item(results, 0)
Set param = verification(16 + 32)
param.policies = own.policies
param.extKeyUsage = own.extKeyUsage
equal arrays.count(param.policies), 1, "the policies of a certificate as a requirement"
equal arrays.count(param.extKeyUsage), 2, "the extended key usages of a certificate as a requirement"
quivo.VerifyMem param, Empty, message("attached.p7s"), content, results
ok Err.Number = 0, "policies and extended key usages that the certificate has"

' Removal of signatures.
Set param = verification(4)
param.nSignToDelete = 0
quivo.VerifyMem param, Empty, message("two.p7s"), content, results
equal arrays.count(results), 2, "the results with a removal"
quivo.VerifyMem verification(0), Empty, content, content, results
equal arrays.count(results), 1, "one signature is left of two"
param.nSignToDelete = -1
quivo.VerifyMem param, Empty, message("two.p7s"), content, results
equal arrays.text(content), data, "the content is left of a message without its signatures"

' Files.
Set param = verification(0)
quivo.VerifyFile param, NoFile, messages & "attached.p7s", folder & "content.bin", results
equal arrays.count(results), 1, "VerifyFile"
equal arrays.text(arrays.load(folder & "content.bin")), data, "the content that VerifyFile writes"
quivo.StrVerifyFile param, NoFile, messages & "two.p7s", folder & "stream.bin", results
equal arrays.count(results), 2, "StrVerifyFile"
equal arrays.text(arrays.load(folder & "stream.bin")), data, "the content that StrVerifyFile writes"
Set param = verification(2)
quivo.VerifyFile param, messages & "data.bin", messages & "detached.p7s", NoFile, results
equal arrays.item(results, 0).status, 0, "VerifyFile of a detached signature"
quivo.StrVerifyFile param, messages & "data.bin", messages & "two.detached.p7s", NoFile, results
equal arrays.count(results), 2, "StrVerifyFile of a detached signature"
quivo.StrVerifyFile param, messages & "both.p7m", messages & "detached.p7s", NoFile, results
refused BadSignature, "StrVerifyFile of other data"
equal arrays.count(results), 1, "its results"
quivo.VerifyFile param, NoFile, messages & "missing.p7s", NoFile, results
refused &hE0690002, "VerifyFile of a missing file"

finish

Function verification(flag)
  Set verification = CreateObject("TAVL.VerifyParam")
  verification.flag = 1 + flag
End Function

Function message(name)
  message = arrays.variants(arrays.load(messages & name))
End Function

Function signers(name)
  signers = 1
  If name = "two.p7s" Then signers = 2
End Function
