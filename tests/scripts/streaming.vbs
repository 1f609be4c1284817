' Every streaming method, in pieces, and in both forms. Arguments: the names of two profiles.
Option Explicit
On Error Resume Next

Const ArrayOfObjects = 8201
Const ArrayOfVariants = 8204
Const ArrayOfBytes = 8209
Const InvalidArgument = &hE0690057
Const Sha256 = "BA7816BF8F01CFEA414140DE5DAE2223B00361A396177A9CB410FF61F20015AD"

Dim arrays, quivo, other, stream, sign, verify, encrypt, decrypt, find, found, data, piece, out, results, whole, left_over, sender, own, i

Set arrays = CreateObject("TavlTests.Arrays")
Set quivo = CreateObject("TAVL.QUIVO")
quivo.Initialize WScript.Arguments(0), 0
Set other = CreateObject("TAVL.QUIVO")
other.Initialize WScript.Arguments(1), 0
Set sign = CreateObject("TAVL.SignParam")
Set verify = CreateObject("TAVL.VerifyParam")
Set encrypt = CreateObject("TAVL.EncryptParam")
Set decrypt = CreateObject("TAVL.DecryptParam")
verify.info = 4
decrypt.info = 4

' Three hundred bytes, given in pieces of a hundred.
data = ""
For i = 0 To 299
  data = data & Chr(i Mod 256)
Next

' Hashes.
Set stream = CreateObject("TAVL.StreamCtx")
quivo.StrHashInitMem "SHA-256", stream
quivo.StrHashUpdateMem stream, bytes_of("ab")
quivo.StrHashUpdateMem stream, bytes_of("c")
quivo.StrHashFinalMem stream, out
equal VarType(out), ArrayOfVariants, "StrHashFinalMem gives the form of the pieces"
equal hexadecimal(out), Sha256, "a hash of pieces"
Set stream = CreateObject("TAVL.StreamCtx")
quivo.StrHashInitMem "SHA-256", stream
quivo.StrHashUpdateMem stream, arrays.bytes("abc")
quivo.StrHashUpdateMem stream, bytes_of("d")
refused InvalidArgument, "a piece in another form"
out = quivo.StrHashFinalMem(stream)
equal VarType(out), ArrayOfBytes, "StrHashFinalMem gives the plain form"
equal hexadecimal(out), Sha256, "the stream went on after the refusal"
quivo.StrHashInitMem "no such algorithm", CreateObject("TAVL.StreamCtx")
refused_by_engine "StrHashInitMem with an unknown algorithm"
quivo.StrHashInitMem "SHA-256", Nothing
refused InvalidArgument, "StrHashInitMem without a stream"

' A signature with the content, then a detached one, and a second one added to that.
sign.flag = 1 + 8
Set stream = CreateObject("TAVL.StreamCtx")
quivo.StrSignInitMem sign, Empty, stream
For i = 0 To 2
  quivo.StrSignUpdateMem sign, stream, bytes_of(Mid(data, 100 * i + 1, 100))
Next
quivo.StrSignFinalMem sign, stream, whole
equal VarType(whole), ArrayOfVariants, "StrSignFinalMem gives the form of the pieces"
verify.flag = 1
quivo.VerifyMem verify, Empty, whole, out, results
equal arrays.text(out), data, "what was signed in pieces verifies"

sign.flag = 1 + 2 + 8
Set stream = CreateObject("TAVL.StreamCtx")
quivo.StrSignInitMem sign, Empty, stream
quivo.StrSignUpdateMem sign, stream, arrays.bytes(data)
quivo.StrSignFinalMem sign, stream, out
equal VarType(out), ArrayOfBytes, "StrSignFinalMem gives the plain form"
Set stream = CreateObject("TAVL.StreamCtx")
other.StrSignInitMem sign, arrays.variants(out), stream
other.StrSignUpdateMem sign, stream, bytes_of(data)
other.StrSignFinalMem sign, stream, out
ok Err.Number = 0, "a signature is added to the one that Init was given"

