// The peak finder in bins per second, beside reading the same bins once.
#include <benchmark/benchmark.h>

#include <numeric>

#include "instruments/peaks/peak_finder.h"
#include "tests/instruments/peaks/simulated_spectrum.h"

namespace tof::peaks {
namespace {

const masstime::MassTimeModel kModel{{6.5e-4, 300.0}, {12'000.0, 72'000.0}};
const std::vector<double> kMasses{90.977,  158.964, 226.951,  362.926,  498.901,
                                  702.863, 906.826, 1178.775, 1450.725, 1790.662};

// 240,000 bins of 0.25 ns with ten isotope clusters.
const spectra::Spectrum& TenClusters() {
  static const spectra::Spectrum spectrum = [] {
    SimulatedSpectrum simulated(12'000.0, 72'000.0, 0.25);
    for (const double mass : kMasses) simulated.AddCluster(kModel, mass, 10'000.0, 600.0, 250.0);
    return simulated.AddBackground(30.0, 10.0).Get();
  }();
  return spectrum;
}

void CountBins(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() *
                          static_cast<std::int64_t>(TenClusters().time_ns.size()));
}

void ReadOnce(benchmark::State& state) {
  const spectra::Spectrum& spectrum = TenClusters();
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        std::accumulate(spectrum.time_ns.begin(), spectrum.time_ns.end(), 0.0) +
        std::accumulate(spectrum.intensity.begin(), spectrum.intensity.end(), 0.0));
  }
  CountBins(state);
}
BENCHMARK(ReadOnce);

void Calibrants(benchmark::State& state) {
  const spectra::Spectrum& spectrum = TenClusters();
  for (auto _ : state) {
    benchmark::DoNotOptimize(FindCalibrants(spectrum, kMasses, kModel, kOwnWindow));
  }
  CountBins(state);
}
BENCHMARK(Calibrants);

void StrongestClusters(benchmark::State& state) {
  const spectra::Spectrum& spectrum = TenClusters();
  for (auto _ : state) {
    benchmark::DoNotOptimize(FindPeaks(spectrum, 12'000.0, 72'000.0, 12, kModel));
  }
  CountBins(state);
}
BENCHMARK(StrongestClusters);

}  // namespace
}  // namespace tof::peaks
