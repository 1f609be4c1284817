' What the other tests rest on: every byte is a character of the ANSI code page and comes back.
Option Explicit
Dim i

For i = 0 To 255
  equal Asc(Chr(i)), i, "byte " & i
Next

finish
