#include "hosts/study/figures.h"

#include <algorithm>
#include <cmath>

#include "instruments/masstime/mass_time_model.h"
#include "instruments/virtual/truth.h"

namespace tof::study {
namespace {

double Mean(const std::vector<double>& values) {
  double sum = 0.0;
  for (const double value : values) sum += value;
  return sum / static_cast<double>(values.size());
}

double Rms(const std::vector<double>& values) {
  double squares = 0.0;
  for (const double value : values) squares += value * value;
  return std::sqrt(squares / static_cast<double>(values.size()));
}

double Largest(const std::vector<double>& values) {
  return *std::max_element(values.begin(), values.end());
}

// What `figure` of every result gives.
template <typename Figure>
std::vector<double> Each(const Series& series, Figure&& figure) {
  std::vector<double> values;
  for (const VirtualResult& result : series.results) values.push_back(figure(result));
  return values;
}

template <typename Figures>
ErrorOfSeries ErrorOf(const Series& series, Figures&& figures) {
  const std::vector<double> values = Each(
      series, [&](const VirtualResult& result) { return figures(*result.report.truth).rms_ppm; });
  return {Rms(values), Largest(values)};
}

// The shift that calibrants of this abundance have left in the coefficients: that of each one's
// ions per pulse, averaged.
double PredictedWeakOffset(const Series& series, const VirtualResult& result) {
  const virtual_instrument::Parameters& physics = PhysicsOf(series.run.description);
  const double counts_per_ion = physics.detector.gain_channels.front().counts_per_ion;
  std::vector<double> offsets;
  for (const cli::MassRow& row : result.report.masses) {
    const std::int64_t pulses = physics.acquisition.pulses_per_spectrum;
    // An ion in every pulse says no more than an ion in all but one.
    const double ions =
        std::min(*row.abundance / counts_per_ion, static_cast<double>(pulses) - 1.0);
    const double lambda = virtual_instrument::IonsPerPulseOf(ions, pulses);
    offsets.push_back(virtual_instrument::PredictedWeakOffsetPpm(physics, row.expected, lambda));
  }
  return Mean(offsets);
}

double SettingOf(const Series& series, const char* key) {
  const auto& description = series.run.description;
  return description.settings.at("Calibration").at(key) * description.acquisition.scale_factor;
}

}  // namespace

Series RunSeries(VirtualRun run, std::uint64_t seeds) {
  Series series{.run = std::move(run), .results = {}};
  for (std::uint64_t seed = 1; seed <= seeds; ++seed) {
    series.run.seed = seed;
    series.results.push_back(Run(series.run));
  }
  return series;
}

Series RunSeriesWithFailures(VirtualRun run, std::uint64_t seeds) {
  Series series{.run = std::move(run), .results = {}};
  for (std::uint64_t seed = 1; seed <= seeds; ++seed) {
    series.run.seed = seed;
    try {
      series.results.push_back(Run(series.run));
    } catch (const CalibrationFailed&) {
      ++series.failed;
    }
  }
  return series;
}

SeriesFigures FiguresOf(const Series& series) {
  SeriesFigures figures;
  figures.in_band = ErrorOf(series, [](const cli::Truth& truth) { return truth.in_band; });
  figures.at_calibration =
      ErrorOf(series, [](const cli::Truth& truth) { return truth.at_calibration; });
  figures.limit_ppm =
      Rms(Each(series, [](const VirtualResult& r) { return r.report.truth->limit_ppm; }));
  const auto weak = [](const VirtualResult& r) { return r.report.truth->weak.common_ppm; };
  const auto predicted = [&](const VirtualResult& r) { return PredictedWeakOffset(series, r); };
  figures.weak_common_ppm = Mean(Each(series, weak));
  figures.weak_predicted_ppm = Mean(Each(series, predicted));
  figures.weak_largest_miss_ppm = Largest(
      Each(series, [&](const VirtualResult& r) { return std::abs(weak(r) - predicted(r)); }));
  return figures;
}

BandHits HitsOf(const Series& series) {
  constexpr double kAllowanceAboveMaximum = 1.1;
  const double minimum = SettingOf(series, "AIC_TargetMinAb");
  const double maximum = SettingOf(series, "AIC_TargetMaxAb");
  BandHits hits;
  for (const VirtualResult& result : series.results) {
    for (const MassAtVoltage& mass : result.masses) {
      ++hits.masses;
      if (mass.stored_abundance >= minimum && mass.stored_abundance <= maximum) {
        ++hits.stored_in_band;
      }
      if (mass.expected_abundance >= minimum &&
          mass.expected_abundance <= kAllowanceAboveMaximum * maximum) {
        ++hits.expected_in_band;
      }
    }
  }
  return hits;
}

double MeanInstrumentSeconds(const Series& series) {
  return Mean(Each(series, [](const VirtualResult& r) { return r.report.instrument_seconds; }));
}

double MeanSpectra(const Series& series) {
  return Mean(Each(
      series, [](const VirtualResult& r) { return static_cast<double>(r.report.counts.spectra); }));
}

std::vector<double> CheckMasses() {
  return virtual_instrument::CheckMasses(90.97664, 1790.66223, 200);
}

std::vector<double> TrueErrorsInMidBand(const virtual_instrument::Parameters& physics,
                                        const VirtualResult& result) {
  constexpr double kNsPerUs = 1000.0;
  constexpr double kLambda = 0.06;
  const masstime::MassTimeModel model{*result.report.coefficients,
                                      {kNsPerUs * physics.acquisition.window_start_us,
                                       kNsPerUs * physics.acquisition.window_end_us}};
  std::vector<double> errors_ppm;
  for (const double mass : CheckMasses()) {
    const double time_ns =
        virtual_instrument::ExpectedTimeNs(physics, mass, kLambda, result.drift_ppm);
    errors_ppm.push_back((masstime::TimeToMass(model, time_ns) / mass - 1.0) * 1e6);
  }
  return errors_ppm;
}

std::string MarkdownTable(const std::vector<std::vector<std::string>>& rows) {
  const auto line = [](const std::vector<std::string>& cells) {
    std::string text = "|";
    for (const std::string& cell : cells) text += " " + cell + " |";
    return text + "\n";
  };
  std::string table = line(rows.front()) + "|";
  for (std::size_t i = 0; i < rows.front().size(); ++i) table += "---|";
  table += "\n";
  for (std::size_t row = 1; row < rows.size(); ++row) table += line(rows[row]);
  return table;
}

}  // namespace tof::study
