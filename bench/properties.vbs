' Setting and reading five properties against five items of a dictionary, in turn: properties.vbs TURNS ROUNDS
' The clock of the host has steps of milliseconds.
Option Explicit
Dim turns, rounds, certificate, items, i, module, yardstick, comma
turns = CLng(WScript.Arguments(0))
rounds = CLng(WScript.Arguments(1))
Set certificate = CreateObject("TAVL.Certificate")
Set items = CreateObject("Scripting.Dictionary")

Function OfProperties()
  Dim start, turn, text
  start = Timer
  For turn = 1 To turns
    certificate.issuer = "CN=Example authority"
    certificate.serialNumber = "1F4C"
    certificate.subject = "CN=Anna"
    certificate.keyUsage = turn
    certificate.algorithm = "sha256"
    text = certificate.issuer
    text = certificate.serialNumber
    text = certificate.subject
    text = certificate.keyUsage
    text = certificate.algorithm
  Next
  OfProperties = Timer - start
End Function

Function OfItems()
  Dim start, turn, text
  start = Timer
  For turn = 1 To turns
    items("issuer") = "CN=Example authority"
    items("serialNumber") = "1F4C"
    items("subject") = "CN=Anna"
    items("keyUsage") = turn
    items("algorithm") = "sha256"
    text = items("issuer")
    text = items("serialNumber")
    text = items("subject")
    text = items("keyUsage")
    text = items("algorithm")
  Next
  OfItems = Timer - start
End Function

Function Milliseconds(seconds)
  Milliseconds = CStr(CLng(seconds * 1000))
End Function

For i = 1 To rounds
  module = module & comma & Milliseconds(OfProperties())
  yardstick = yardstick & comma & Milliseconds(OfItems())
  comma = ","
Next
WScript.Echo "{""row"":""script loop"",""unit"":""ms"",""module"":[" & module & "],""yardstick"":[" & yardstick & "]}"
