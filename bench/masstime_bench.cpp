// Cost of a fit, of the choice of terms and of a conversion.
#include <benchmark/benchmark.h>

#include "instruments/masstime/choose_terms.h"
#include "tests/instruments/masstime/simulated_calibrants.h"

namespace tof::masstime {
namespace {

constexpr MassTimeModel kCurved{{6.5e-4, 300.0, 4e-3, -2e-3, 1e-3, 5e-4, -3e-4, 2e-4},
                                {12'000.0, 72'000.0}};

void FitOfTerms(benchmark::State& state) {
  const auto calibrants = Simulate(kCurved, static_cast<std::size_t>(state.range(0)), 1.0);
  const auto terms = static_cast<TermSet>(state.range(1));
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        FitTerms(calibrants.Get(), kCurved.window, terms, Weighting::kRelativeMass));
  }
}
BENCHMARK(FitOfTerms)
    ->ArgNames({"calibrants", "terms"})
    ->Args({10, 0})
    ->Args({29, 0b111})
    ->Args({29, 0b111111});

void ChoiceOfTerms(benchmark::State& state) {
  const auto calibrants = Simulate(kCurved, 29, 1.0);
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        ChooseTerms(calibrants.Get(), kCurved.window, Weighting::kRelativeMass));
  }
}
BENCHMARK(ChoiceOfTerms);

void TimeFromMass(benchmark::State& state) {
  double mass = 100.0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(MassToTime(kCurved, mass));
    mass = mass < 1'700.0 ? mass + 1.0 : 100.0;
  }
}
BENCHMARK(TimeFromMass);

}  // namespace
}  // namespace tof::masstime
