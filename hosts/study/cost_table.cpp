#include <fmt/format.h>

#include <array>

#include "hosts/study/tables.h"
#include "instruments/virtual/parameters.h"

namespace tof::study {
namespace {

constexpr std::int64_t kSteps = 71;    // 20 to 160 V by 2 V
constexpr std::int64_t kSpectra = 10;  // of each mass
// The instrument state that every calibration writes back: sample rate, resolution, gain channel
// and setpoint 128.
constexpr std::int64_t kRestoringWrites = 4;

struct Cost {
  std::int64_t spectra;
  std::int64_t writes;
  std::int64_t settle_calls;
};

Cost FormulaByMass(std::int64_t n) {
  return {2 * kSteps + n * kSpectra, 2 * kSteps + n + 1 + kRestoringWrites, 2 * kSteps + 4 * n};
}

Cost FormulaByMeasurement(std::int64_t n) {
  return {2 * kSteps + n * kSpectra, 2 * kSteps + n * kSpectra + 1 + kRestoringWrites,
          2 * kSteps + n * kSpectra};
}

double SecondsOf(const Cost& cost) {
  constexpr double kSpectrumSec = 1.0;
  constexpr double kSettleSec = 1.2;
  constexpr double kWriteSec = 0.02;
  return kSpectrumSec * static_cast<double>(cost.spectra) +
         kSettleSec * static_cast<double>(cost.settle_calls) +
         kWriteSec * static_cast<double>(cost.writes);
}

// The sodium formate clusters of n = 1 on, all of one abundance.
void UseClusters(description::InstrumentDescription& description, int first, int last, int step) {
  std::vector<virtual_instrument::Species>& species = SourceOf(description).physics.calibrants;
  std::vector<double>& masses = description.calibrants.at(0);
  species.clear();
  masses.clear();
  for (int n = first; n <= last; n += step) {
    constexpr double kIonsPerPulse = 2.0;
    species.push_back(virtual_instrument::SpeciesOfFormula(
        fmt::format("C{0}H{0}O{1}Na{2}", n, 2 * n, n + 1), kIonsPerPulse));
    masses.push_back(species.back().mass_u);
  }
}

VirtualRun WithMasses(VirtualRun run, int count) {
  if (count == 3) {
    UseClusters(run.description, 3, 21, 9);
    // Too few to estimate A from.
    run.description.flags["SkipCalcLikelyABeforeCalibration"] = "Yes";
    run.description.flags["SkipCalcLikelyABeforeCalibration_LikelyA"] = "0.65";
    run.description.flags["SkipCalcLikelyABeforeCalibration_t0"] = "0.3";
  }
  if (count == 30) UseClusters(run.description, 1, 30, 1);
  return run;
}

std::vector<std::string> CountRow(const std::string& way, int count, VirtualRun run) {
  const cli::CalibrationReport report = Run(WithMasses(std::move(run), count)).report;
  return {way,
          fmt::format("{}", count),
          fmt::format("{}", report.counts.spectra),
          fmt::format("{}", report.counts.setpoint_writes),
          fmt::format("{}", report.counts.settle_calls),
          fmt::format("{}", report.counts.settle_slices),
          fmt::format("{:.1f}", report.instrument_seconds)};
}

std::vector<std::string> FormulaRow(int count, const Cost& cost) {
  constexpr int kSlicesPerCall = 3;
  return {"formula",
          fmt::format("{}", count),
          fmt::format("{}", cost.spectra),
          fmt::format("{}", cost.writes),
          fmt::format("{}", cost.settle_calls),
          fmt::format("{}", kSlicesPerCall * cost.settle_calls),
          fmt::format("{:.1f}", SecondsOf(cost))};
}

}  // namespace

std::string CostTable() {
  std::vector<std::vector<std::string>> rows{
      {"way", "masses", "spectra", "setpoint writes", "settle calls", "slices", "instrument s"}};
  for (const int count : {3, 10, 30}) {
    rows.push_back(CountRow("ramp, by mass", count, ByMass()));
    rows.push_back(FormulaRow(count, FormulaByMass(count)));
    rows.push_back(CountRow("ramp, by measurement", count, ByMeasurement()));
    rows.push_back(FormulaRow(count, FormulaByMeasurement(count)));
    rows.push_back(CountRow("search of the parser", count, ParserSearch()));
    rows.push_back(CountRow("search of the firmware", count, FirmwareSearch()));
  }
  return MarkdownTable(rows);
}

}  // namespace tof::study
