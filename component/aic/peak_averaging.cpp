#include "component/aic/peak_averaging.h"

#include <array>
#include <limits>
#include <string>
#include <utility>

#include "component/automation/arithmetic.h"
#include "component/automation/number_text.h"
#include "component/calibrator/log_paths.h"
#include "component/trace/guarded.h"

namespace tof {
namespace {

using Averaged = BoundedArray<PeakAttribs>;  // [row 0..1]

void AddMeasurement(const CalibMassPeakData& record, std::int32_t measurement, Averaged& sums) {
  const PeakAttribs& row0 = record.SpectrumAttribs(measurement, 0);
  sums(0).time = Add(sums(0).time, row0.time);
  sums(0).attribute48 = Add(sums(0).attribute48, row0.attribute48);
  const PeakAttribs& row1 = record.SpectrumAttribs(measurement, 1);
  sums(1).attribute32 = Add(sums(1).attribute32, row1.attribute32);
  sums(1).time = Add(sums(1).time, row1.time);
  sums(1).abundance = Add(sums(1).abundance, row1.abundance);
}

// Of mass 0, for all masses. 0 without masses: the report then has no line to write.
std::int32_t NumberOfMeasurements(const PeakTable& peaks) {
  if (peaks.IsDimensioned() && peaks.size() == 0) return 0;
  return peaks(0).SpectrumAttribs.UBound(1) + 1;
}

// For the diagnostics alone: NaN where there is none.
double ExpectedMass(const Variant& expected_masses, std::int32_t mass_index) {
  const auto* masses = expected_masses.As<Variant::DoubleArray>();
  const bool has = masses != nullptr && masses->IsDimensioned() && mass_index >= masses->LBound() &&
                   mass_index <= masses->UBound();
  return has ? (*masses)(mass_index) : std::numeric_limits<double>::quiet_NaN();
}

void DivideBy(double count, Averaged& sums) {
  sums(0).time = Divide(sums(0).time, count);
  sums(0).attribute48 = Divide(sums(0).attribute48, count);
  sums(1).attribute32 = Divide(sums(1).attribute32, count);
  sums(1).time = Divide(sums(1).time, count);
  sums(1).abundance = Divide(sums(1).abundance, count);
}

// A diagnostic, which must not end the averaging: plain arithmetic, so that what cannot be computed
// is traced as NaN or Infinity.
void TraceAssignment(TraceObj& trace, const char* what, double assigned_mass,
                     double expected_mass) {
  const double delta = assigned_mass - expected_mass;
  const double ppm = delta / expected_mass * 1e6;
  trace.TracePrint("ReportDebug::", what, " to ReportCalibData File.  MassAssignment[",
                   assigned_mass, "]MassDelta[", delta, "]PPM[", ppm, "]");
}

std::string AicLogLine(std::int32_t mass_index, const CalibMassPeakData& record,
                       std::int32_t n_measurements) {
  std::string line = std::to_string(mass_index) + ", " + NumberText(record.AveragedAttribs(0).time);
  for (std::int32_t k = 0; k < n_measurements; ++k) {
    line += ", " + NumberText(record.SpectrumAttribs(k, 0).time);
  }
  return line;
}

// Without the leading ", "; error 5 for a text too short to have one.
std::string WithoutLeadingSeparator(const std::string& text) {
  if (text.size() < 2) Raise(RunTimeError::kInvalidCall);
  return text.substr(2);
}

struct TuneReport {
  std::string flight_times;
  std::string attributes48;
  std::string attributes32;

  void Append(const CalibMassPeakData& record) {
    flight_times += ", " + NumberText(record.AveragedAttribs(0).time);
    attributes48 += ", " + NumberText(record.AveragedAttribs(0).attribute48);
    attributes32 += ", " + NumberText(record.AveragedAttribs(1).attribute32);
  }
};

void WriteTuneReport(Instrument& instrument, HostServices& host, const TuneReport& report) {
  const std::array<std::string, 3> lines = {WithoutLeadingSeparator(report.flight_times),
                                            WithoutLeadingSeparator(report.attributes48),
                                            WithoutLeadingSeparator(report.attributes32)};
  const auto files = host.CreateFileSystem();
  const auto file = Need(files).CreateTextFile(LogFilePath(instrument, kTuneReportFile));
  for (const std::string& line : lines) Need(file).WriteLine(line);
  Need(file).Close();
}

// What is traced of a mass while it is averaged.
enum class Diagnostics { kNone, kAverage, kAverageAndMeasurements };

Diagnostics WantedDiagnostics(Instrument& instrument, bool is_last_mass) {
  if (!FlagIs(instrument, "TraceAICPeakAttributes", "Yes")) return Diagnostics::kNone;
  return is_last_mass ? Diagnostics::kAverageAndMeasurements : Diagnostics::kAverage;
}

// The averages of one mass. Accumulated in a copy, which starts from what is stored: an
// interruption leaves the record as it was.
void AverageOneMass(TraceObj& trace, Diagnostics diagnostics, double expected_mass,
                    std::int32_t n_measurements, CalibMassPeakData& record) {
  Averaged sums = record.AveragedAttribs;
  for (std::int32_t k = 0; k < n_measurements; ++k) {
    AddMeasurement(record, k, sums);
    if (diagnostics == Diagnostics::kAverageAndMeasurements) {
      TraceAssignment(trace, "Averaging values to be written", record.SpectrumAttribs(k, 1).time,
                      expected_mass);
    }
  }
  DivideBy(n_measurements, sums);
  record.AveragedAttribs = std::move(sums);
}

}  // namespace

std::int32_t AverageThePeakAttributes(Instrument& instrument, HostServices& host, AicLog& aic_log,
                                      const Variant& expected_masses, PeakTable& peaks) {
  constexpr Routine kRoutine{.name = "AverageThePeakAttributes", .on_error = OnError::kSwallow};
  std::int32_t n_averaged = 0;
  Guarded(kRoutine, [&](TraceObj& trace) {
    const std::int32_t n_measurements = NumberOfMeasurements(peaks);
    WriteToAICLog(instrument, aic_log,
                  "Averages (and times used for averaging) [MassIdx, Average, TOFs]");
    TuneReport report;
    for (std::int32_t m = peaks.LBound(); m <= peaks.UBound(); ++m) {
      const Diagnostics diagnostics = WantedDiagnostics(instrument, m == peaks.UBound());
      const double expected_mass = ExpectedMass(expected_masses, m);
      AverageOneMass(trace, diagnostics, expected_mass, n_measurements, peaks(m));
      ++n_averaged;
      if (diagnostics != Diagnostics::kNone) {
        TraceAssignment(trace, "Averaged value being written", peaks(m).AveragedAttribs(1).time,
                        expected_mass);
      }
      WriteToAICLog(instrument, aic_log, AicLogLine(m, peaks(m), n_measurements));
      report.Append(peaks(m));
    }
    WriteToAICLog(instrument, aic_log, "AIC; writing file with Calibration data for Tune Report");
    WriteTuneReport(instrument, host, report);
  });
  return n_averaged;
}

double AveragedTime(const PeakTable& peaks, std::int32_t mass_index, std::int32_t n_averaged) {
  const CalibMassPeakData& record = peaks(mass_index);
  const double stored = record.AveragedAttribs(0).time;
  const bool was_measured = record.SpectrumAttribs.UBound(1) >= record.SpectrumAttribs.LBound(1);
  const bool missing = was_measured && mass_index >= n_averaged;
  return missing ? std::numeric_limits<double>::quiet_NaN() : stored;
}

}  // namespace tof
