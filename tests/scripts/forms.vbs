' The three ways in which a script takes a result: as a variable given by the caller, as the result of the call, and in the
' property "value" of an object of the caller's, which this language passes in parentheses: without them the variable is given.
' Argument: the name of a profile.
Option Explicit
On Error Resume Next

Class Holder
  Public value
End Class

Const ArrayOfVariants = 8204

Dim quivo, parameters, text, expected, held, signature

Set quivo = CreateObject("TAVL.QUIVO")
Set parameters = CreateObject("TAVL.SignParam")
parameters.flag = 1
quivo.GetPKIErrorTextVBS 5, expected
ok Len(expected) > 0, "a text to compare with"

' A string: the type library gives it to a BSTR.
quivo.GetPKIErrorText 5, text
equal text, expected, "GetPKIErrorText into a variable"
text = 5
quivo.GetPKIErrorText 5, text
equal text, expected, "GetPKIErrorText into a variable that held a number"
text = "old"
quivo.GetPKIErrorText 5, text
equal text, expected, "GetPKIErrorText into a variable that held a string"
equal quivo.GetPKIErrorText(5), expected, "GetPKIErrorText as a function"
Set text = New Holder
quivo.GetPKIErrorText 5, text
equal text, expected, "GetPKIErrorText into a variable that held an object"
Set held = New Holder
quivo.GetPKIErrorText 5, (held)
equal held.value, expected, "GetPKIErrorText into an object"

' A VARIANT.
equal quivo.GetPKIErrorTextVBS(5), expected, "GetPKIErrorTextVBS as a function"
Set held = New Holder
quivo.GetPKIErrorTextVBS 5, (held)
equal held.value, expected, "GetPKIErrorTextVBS into an object"

' Bytes.
quivo.Initialize WScript.Arguments(0), 0
quivo.SignMem parameters, bytes_of("abc"), Empty, signature
equal VarType(signature), ArrayOfVariants, "SignMem into a variable"
equal VarType(quivo.SignMem(parameters, bytes_of("abc"), Empty)), ArrayOfVariants, "SignMem as a function"
Set held = New Holder
quivo.SignMem parameters, bytes_of("abc"), Empty, (held)
equal VarType(held.value), ArrayOfVariants, "SignMem into an object"

' A refusal leaves what the caller had.
text = "kept"
quivo.SignMem parameters, "no data", Empty, text
refused &hE0690057, "SignMem of a string"
equal text, "kept", "the variable after a refusal"
Set held = New Holder
held.value = "kept"
quivo.SignMem parameters, "no data", Empty, (held)
refused &hE0690057, "SignMem of a string, into an object"
equal held.value, "kept", "the object after a refusal"

finish
