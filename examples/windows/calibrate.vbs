' Calibrates the mass axis of the virtual instrument, abundance-immune, and prints what came out.
' In an instrument's own software the first part is not there: its objects are the real instrument's.
' usage: cscript //nologo calibrate.vbs [FOLDER]
'   FOLDER: the logs go to FOLDER\Logfiles (default: the folder for temporary files)
Option Explicit

Dim files, folder, control, calibrator, coefficients
Dim masses, times, spectra, suppressAic

' The instrument: the virtual one of the description beside this script. Its spectra take no time; the
' calibrator's waits would, so that the voltages settle at once instead.
Set files = CreateObject("Scripting.FileSystemObject")
folder = LogBase()
Set control = CreateObject("vorninstrument.InstrumentControl")
control.LoadDescription DescriptionThatSettlesAtOnce(), ""
control.OverrideSetting "Calibration/AICSettlingTime_sec=0"
control.Seed = 7
control.BaseFolder = folder
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

times = control.AsVariants(times)  ' a script takes elements of arrays of variants alone
PrintTable
PrintCoefficients
WScript.Echo "true error, rms: " & Fixed(control.TrueError("rms_ppm", masses, times, spectra, True), 3) & " ppm"
WScript.Echo "spectra taken: " & control.Spectra & ", in " & Round(control.InstrumentSeconds) & " s of instrument time"
WScript.Echo "logs: " & control.BaseFolder & "\Logfiles"
WScript.Quit 0

Function LogBase()
  If WScript.Arguments.Count > 0 Then
    LogBase = WScript.Arguments(0)
  Else
    LogBase = files.GetSpecialFolder(2).Path
  End If
  If Not files.FolderExists(LogBase) Then files.CreateFolder LogBase
  If Not files.FolderExists(LogBase & "\Logfiles") Then files.CreateFolder LogBase & "\Logfiles"
End Function

Function DescriptionThatSettlesAtOnce()
  Dim text, file
  text = files.OpenTextFile(files.GetParentFolderName(WScript.ScriptFullName) & "\virtual.xml").ReadAll
  DescriptionThatSettlesAtOnce = folder & "\virtual.xml"
  Set file = files.CreateTextFile(DescriptionThatSettlesAtOnce, True)
  file.Write Replace(text, "<settling time_constant_sec=""0.25""/>", "<settling time_constant_sec=""0""/>")
  file.Close
End Function

Function Fixed(value, digits)
  Fixed = FormatNumber(value, digits, True, False, False)
End Function

Sub PrintTable()
  Dim i, mass
  WScript.Echo "m/z" & vbTab & "time, ns" & vbTab & "error, ppm"
  For i = 0 To UBound(masses)
    mass = coefficients.TimeToMass(times(i))
    WScript.Echo masses(i) & vbTab & Fixed(times(i), 4) & vbTab & Fixed((mass - masses(i)) / masses(i) * 1000000, 3)
  Next
End Sub

Sub PrintCoefficients()
  Dim names, record, i
  names = Array("A", "t0", "C", "D", "E", "F", "G", "H")
  record = control.AsVariants(coefficients.GetCoefficientRecord)
  For i = 0 To UBound(record)
    WScript.Echo names(i) & " = " & record(i)
  Next
End Sub
