' What the lines of the manual's methods find ready. Arguments: the name of a profile, a folder with a key and a store.
On Error Resume Next
Const NoFile = "NUL"
Dim quivo, profile, legacy, localParam, stream, ownId, receiver, template
Dim signParam, verifyParam, encryptParam, decryptParam, findParam, exportParam, importParam
Dim data, signed, encrypted, certificate, certificateText, crl
Dim arrays, files, folder, sampleName, samplesDone, samplesFailed

Set arrays = CreateObject("TavlTests.Arrays")
Set files = CreateObject("Scripting.FileSystemObject")
profile = WScript.Arguments(0)
folder = WScript.Arguments(1) & "\"
data = arrays.variants(arrays.load("C:\docs\contract.txt"))
signed = arrays.variants(arrays.load("C:\docs\contract.p7s"))
encrypted = arrays.variants(arrays.load("C:\docs\contract.p7e"))
certificate = arrays.load(folder & "store\boris.cer")
certificateText = arrays.load(folder & "store\anna.cer")
crl = arrays.load(folder & "store\ca.crl")

Function made(name)
  Set made = CreateObject("TAVL." & name)
End Function

' Makes new objects for the lines of a method.
Sub begin(name)
  Dim file, signature
  sampleName = name
  For Each file In files.GetFolder("C:\docs").Files
    If InStr(file.Name, "contract.") <> 1 And file.Name <> "partner.cer" Then files.DeleteFile "C:\docs\" & file.Name
  Next
  Set localParam = made("LocalParam")
  localParam.pse = folder & "anna.p12"
  localParam.localstore = folder & "store"
  localParam.pincode = "12345678"
  Set quivo = made("QUIVO")
  quivo.InitializeEx localParam
  Set findParam = made("FindParam")
  findParam.flag = 1
  findParam.info = &h7FFFF
  Set receiver = arrays.item(quivo.FindCert(findParam), 0)
  Set ownId = made("CertId")
  ownId.type = 1
  ownId.keyId = receiver.keyId
  Set signParam = made("SignParam")
  signParam.flag = 1 + 8
  Set verifyParam = made("VerifyParam")
  verifyParam.flag = 1
  verifyParam.info = 4
  Set encryptParam = made("EncryptParam")
  encryptParam.flag = 1
  encryptParam.Receivers = Array(receiver)
  Set encryptParam.mycert = ownId
  Set decryptParam = made("DecryptParam")
  decryptParam.flag = 1
  decryptParam.info = 4
  Set exportParam = made("ExportParam")
  Set importParam = made("ImportParam")
  Set template = made("Certificate")
  template.fields = 4
  template.subject = "CN=Script, C=RU"
  Set stream = made("StreamCtx")
  ' Leaves the thread without the last error of the objects' creation, which this method would report.
  If name = "QUIVO.GetCurrentProfileNameVBS" Then quivo.HashFile "C:\docs\contract.txt", signature
  If InStr(name, "pkiobj.") = 1 Then
    Set legacy = made("pkiobj")
    legacy.Init profile
  End If
  If Err.Number <> 0 Then fail "what it uses cannot be made: error " & Hex(Err.Number)
  Err.Clear
End Sub

' Judges the lines: they raised no error, or the one that is stated, and the files are there.
Sub judge(expected, paths)
  Dim actual, path
  actual = Err.Number
  Err.Clear
  samplesDone = samplesDone + 1
  If expected = "" And actual <> 0 Then fail "error " & Hex(actual)
  If expected <> "" And "0x" & Hex(actual) <> expected Then fail "error " & Hex(actual) & ", not " & expected
  For Each path In paths
    If Not files.FileExists(path) Then fail path & " is not there"
  Next
  If IsObject(legacy) Then legacy.Uninit
  legacy = Empty
  Err.Clear
End Sub

Sub given(result, name)
  If IsObject(result) Then Exit Sub
  If IsEmpty(result) Then fail name & " has no value"
End Sub

Sub fail(what)
  samplesFailed = samplesFailed + 1
  WScript.Echo "FAILED: " & sampleName & ": " & what
End Sub

Sub finish
  WScript.Echo "finished: " & 0 + samplesDone & " methods, " & 0 + samplesFailed & " failures"
End Sub
