' Hashes and random numbers. Arguments: a folder, the name of a profile.
Option Explicit
On Error Resume Next

Const ArrayOfVariants = 8204
Const ArrayOfBytes = 8209
Const Sha1 = "A9993E364706816ABA3E25717850C26C9CD0D89D"
Const Sha256 = "BA7816BF8F01CFEA414140DE5DAE2223B00361A396177A9CB410FF61F20015AD"
Const Md5 = "900150983CD24FB0D6963F7D28E17F72"

Dim quivo, arrays, files, path, hash, other

Set arrays = CreateObject("TavlTests.Arrays")
Set quivo = CreateObject("TAVL.QUIVO")
quivo.Initialize WScript.Arguments(1), 0
path = WScript.Arguments(0) & "\abc.txt"
arrays.save path, "abc"

quivo.HashMem bytes_of("abc"), hash
equal VarType(hash), ArrayOfVariants, "HashMem of an array of VARIANTs gives one"
equal hexadecimal(hash), Sha256, "HashMem"
quivo.HashMem arrays.bytes("abc"), hash
equal VarType(hash), ArrayOfBytes, "HashMem of an array of bytes gives one"
equal hexadecimal(hash), Sha256, "HashMem of an array of bytes"
quivo.HashMem "abc", hash
refused &hE0690057, "HashMem of a string"
quivo.HashFile path, hash
equal VarType(hash), ArrayOfBytes, "HashFile gives an array of bytes"
equal hexadecimal(hash), Sha256, "HashFile"
quivo.StrHashFile "SHA-1", path, hash, True
equal VarType(hash), ArrayOfVariants, "StrHashFile gives an array of VARIANTs when it is asked for"
equal hexadecimal(hash), Sha1, "StrHashFile, SHA-1"
quivo.StrHashFile "MD5", path, hash, False
equal VarType(hash), ArrayOfBytes, "StrHashFile gives an array of bytes"
equal hexadecimal(hash), Md5, "StrHashFile, MD5"
quivo.StrHashFile "no such algorithm", path, hash, False
refused_by_engine "StrHashFile with an unknown algorithm"
quivo.HashFile path & ".missing", hash
refused &hE0690002, "HashFile of a missing file"

quivo.GenRandom 32, hash
quivo.GenRandom 32, other
equal VarType(hash), ArrayOfBytes, "GenRandom gives an array of bytes"
equal arrays.count(hash), 32, "GenRandom gives as many as asked for"
ok hexadecimal(hash) <> hexadecimal(other), "GenRandom gives others each time"
quivo.GenRandom 0, hash
equal hash, Empty, "GenRandom of none"
quivo.GenRandom -1, hash
refused_by_engine "GenRandom of less than none"

finish

Function hexadecimal(array)
  Dim i
  hexadecimal = ""
  For i = 0 To arrays.count(array) - 1
    hexadecimal = hexadecimal & Right("0" & Hex(arrays.item(array, i)), 2)
  Next
End Function
