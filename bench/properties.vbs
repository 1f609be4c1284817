' Setting and reading five properties against five items of a dictionary, in turn: properties.vbs TURNS ROUNDS
' The clock of the host has steps of milliseconds. Wine's interpreter looks for a variable among those of the function, in their
' order, and compares names by a locale that it copies for every letter: the names are short, and the object is the first.
Option Explicit
Dim turns, rounds, certificate, items, i, module, yardstick, comma
turns = CLng(WScript.Arguments(0))
rounds = CLng(WScript.Arguments(1))
Set certificate = CreateObject("TAVL.Certificate")
Set items = CreateObject("Scripting.Dictionary")

Function OfProperties()
  Dim o, t, n, start
  Set o = certificate
  start = Timer
  For n = 1 To turns
    o.issuer = "CN=Example authority"
    o.serialNumber = "1F4C"
    o.subject = "CN=Anna"
    o.keyUsage = n
    o.algorithm = "sha256"
    t = o.issuer
    t = o.serialNumber
    t = o.subject
    t = o.keyUsage
    t = o.algorithm
  Next
  OfProperties = Timer - start
End Function

Function OfItems()
  Dim o, t, n, start
  Set o = items
  start = Timer
  For n = 1 To turns
    o("issuer") = "CN=Example authority"
    o("serialNumber") = "1F4C"
    o("subject") = "CN=Anna"
    o("keyUsage") = n
    o("algorithm") = "sha256"
    t = o("issuer")
    t = o("serialNumber")
    t = o("subject")
    t = o("keyUsage")
    t = o("algorithm")
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
