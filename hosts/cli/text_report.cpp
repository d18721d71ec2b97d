#include "hosts/cli/text_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

#include "hosts/cli/coefficient_names.h"
#include "hosts/cli/table_cell.h"

namespace tof::cli {
namespace {

bool AnyTime(const CalibrationReport& report) {
  return std::any_of(report.masses.begin(), report.masses.end(),
                     [](const MassRow& row) { return row.time_ns.has_value(); });
}

// What the reader should know of a mass, behind its row.
std::string_view RemarkOn(const MassRow& row) {
  if (!row.time_ns) return "  no peak";
  if (!row.outside_band) return "";
  return *row.outside_band == BandSide::kBelow ? "  below the band" : "  above the band";
}

std::string MassTable(const CalibrationReport& report) {
  std::string text = fmt::format("{:>14} {:>14} {:>14} {:>9} {:>9} {:>11}\n", "expected m/z",
                                 "time, ns", "calculated", "ppm", "voltage", "abundance");
  for (const MassRow& row : report.masses) {
    text += fmt::format("{:>14.5f} {} {} {} {} {}{}\n", row.expected, Cell(row.time_ns, 14, 4),
                        Cell(row.calculated, 14, 5), SignedCell(row.error_ppm, 9, 3),
                        Cell(row.voltage, 9, 2), Cell(row.abundance, 11, 0), RemarkOn(row));
  }
  return text;
}

std::string CoefficientLines(const CoefficientRecord& coefficients,
                             const std::vector<std::string>& terms) {
  std::string text =
      fmt::format("A = {:.10g} sqrt(u)/ns, t0 = {:.6g} ns", coefficients[0], coefficients[1]);
  for (std::size_t i = 2; i < coefficients.size(); ++i) {
    if (coefficients[i] != 0.0) {
      text += fmt::format(", {} = {:.6g}", kCoefficientNames[i], coefficients[i]);
    }
  }
  return text + fmt::format(" ({} coefficients fitted)\n", terms.size());
}

std::string TruthLine(const char* name, const TruthFigures& figures) {
  return fmt::format(
      "  {:<15} rms {:.3f} ppm (common {:+.3f}, mass-dependent {:.3f}, max {:.3f})\n", name,
      figures.rms_ppm, figures.common_ppm, figures.mass_dependent_ppm, figures.max_ppm);
}

std::string TruthLines(const Truth& truth) {
  return "true errors, which only a virtual instrument knows:\n" +
         TruthLine("at calibration", truth.at_calibration) + TruthLine("in band", truth.in_band) +
         TruthLine("weak peaks", truth.weak) +
         fmt::format("  {:<15} {:.3f} ppm\n", "ions allow", truth.limit_ppm);
}

}  // namespace

std::string TableOf(const CalibrationReport& report) {
  std::string text;
  if (AnyTime(report)) text += MassTable(report) + "\n";
  if (report.coefficients) text += CoefficientLines(*report.coefficients, report.terms);
  if (report.rms_ppm) {
    text +=
        fmt::format("rms {} ppm, max {} ppm, leave-one-out {} ppm\n", Cell(report.rms_ppm, 0, 3),
                    Cell(report.max_ppm, 0, 3), Cell(report.loo_ppm, 0, 3));
  }
  if (report.truth) text += TruthLines(*report.truth);
  if (report.skipped) text += "skipped: the flags of the instrument say so (--manual calibrates)\n";
  text += fmt::format("{} spectra, {:.1f} s of instrument time, {:.2f} s\n", report.counts.spectra,
                      report.instrument_seconds, report.wall_seconds);
  for (const std::string& file : report.files) text += "log file: " + file + "\n";
  return text;
}

}  // namespace tof::cli
