#include <fmt/format.h>

#include <cmath>

#include "hosts/study/tables.h"

namespace tof::study {
namespace {

std::vector<std::string> AccuracyRow(const char* way, const Series& series) {
  const SeriesFigures figures = FiguresOf(series);
  return {way,
          fmt::format("{:.3f}", figures.in_band.rms),
          fmt::format("{:.3f}", figures.in_band.largest),
          fmt::format("{:.3f}", figures.at_calibration.rms),
          fmt::format("{:.3f}", figures.limit_ppm),
          fmt::format("{:.2f}", figures.at_calibration.rms / figures.limit_ppm),
          fmt::format("{:+.3f}", figures.weak_common_ppm),
          fmt::format("{:+.3f}", figures.weak_predicted_ppm),
          fmt::format("{:.3f}", figures.weak_largest_miss_ppm)};
}

VirtualRun WithDrift(VirtualRun run, double ppm_per_min) {
  SourceOf(run.description).physics.drift = {ppm_per_min, 0.0};
  return run;
}

// The error at each of the check masses, averaged over the seeds: what chance adds to it, each seed
// with another sign, is much less than in a single run.
std::vector<double> MeanErrors(const Series& series) {
  std::vector<double> mean(CheckMasses().size());
  for (const VirtualResult& result : series.results) {
    const std::vector<double> errors =
        TrueErrorsInMidBand(PhysicsOf(series.run.description), result);
    for (std::size_t i = 0; i < mean.size(); ++i) {
      mean[i] += errors[i] / static_cast<double>(series.results.size());
    }
  }
  return mean;
}

double RmsDifference(const std::vector<double>& a, const std::vector<double>& b) {
  double squares = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) squares += (a[i] - b[i]) * (a[i] - b[i]);
  return std::sqrt(squares / static_cast<double>(a.size()));
}

// The times between two masses' mean moments: by mass the four settle waits and all spectra of a
// mass, by measurement one wait and one spectrum.
double PredictedDriftRatio(const VirtualRun& run) {
  constexpr double kSliceSec = 0.4;
  const double settle_sec =
      kSliceSec * run.description.settings.at("Calibration").at("AICSettlingTime_sec");
  const double spectrum_sec = PhysicsOf(run.description).acquisition.spectrum_duration_sec;
  return (4.0 * settle_sec + run.description.run.spectra * spectrum_sec) /
         (settle_sec + spectrum_sec);
}

}  // namespace

std::string AccuracyTable(const Ways& ways) {
  const double ratio =
      FiguresOf(ways.traditional).in_band.rms / FiguresOf(ways.by_measurement).in_band.rms;
  return MarkdownTable({{"way", "in band, rms", "largest", "at calibration, rms", "limit",
                         "over limit", "weak, common", "predicted", "largest miss"},
                        AccuracyRow("ramp, by measurement", ways.by_measurement),
                        AccuracyRow("ramp, by mass", ways.by_mass),
                        AccuracyRow("search of the parser", ways.parser_search),
                        AccuracyRow("search of the firmware", ways.firmware_search),
                        AccuracyRow("traditional", ways.traditional)}) +
         fmt::format(
             "\n{} seeds. In the band, the traditional error is {:.0f} times that of the "
             "ramp by measurement.\n",
             ways.traditional.results.size(), ratio);
}

std::string DriftTable(std::uint64_t seeds) {
  constexpr double kDriftPpmPerMin = 2.0;
  struct Drifting {
    double rms_ppm;
    double own_part_ppm;
  };
  const auto measure = [seeds](const VirtualRun& run) {
    const Series drifting = RunSeries(WithDrift(run, kDriftPpmPerMin), seeds);
    const Series still = RunSeries(WithDrift(run, 0.0), seeds);
    return Drifting{FiguresOf(drifting).at_calibration.rms,
                    RmsDifference(MeanErrors(drifting), MeanErrors(still))};
  };
  const Drifting by_mass = measure(ByMass());
  const Drifting by_measurement = measure(ByMeasurement());
  const auto row = [](const char* what, double mass, double measurement) {
    return std::vector<std::string>{what, fmt::format("{:.3f}", mass),
                                    fmt::format("{:.3f}", measurement),
                                    fmt::format("{:.2f}", mass / measurement)};
  };
  return MarkdownTable(
      {{"ppm", "by mass", "by measurement", "ratio"},
       row("at calibration, rms", by_mass.rms_ppm, by_measurement.rms_ppm),
       row("the drift's own part", by_mass.own_part_ppm, by_measurement.own_part_ppm),
       {"predicted", "", "", fmt::format("{:.2f}", PredictedDriftRatio(ByMass()))}});
}

}  // namespace tof::study
