#include "hosts/cli/advice.h"

#include <fmt/format.h>

#include <algorithm>

namespace tof::cli {
namespace {

constexpr std::int32_t kNoLikelyA = -822;
// The estimate averages at least three agreeing pairs of a mass and a peak and, when it loosens its
// criteria, walks twelve rows of the table of pairs.
constexpr std::size_t kMassesForLikelyA = 4;

std::string AdviceOnLikelyA(std::size_t masses) {
  std::string advice =
      masses < kMassesForLikelyA
          ? fmt::format(
                "{} expected mass{}: the likely A is estimated from about {} or more. Give "
                "more masses (--masses)",
                masses, masses == 1 ? "" : "es", kMassesForLikelyA)
          : "the peaks of the spectrum do not agree with the masses. Check the masses (--masses), "
            "let more\npeaks be sought (--flag CalcLikelyA_OverrideNumPeaksSought=Yes --set "
            "Calibration/CalcLikelyA_NumPeaksSought=N)";
  return advice +
         ", or give A and t0\ninstead of having them estimated:\n"
         "  --flag SkipCalcLikelyABeforeCalibration=Yes\n"
         "  --flag SkipCalcLikelyABeforeCalibration_LikelyA=<sqrt(u) per us>\n"
         "  --flag SkipCalcLikelyABeforeCalibration_t0=<us>\n";
}

// Only a calibration that measured times can say which masses lack one.
std::string AdviceOnMissingPeaks(const std::vector<MassRow>& masses) {
  const auto has_time = [](const MassRow& row) { return row.time_ns.has_value(); };
  if (std::none_of(masses.begin(), masses.end(), has_time)) return {};
  std::string missing;
  for (const MassRow& row : masses) {
    if (!has_time(row)) missing += fmt::format(" {:.5f}", row.expected);
  }
  if (missing.empty()) return {};
  return "not every spectrum shows a peak of m/z" + missing +
         ": leave these masses out (--masses), or average\nother spectra\n";
}

// The driver's own line repeats what the event has said.
bool BeganElsewhere(const std::string& first_error) {
  return !first_error.empty() && first_error.find("calibrateTOFMassAxis()") == std::string::npos;
}

}  // namespace

std::string AdviceOn(const CalibrationReport& report, const native::FileJournal& files,
                     const std::string& first_error) {
  if (report.ok || report.skipped) return {};
  std::string advice;
  if (BeganElsewhere(first_error)) advice += "it began with: " + first_error + "\n";
  if (report.status_number == kNoLikelyA) advice += AdviceOnLikelyA(report.masses.size());
  advice += AdviceOnMissingPeaks(report.masses);
  if (files.last_failure) {
    advice += files.last_failure->path + ": " + files.last_failure->reason + "\n";
  }
  return advice;
}

}  // namespace tof::cli
