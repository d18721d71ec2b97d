' Masses in the forms that a script has them in, and what is no list of masses.

Dim calibrator, kept(3), table(1, 3), i

LoadInstrument
Set calibrator = CreateObject("vorntofcaliblib.TofCalibrator")

Sub ExpectFit(what, masses)
  Dim coefficients, times
  Set coefficients = calibrator.calibrateTOFMassAxis(3, masses, times, True)
  Expect what & ", coefficients", Not coefficients Is Nothing, True
  If Not coefficients Is Nothing Then Expect what & ", times", UBound(control.AsVariants(times)), CLng(3)
End Sub

' The call itself succeeds: its result is Nothing, and the event tells the rest. Masses are looked at
' before anything is done.
Sub ExpectNothing(what, masses)
  Dim coefficients, times
  times = "as before"
  Set coefficients = calibrator.calibrateTOFMassAxis(3, masses, times, True)
  Expect what, coefficients Is Nothing, True
  Expect what & ", times", times, "as before"
End Sub

ExpectFit "doubles", Array(226.951491, 362.926338, 498.901186, 702.863456)
ExpectFit "text", Array("226.951491", "362.926338", "498.901186", "702.863456")
ExpectFit "text and numbers", Array("226.951491", 362.926338, CSng(498.901186), "702.863456")
ExpectFit "integers", Array(227, 363, 499, 703)
ExpectFit "integers of several types", Array(CInt(227), CLng(363), CByte(159), 703)

kept(0) = 226.951491
kept(1) = 362.926338
kept(2) = 498.901186
kept(3) = 702.863456
ExpectFit "an array with a fixed bound", kept

ExpectNothing "Empty", Empty
ExpectNothing "Null", Null
ExpectNothing "one number", 226.951491
ExpectNothing "text", "226.951491"
ExpectNothing "an object", control
ExpectNothing "words", Array("heavy", "light", "heavier", "lighter")
ExpectNothing "Empty elements", Array(226.951491, Empty, 498.901186, 702.863456)
ExpectNothing "objects", Array(control, control, control, control)
ExpectNothing "two dimensions", table
ExpectNothing "no elements", Array()
ExpectFit "after all of them", kept
Report
