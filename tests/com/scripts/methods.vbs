' The four methods as a script calls them: arguments left out, variables that come back.

Dim calibrator, coefficients, times, averages, record, masses
Dim spectra, suppress, okToFail, manual, weighting, window, spectraBefore, i, mass

LoadInstrument
Set calibrator = CreateObject("vorntofcaliblib.TofCalibrator")
calibrator.TestNewStuff

' All arguments, in variables.
masses = control.Masses
spectra = 5
suppress = True
okToFail = False
manual = False
weighting = -1
window = -1
spectraBefore = control.Spectra
Set coefficients = calibrator.calibrateTOFMassAxis(spectra, masses, times, suppress, okToFail, manual, weighting, window)
Expect "coefficients", Not coefficients Is Nothing, True
If Not coefficients Is Nothing Then Expect "their type", TypeName(coefficients), "IMassCalCoefficients"
Expect "spectra", spectra, CInt(5)
Expect "suppression", suppress, True
times = control.AsVariants(times)
Expect "times", UBound(times), UBound(masses)
Expect "type of the window that was used", TypeName(window), "Double"
ExpectBetween "window that was used", window, 0.000001, 100
ExpectBetween "spectra taken", control.Spectra - spectraBefore, 5, 20

' The coefficients are an object like any other.
For i = 0 To UBound(masses)
  mass = coefficients.TimeToMass(times(i))
  ExpectBetween "mass " & i & ", ppm", (mass - masses(i)) / masses(i) * 1000000, -50, 50
  ExpectBetween "time of mass " & i & ", ns", coefficients.MassToTime(mass) - times(i), -0.001, 0.001
Next
record = control.AsVariants(coefficients.GetCoefficientRecord)
Expect "coefficients in a record", UBound(record), CLng(7)
ExpectBetween "A", record(0), 0.00064, 0.00066
ExpectBetween "t0", record(1), 290, 310

' Optional arguments left out, at the end and in the middle; numbers of other types.
spectra = CLng(3)
window = -1
Set coefficients = calibrator.calibrateTOFMassAxis(spectra, masses, times, True)
Expect "coefficients without optional arguments", Not coefficients Is Nothing, True
Set coefficients = calibrator.calibrateTOFMassAxis("3", masses, times, True, , , , window)
Expect "coefficients without the middle ones", Not coefficients Is Nothing, True
Expect "type of the window behind them", TypeName(window), "Double"

' The times alone; what the calibration before it measured gave their number.
window = -1
suppress = False
averages = control.AsVariants(calibrator.GetAveragedTimesForCalibration(masses, 3, suppress, window))
Expect "averages", UBound(averages), UBound(masses)
Expect "type of the averages' window", TypeName(window), "Double"
averages = control.AsVariants(calibrator.GetAveragedTimesForCalibration(masses, 3, False))
Expect "averages without a window", UBound(averages), UBound(masses)

' Abundance-immune: it leaves the data set that the log is written from.
Set coefficients = calibrator.calibrateTOFMassAxis(3, masses, times, False)
Expect "abundance-immune coefficients", Not coefficients Is Nothing, True
calibrator.WriteDataToSpotFireLog
Report
