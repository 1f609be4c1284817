' Every class of the module can be created by both of its names, as many times as wanted. Arguments: the classes.
Option Explicit
On Error Resume Next

Dim i, name, suffix, first, second
For i = 0 To WScript.Arguments.Count - 1
  name = WScript.Arguments(i)
  For Each suffix In Array("", ".1")
    Set first = Nothing
    Set second = Nothing
    Set first = CreateObject("TAVL." & name & suffix)
    ok Not first Is Nothing, name & suffix & " is created"
    If Not first Is Nothing Then
      ok Right(TypeName(first), Len(name)) = name, name & suffix & " is of its class, not " & TypeName(first)
    End If
    Set second = CreateObject("TAVL." & name & suffix)
    ok Not second Is first, name & suffix & " gives a new object each time"
  Next
Next

ok i > 0, "classes are named"

Set first = Nothing
Set first = CreateObject("TAVL.CertId.2")
refused 429, "a version that does not exist"

finish
