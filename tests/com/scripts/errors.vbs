' Errors that a script is told of: number, source and description.

Dim calibrator, times, result

LoadInstrument
control.FailCall "DataDictionary.Initialize", 1
On Error Resume Next
Set calibrator = WScript.CreateObject("vorntofcaliblib.TofCalibrator")
Expect "number of a failed creation", Err.Number, CLng(440)
Expect "its source", Err.Source, "vorninstrument.DataDictionary"
Expect "its description", InStr(Err.Description, "DataDictionary.Initialize") > 0, True
Err.Clear
Expect "what was created", TypeName(calibrator), "Empty"

Set calibrator = CreateObject("vorntofcaliblib.TofCalibrator")
ExpectError "creation with the failure over", 0

' Calls that cannot be made.
result = calibrator.GetAveragedTimesForCalibration(control.Masses)
ExpectError "too few arguments", 449
calibrator.TestNewStuff 1
ExpectError "too many arguments", 450
calibrator.Recalibrate
ExpectError "an unknown method", 438
result = calibrator.GetAveragedTimesForCalibration(control.Masses, "ten", False)
ExpectError "text for a number", 13
result = calibrator.GetAveragedTimesForCalibration(control.Masses, 100000, False)
ExpectError "more than the parameter holds", 6

' A collaborator that fails ends a calibration; the call itself succeeds.
control.FailCall "SpecParser.GetCalibrantPeakAttributes", 1
Set result = calibrator.calibrateTOFMassAxis(3, control.Masses, times, True)
ExpectError "a calibration that fails", 0
Expect "its result", result Is Nothing, True
Expect "its times", TypeName(times), "Empty"
control.RequestAbort
Set result = calibrator.calibrateTOFMassAxis(3, control.Masses, times, True)
ExpectError "a calibration that is aborted", 0
Expect "its result", result Is Nothing, True
control.WithdrawAbort
Set result = calibrator.calibrateTOFMassAxis(3, control.Masses, times, True)
Expect "the result of the next one", Not result Is Nothing, True

Report
