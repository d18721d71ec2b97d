' What the test scripts share; the runner puts it before each of them. A script ends with Report: its
' last line, which the runner looks for, is printed only when the script got there and every check held.
Option Explicit
Dim control, checks, failures
checks = 0
failures = 0
Set control = CreateObject("vorninstrument.InstrumentControl")

' The built-in virtual instrument, whose waits take no time. Its logs lie beside the script.
Sub LoadInstrument()
  control.LoadDescription "", ""
  control.OverrideSetting "Calibration/AICSettlingTime_sec=0"
  control.Seed = 11
  control.BaseFolder = CreateObject("Scripting.FileSystemObject").GetParentFolderName(WScript.ScriptFullName)
End Sub

Sub Expect(what, found, expected)
  Dim same
  checks = checks + 1
  same = False
  If VarType(found) = VarType(expected) Then same = (found = expected)
  If Not same Then
    failures = failures + 1
    WScript.Echo what & ": " & TypeName(found) & " " & found & ", expected " & TypeName(expected) & " " & expected
  End If
End Sub

Sub ExpectBetween(what, found, lowest, highest)
  Expect what & " (" & found & ") is from " & lowest & " to " & highest, lowest <= found And found <= highest, True
End Sub

' Of the statement before it, under On Error Resume Next.
Sub ExpectError(what, number)
  Expect what & ", error number", Err.Number, CLng(number)
  Err.Clear
End Sub

Sub Report()
  If failures = 0 Then
    WScript.Echo "all " & checks & " checks held"
    WScript.Quit 0
  End If
  WScript.Quit 1
End Sub
