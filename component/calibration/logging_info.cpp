#include "component/calibration/logging_info.h"

#include <string>

#include "component/automation/arithmetic.h"
#include "component/automation/convert.h"
#include "component/automation/number_text.h"
#include "component/calibrator/log_paths.h"
#include "component/trace/guarded.h"

namespace tof {
namespace {

constexpr const char* kLineEnd = "\r\n";

using Matrix = BoundedArray2D<double>;  // [spectrum, mass]

// The three section texts. Their headings list ten mass indices whatever the number of calibrants.
struct Sections {
  std::string times = Heading("Measured Flight Times");
  std::string masses = Heading("Calculated Mass");
  std::string errors = Heading("Mass Errors");

 private:
  static std::string Heading(const std::string& quantity) {
    return "SpectrumIdx, " + quantity + " for MassIdx 0, 1, 2, 3, 4, 5, 6, 7, 8, 9" + kLineEnd;
  }
};

struct CalculatedMasses {
  Matrix masses;
  Matrix errors_ppm;
};

CalculatedMasses AppendRows(TraceObj& trace, MassCalCoefficients& coefficients,
                            const BoundedArray<double>& expected, const MeasuredTimes& times,
                            Sections& sections) {
  const Bounds spectra{0, times.UBound(1)};
  const Bounds mass_indices{0, times.UBound(2)};
  CalculatedMasses calculated{Matrix(spectra, mass_indices), Matrix(spectra, mass_indices)};
  for (std::int32_t i = times.LBound(1); i <= times.UBound(1); ++i) {
    trace.TracePrint("LBound(m_varRawMeasuredTimesForCalibration, 2)=", times.LBound(2),
                     " To UBound(m_varRawMeasuredTimesForCalibration, 2) = ", times.UBound(2));
    sections.times += std::to_string(i);
    sections.masses += std::to_string(i);
    sections.errors += std::to_string(i);
    for (std::int32_t j = times.LBound(2); j <= times.UBound(2); ++j) {
      const double mass = coefficients.TimeToMass(times(i, j));
      const double error_ppm = Multiply(Divide(Subtract(mass, expected(j)), expected(j)), 1000000);
      calculated.masses(i, j) = mass;
      calculated.errors_ppm(i, j) = error_ppm;
      sections.times += ", " + NumberText(times(i, j));
      sections.masses += ", " + NumberText(mass);
      sections.errors += ", " + NumberText(error_ppm);
    }
    sections.times += kLineEnd;
    sections.masses += kLineEnd;
    sections.errors += kLineEnd;
  }
  return calculated;
}

std::string CommaSeparated(const BoundedArray<double>& values) {
  std::string text;
  for (const double value : values) text += ", " + NumberText(value);
  return text;
}

// Appends the averages and deviations of a matrix to its section; the averages without the leading
// ", " are the answer.
std::string AppendStatistics(Instrument& instrument, const Matrix& matrix, std::string& section) {
  const ColumnStatistics statistics = instrument.acq_controller->GetColumnStatistics(matrix);
  const std::string averages = CommaSeparated(statistics.averages);
  section += "Averages" + averages + kLineEnd;
  section += "StdDevs" + CommaSeparated(statistics.standard_deviations) + kLineEnd;
  return averages.size() < 2 ? std::string() : averages.substr(2);
}

void AppendToTuneReport(Instrument& instrument, HostServices& host, const std::string& masses,
                        const std::string& errors) {
  const std::string path = LogFilePath(instrument, kTuneReportFile);
  const auto files = host.CreateFileSystem();
  if (!Need(files).FileExists(path)) return;
  const auto file = files->OpenForAppending(path);
  Need(file).WriteLine(masses);
  Need(file).WriteLine(errors);
  Need(file).Close();
}

std::string GainChannel(Instrument& instrument) {
  return ToText(ReadSetpoint(instrument, setpoint::kGainChannelSelect));
}

}  // namespace

void WriteCalibrationLoggingInfo(Instrument& instrument, HostServices& host,
                                 const std::shared_ptr<MassCalCoefficients>& coefficients,
                                 const Variant& expected_masses,
                                 const MeasuredTimes& measured_times) {
  constexpr Routine kRoutine{.name = "WriteCalibrationLoggingInfo", .on_error = OnError::kRaise};
  Guarded(kRoutine, [&](TraceObj& trace) {
    const DateTime now = host.Now();
    const std::string gain_channel = GainChannel(instrument);
    const std::string header = "===CALIBRATION DATA " + host.DateTimeText(now) + "===" + kLineEnd +
                               "GainChannel[" + gain_channel + "]";
    const auto log = instrument.calib_log_files->OpenLogFile("CalibrationData", header, "TXT");
    // Read again, not taken from the header: the opener may have taken its time.
    Need(log).WriteLine("GainChannelSelect = " + GainChannel(instrument));

    Sections sections;
    const CalculatedMasses calculated = AppendRows(
        trace, Need(coefficients), AsDoubleArray(expected_masses), measured_times, sections);
    AppendStatistics(instrument, measured_times, sections.times);
    const std::string mass_summary =
        AppendStatistics(instrument, calculated.masses, sections.masses);
    const std::string error_summary =
        AppendStatistics(instrument, calculated.errors_ppm, sections.errors);

    // A section ends its own last line, so that each of these writes ends with an empty line.
    log->WriteLine(sections.times);
    log->WriteLine(sections.masses);
    log->WriteLine(sections.errors);
    log->Close();
    AppendToTuneReport(instrument, host, mass_summary, error_summary);
  });
}

}  // namespace tof
