' Calibrates the mass axis of the virtual instrument, abundance-immune, and prints what came out.
' In an instrument's own software the first part is not there: its objects are the real instrument's.
' usage: cscript //nologo calibrate.vbs [FOLDER]
'   FOLDER: the logs go to FOLDER\Logfiles (default: the folder for temporary files)
Option Explicit

Dim control, calibrator, coefficients
Dim masses, times, spectra, suppressAic

' The instrument: the built-in virtual one, whose spectra and waits take no time.
Set control = CreateObject("vorninstrument.InstrumentControl")
control.LoadDescription "", ""
control.Seed = 7
control.OverrideSetting "Calibration/AICSettlingTime_sec=0"
control.BaseFolder = LogBase()
masses = control.Masses

' The calibration. It brings each mass into the target band of abundance by the RF voltage of the ion
' guide and takes the spectra there; the coefficients that come back are in force.
Set calibrator = CreateObject("vorntofcaliblib.TofCalibrator")
spectra = 10
suppressAic = False
Set coefficients = calibrator.calibrateTOFMassAxis(spectra, masses, times, suppressAic)
If coefficients Is Nothing Then
  WScript.Echo "calibration failed: the event evtNewStatus and the logs tell why"
  WScript.Quit 1
End If

PrintTable
PrintCoefficients
WScript.Echo "true error, rms: " & Round(control.TrueError("rms_ppm", masses, times, spectra, True), 3) & " ppm"
WScript.Echo "spectra taken: " & control.Spectra & ", in " & Round(control.InstrumentSeconds) & " s of instrument time"
WScript.Echo "logs: " & control.BaseFolder & "\Logfiles"
WScript.Quit 0

Function LogBase()
  Dim files
  Set files = CreateObject("Scripting.FileSystemObject")
  If WScript.Arguments.Count > 0 Then
    LogBase = WScript.Arguments(0)
  Else
    LogBase = files.GetSpecialFolder(2).Path
  End If
  If Not files.FolderExists(LogBase) Then files.CreateFolder LogBase
  If Not files.FolderExists(LogBase & "\Logfiles") Then files.CreateFolder LogBase & "\Logfiles"
End Function

Sub PrintTable()
  Dim i, mass
  WScript.Echo "m/z" & vbTab & "time, ns" & vbTab & "error, ppm"
  For i = 0 To UBound(masses)
    mass = coefficients.TimeToMass(times(i))
    WScript.Echo masses(i) & vbTab & Round(times(i), 4) & vbTab & Round((mass - masses(i)) / masses(i) * 1000000, 3)
  Next
End Sub

Sub PrintCoefficients()
  Dim names, record, i
  names = Array("A", "t0", "C", "D", "E", "F", "G", "H")
  record = coefficients.GetCoefficientRecord
  For i = 0 To UBound(record)
    WScript.Echo names(i) & " = " & record(i)
  Next
End Sub
