// What a spectrum of the built-in virtual instrument costs.
#include <benchmark/benchmark.h>

#include "instruments/virtual/virtual_physics.h"

namespace {

namespace vi = tof::virtual_instrument;

void WholeSpectrum(benchmark::State& state) {
  vi::VirtualPhysics physics(vi::Parameters(), 1);
  double now_sec = 0.0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(physics.Acquire(now_sec, 75.0, 1));
    now_sec += 1.0;
  }
}
BENCHMARK(WholeSpectrum)->Unit(benchmark::kMillisecond);

void WholeSpectrumIntoThePreviousOne(benchmark::State& state) {
  vi::VirtualPhysics physics(vi::Parameters(), 1);
  tof::spectra::Spectrum spectrum;
  double now_sec = 0.0;
  for (auto _ : state) {
    physics.Acquire(now_sec, 75.0, 1, spectrum);
    now_sec += 1.0;
  }
}
BENCHMARK(WholeSpectrumIntoThePreviousOne)->Unit(benchmark::kMillisecond);

void NormalNumber(benchmark::State& state) {
  vi::Random random(1, 0);
  const vi::NormalSampler normal;
  for (auto _ : state) benchmark::DoNotOptimize(normal(random));
}
BENCHMARK(NormalNumber);

// Argument: expected successes of 10,000 trials.
void BinomialNumber(benchmark::State& state) {
  vi::Random random(1, 0);
  const double probability = static_cast<double>(state.range(0)) / 10'000.0;
  for (auto _ : state) benchmark::DoNotOptimize(vi::SampleBinomial(random, 10'000, probability));
}
BENCHMARK(BinomialNumber)->Arg(1)->Arg(9)->Arg(100)->Arg(3'000);

}  // namespace
