#include <fmt/format.h>

#include <functional>

#include "hosts/study/tables.h"

namespace tof::study {
namespace {

std::string Percent(std::size_t part, std::size_t whole) {
  return fmt::format("{:.0f} %", 100.0 * static_cast<double>(part) / static_cast<double>(whole));
}

double MeanExpectedAbundance(const Series& series) {
  double sum = 0.0;
  double count = 0.0;
  for (const VirtualResult& result : series.results) {
    for (const MassAtVoltage& mass : result.masses) {
      sum += mass.expected_abundance;
      count += 1.0;
    }
  }
  return sum / count;
}

std::vector<std::string> Head(const char* what) {
  return {what,
          "expected in the band",
          "mean expected abundance",
          "in band, rms ppm",
          "spectra of a run",
          "seconds"};
}

std::vector<std::string> Row(const std::string& what, VirtualRun run, std::uint64_t seeds) {
  const Series series = RunSeriesWithFailures(std::move(run), seeds);
  if (series.results.empty()) return {what, "all failed", "", "", "", ""};
  const BandHits hits = HitsOf(series);
  const std::string failures =
      series.failed == 0 ? "" : fmt::format(" ({} of {} failed)", series.failed, seeds);
  return {what + failures,
          Percent(hits.expected_in_band, hits.masses),
          fmt::format("{:.0f}", MeanExpectedAbundance(series)),
          fmt::format("{:.3f}", FiguresOf(series).in_band.rms),
          fmt::format("{:.1f}", MeanSpectra(series)),
          fmt::format("{:.0f}", MeanInstrumentSeconds(series))};
}

VirtualRun WithScalars(const std::function<double(int)>& scalar_of) {
  VirtualRun run = ByMeasurement();
  run.description.flags["AIC_UseAbScalars"] = "Yes";
  const std::size_t count = description::CalibrantMasses(run.description).size();
  for (std::size_t i = 0; i < count; ++i) {
    Set(run.description, fmt::format("AIC_ScalarForMass{}", i), scalar_of(static_cast<int>(i)));
  }
  return run;
}

VirtualRun WithPlugs(const std::vector<double>& volts) {
  VirtualRun run = ByMeasurement();
  run.description.flags["EnableAICAltSPPlugValues"] = "Yes";
  for (std::size_t i = 0; i < volts.size(); ++i) {
    Set(run.description, fmt::format("AICAltSPPlugValueForMass{}", i + 1), volts[i]);
  }
  return run;
}

VirtualRun WithoutAdjustment(VirtualRun run) {
  run.description.flags["AIC_SkipFinalLinearAbAdj"] = "Yes";
  return run;
}

// What the ramp found in the calibration before.
std::vector<double> VoltagesOfARamp() {
  std::vector<double> volts;
  for (const MassAtVoltage& mass : Run(ByMeasurement()).masses) volts.push_back(mass.volts);
  return volts;
}

}  // namespace

std::string ScalarTable(std::uint64_t seeds) {
  return MarkdownTable({Head("scalars"), Row("1 for all", ByMeasurement(), seeds),
                        Row("0.8 for all", WithScalars([](int) { return 0.8; }), seeds),
                        Row("0.5 for all", WithScalars([](int) { return 0.5; }), seeds),
                        Row("1.25 for all", WithScalars([](int) { return 1.25; }), seeds),
                        Row("2 for all", WithScalars([](int) { return 2.0; }), seeds),
                        Row("0.6 to 1.5, rising with mass",
                            WithScalars([](int i) { return 0.6 + 0.1 * i; }), seeds)});
}

std::string PlugTable(std::uint64_t seeds) {
  const std::vector<double> found = VoltagesOfARamp();
  std::vector<double> a_volt_higher = found;
  for (double& volts : a_volt_higher) volts += 1.0;
  return MarkdownTable(
      {Head("voltages"), Row("found by the ramp", ByMeasurement(), seeds),
       Row("plugged: those of an earlier ramp", WithPlugs(found), seeds),
       Row("plugged: these, 1 V higher", WithPlugs(a_volt_higher), seeds),
       Row("plugged: 75 V for all", WithPlugs(std::vector<double>(found.size(), 75.0)), seeds)});
}

std::string AdjustmentTable(std::uint64_t seeds) {
  return MarkdownTable(
      {Head("search"), Row("parser, with the adjustment", ParserSearch(), seeds),
       Row("parser, adjustment skipped", WithoutAdjustment(ParserSearch()), seeds),
       Row("firmware, with the adjustment", FirmwareSearch(), seeds),
       Row("firmware, adjustment skipped", WithoutAdjustment(FirmwareSearch()), seeds)});
}

}  // namespace tof::study
