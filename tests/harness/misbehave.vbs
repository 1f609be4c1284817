' A script test that goes wrong in the way that its argument names.
Option Explicit

Dim how
how = WScript.Arguments(0)
If how = "pending" Then On Error Resume Next
If how <> "unchecked" Then ok True, "the beginning"
Select Case how
  Case "fail"
    ok 1 = 2, "bad"
  Case "error", "pending"
    Err.Raise 5
  Case "quit"
    WScript.Quit 0
  Case "quit-7"
    WScript.Quit 7
  Case "loop"
    Do
    Loop
  Case "crash", "exit"
    CreateObject("TavlTests.Arrays").misbehave how
End Select
If how <> "unfinished" Then finish