' Verification of the two, in pieces.
verify.flag = 1 + 2
Set stream = CreateObject("TAVL.StreamCtx")
quivo.StrVerifyInitMem verify, out, stream
For i = 0 To 2
  quivo.StrVerifyUpdateMem verify, stream, bytes_of(Mid(data, 100 * i + 1, 100))
Next
quivo.StrVerifyFinalMem verify, stream, piece, results
equal VarType(results), ArrayOfObjects, "StrVerifyFinalMem"
equal arrays.count(results), 2, "its results"
equal arrays.item(results, 1).status, 0, "the status of the second signature"
Set stream = CreateObject("TAVL.StreamCtx")
quivo.StrVerifyInitMem verify, out, stream
quivo.StrVerifyUpdateMem verify, stream, bytes_of(Mid(data, 2))
quivo.StrVerifyFinalMem verify, stream, piece, results
refused &hE0697021, "StrVerifyFinalMem over other data"
verify.flag = 1
Set stream = CreateObject("TAVL.StreamCtx")
quivo.StrVerifyInitMem verify, Empty, stream
quivo.StrVerifyUpdateMem verify, stream, arrays.variants(Left(arrays.text(whole), 200))
quivo.StrVerifyUpdateMem verify, stream, arrays.variants(Mid(arrays.text(whole), 201))
quivo.StrVerifyFinalMem verify, stream, out, results
equal arrays.text(out), data, "a message with its content, verified in pieces"

' Encryption to all whom the store knows, decryption by one of them.
Set find = CreateObject("TAVL.FindParam")
find.flag = 2
find.info = &h7FFFF
quivo.FindCert find, found
encrypt.flag = 1
encrypt.Receivers = Array(receiver("anna@"), receiver("boris@"))
Set own = CreateObject("TAVL.CertId")
own.type = 1
own.keyId = receiver("anna@").keyId
Set encrypt.mycert = own
Set stream = CreateObject("TAVL.StreamCtx")
quivo.StrEncryptInitMem encrypt, stream
whole = ""
For i = 0 To 2
  quivo.StrEncryptUpdateMem encrypt, stream, bytes_of(Mid(data, 100 * i + 1, 100)), out
  whole = whole & arrays.text(out)
Next
quivo.StrEncryptFinalMem encrypt, stream, out
equal VarType(out), ArrayOfVariants, "StrEncryptFinalMem gives the form of the pieces"
whole = whole & arrays.text(out)

decrypt.flag = 1
Set stream = CreateObject("TAVL.StreamCtx")
left_over = 5
other.StrDecryptInitMem decrypt, bytes_of(Left(whole, 50)), left_over, stream
equal left_over, 0, "nothing is left over by StrDecryptInitMem"
piece = ""
For i = 0 To 100
  If 51 + 64 * i <= Len(whole) Then
    other.StrDecryptUpdateMem decrypt, stream, bytes_of(Mid(whole, 51 + 64 * i, 64)), left_over, out
    piece = piece & arrays.text(out)
  End If
Next
Set sender = Nothing
Set sender = other.StrDecryptFinalMem(decrypt, stream)
equal piece, data, "what was encrypted in pieces is decrypted in pieces"
ok InStr(sender.subject, "anna@") > 0, "the certificate that StrDecryptFinalMem gives is the sender's"

' A stream of one kind is no stream of another.
Set stream = CreateObject("TAVL.StreamCtx")
quivo.StrHashInitMem "SHA-256", stream
quivo.StrSignUpdateMem sign, stream, bytes_of("a")
refused_by_engine "a hash stream given to signing"
quivo.StrSignUpdateMem sign, CreateObject("TAVL.StreamCtx"), bytes_of("a")
refused_by_engine "a stream without Init"

finish

Function receiver(mail)
  Dim i
  For i = 0 To arrays.count(found) - 1
    If InStr(arrays.item(found, i).subject, mail) > 0 Then Set receiver = arrays.item(found, i)
  Next
End Function

Function hexadecimal(array)
  Dim i
  hexadecimal = ""
  For i = 0 To arrays.count(array) - 1
    hexadecimal = hexadecimal & Right("0" & Hex(arrays.item(array, i)), 2)
  Next
End Function
