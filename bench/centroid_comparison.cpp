// Prints what each centroid reaches: on the published spectra, where they are present, the errors
// of the fitted masses; on simulated counted peaks the scatter over the statistical limit.
#include <fmt/format.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "instruments/masstime/choose_terms.h"
#include "instruments/peaks/centroid.h"
#include "tests/instruments/peaks/shared_spectra.h"
#include "tests/instruments/peaks/simulated_spectrum.h"

namespace tof::peaks {
namespace {

using masstime::Weighting;

struct Row {
  std::string name;
  CentroidOptions options;
};

CentroidOptions Edges(double low, double high, double position) {
  return {CentroidMethod::kEdges, {low, high, position}};
}

const std::vector<Row> kRows{
    {"centre of gravity, 1.2 FWHM", {CentroidMethod::kCentreOfGravity, {}}},
    {"matched filter", {CentroidMethod::kMatchedFilter, {}}},
    {"Gaussian fit", {CentroidMethod::kGaussianFit, {}}},
    {"log parabola", {CentroidMethod::kLogParabola, {}}},
    {"half-height bisector", Edges(0.5, 0.5, 0.5)},
    {"edges 0.3-0.9, middle", Edges(0.3, 0.9, 0.5)},
    {"edges 0.3-0.9, at 0.7", Edges(0.3, 0.9, 0.7)},
    {"edges 0.3-0.9, leading", Edges(0.3, 0.9, 0.0)},
    {"edges 0.1-0.9, leading", Edges(0.1, 0.9, 0.0)},
    {"edges 0.1-0.9, at 0.1", Edges(0.1, 0.9, 0.1)},
};

FoundCalibrants FindWith(const spectra::Spectrum& spectrum, const RealCase& real, const Row& row) {
  FinderOptions options;
  options.pick.centroid = row.options;
  return FindIn(spectrum, real, options);
}

std::string LadderCells(const spectra::Spectrum& spectrum, const Row& row) {
  const RealCase ladder = LadderCase();
  const FoundCalibrants found = FindWith(spectrum, ladder, row);
  const auto choice =
      masstime::ChooseTerms(found.Get(), ladder.start.window, Weighting::kRelativeMass);
  const masstime::Fit& chosen = choice.candidates[choice.chosen].fit;
  const auto nested =
      masstime::LeaveOneOutWithChoice(found.Get(), ladder.start.window, Weighting::kRelativeMass);
  const auto inner = std::span(nested).subspan(1, nested.size() - 2);
  return fmt::format("{:2} found, {} terms {:5.2f} / {:5.2f}, nested {:5.2f}", found.masses.size(),
                     choice.chosen, chosen.rms_ppm, chosen.loo_rms_ppm,
                     masstime::RootMeanSquare(inner));
}

// With A and t0 alone.
std::string PlainCell(const spectra::Spectrum& spectrum, const RealCase& real, const Row& row) {
  const FoundCalibrants found = FindWith(spectrum, real, row);
  const auto fit = masstime::FitTerms(found.Get(), real.start.window, 0, Weighting::kRelativeMass);
  return fmt::format("{:2} {:6.2f} / {:6.2f}", found.masses.size(), fit.rms_ppm, fit.loo_rms_ppm);
}

void PrintReal() {
  if (!HasSharedSpectra()) {
    fmt::print("no shared spectra in {}\n", TOF_SHARED_DATA);
    return;
  }
  std::vector<RealCase> cases{BreathCase(1), BreathCase(2), BreathCase(3), LinearCase()};
  const auto ladder = ReadSpectrum(LadderCase().file, LadderCase().bin_width_ns);
  std::vector<spectra::Spectrum> spectra;
  for (const RealCase& real : cases) spectra.push_back(ReadSpectrum(real.file, real.bin_width_ns));
  fmt::print("rms / leave-one-out in ppm\n{:28}  {:52}  {:18} {:18} {:18} {}\n", "", "ladder",
             "breath 1", "breath 2", "breath 3", "linear");
  for (const Row& row : kRows) {
    fmt::print("{:28}  {:52}", row.name, LadderCells(ladder, row));
    for (std::size_t i = 0; i < cases.size(); ++i) {
      fmt::print("  {}", PlainCell(spectra[i], cases[i], row));
    }
    fmt::print("\n");
  }
}

// Standard deviation of the centroid of 400 counted ions over FWHM / (2.3548 sqrt(400)).
double ScatterOverLimit(const Row& row, double fwhm_bins) {
  constexpr double kIons = 400.0, kCentre = 100.3;
  constexpr int kSpectra = 2'000;
  double sum_of_squares = 0.0;
  int counted = 0;
  for (int seed = 1; seed <= kSpectra; ++seed) {
    SimulatedSpectrum spectrum(0.0, 200.0, 1.0, static_cast<std::uint64_t>(seed));
    spectrum.AddCountedPeak(kCentre, fwhm_bins, kIons, 250.0);
    const Trace trace = ExtractTrace(spectrum.Get(), 0.0, 200.0);
    const double centre = Centroid(trace, 100, fwhm_bins, 0.0, row.options);
    if (!std::isfinite(centre)) continue;
    sum_of_squares += (centre - kCentre) * (centre - kCentre);
    ++counted;
  }
  return std::sqrt(sum_of_squares / counted) /
         (fwhm_bins / (kFwhmPerSigmaOfGaussian * std::sqrt(kIons)));
}

void PrintSimulated() {
  fmt::print(
      "\nrms error over the statistical limit, 400 ions in a Gaussian\n{:28}  {:>8} {:>8} {:>8}\n",
      "FWHM in bins", 1.5, 4, 12);
  for (const Row& row : kRows) {
    if (row.options.method == CentroidMethod::kEdges && row.options.edges.position != 0.5) continue;
    fmt::print("{:28}  {:8.2f} {:8.2f} {:8.2f}\n", row.name, ScatterOverLimit(row, 1.5),
               ScatterOverLimit(row, 4.0), ScatterOverLimit(row, 12.0));
  }
}

}  // namespace
}  // namespace tof::peaks

int main() {
  tof::peaks::PrintReal();
  tof::peaks::PrintSimulated();
  return 0;
}
