// What the component itself costs: per spectrum and mass, and per trace line.
#include <benchmark/benchmark.h>

#include <chrono>

#include "bench/free_instrument.h"
#include "component/trace/guarded.h"
#include "component/trace/trace.h"

namespace tof::bench {
namespace {

struct NoEvents : StatusEvents {
  void evtNewStatus(std::int32_t, const std::string&) override { ++count; }
  int count = 0;
};

// A calibrator on the free instrument.
struct Bench {
  explicit Bench(const benchmark::State& state, bool traced = false)
      : host(traced),
        instrument(static_cast<std::int32_t>(state.range(1))),
        n_spectra(static_cast<std::int16_t>(state.range(0))),
        calibrator(instrument, host, events) {}

  bool Calibrate() {
    Variant times;
    return calibrator.calibrateTOFMassAxis(n_spectra, instrument.masses, times, suppress_aic) !=
           nullptr;
  }

  FreeHost host;
  FreeInstrument instrument;
  NoEvents events;
  std::int16_t n_spectra;
  bool suppress_aic = true;
  ModuleStateScope module_state;
  TofCalibrator calibrator;
};

void CountPerSpectrumAndMass(benchmark::State& state) {
  const auto items = state.iterations() * state.range(0) * state.range(1);
  state.SetItemsProcessed(items);
  state.counters["per_spectrum_and_mass"] = benchmark::Counter(
      static_cast<double>(items), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// Spectra and averages alone.
void BM_AveragedTimes(benchmark::State& state) {
  Bench bench(state);
  if (!bench.Calibrate()) state.SkipWithError("the calibration failed");
  double window = 0.5;
  bool aic = false;
  for (auto _ : state) {
    const Variant times = bench.calibrator.GetAveragedTimesForCalibration(
        bench.instrument.masses, bench.n_spectra, aic, window);
    if (times.IsEmpty()) state.SkipWithError("no times");
    benchmark::DoNotOptimize(times);
  }
  CountPerSpectrumAndMass(state);
}
BENCHMARK(BM_AveragedTimes)
    ->ArgNames({"spectra", "masses"})
    ->ArgsProduct({{10, 100, 1000, 10000}, {3, 30, 300}});

// A whole calibration, with the texts of its data log.
void BM_WholeCalibration(benchmark::State& state) {
  Bench bench(state);
  for (auto _ : state) {
    if (!bench.Calibrate()) state.SkipWithError("the calibration failed");
  }
  CountPerSpectrumAndMass(state);
}
BENCHMARK(BM_WholeCalibration)
    ->ArgNames({"spectra", "masses"})
    ->ArgsProduct({{10, 100, 1000, 10000}, {3, 30, 300}})
    ->Unit(benchmark::kMicrosecond);

// An abundance-immune acquisition: a spectrum, a setpoint write and a settle wait (without a slice)
// for each spectrum of each mass. The parser hands over a table of all masses each time, of which
// one mass is used: copying it is the parser's work and is taken off.
void BM_AicAveragedTimes(benchmark::State& state) {
  Bench bench(state);
  if (!bench.Calibrate()) state.SkipWithError("the calibration failed");
  bench.instrument.by_measurement = state.range(2) != 0;
  bench.instrument.parser_time.is_taken = true;
  double window = 0.5;
  bool aic = true;
  for (auto _ : state) {
    bench.instrument.parser_time.spent = {};
    const auto start = std::chrono::steady_clock::now();
    const Variant times = bench.calibrator.GetAveragedTimesForCalibration(
        bench.instrument.masses, bench.n_spectra, aic, window);
    const auto own = std::chrono::steady_clock::now() - start - bench.instrument.parser_time.spent;
    state.SetIterationTime(std::chrono::duration<double>(own).count());
    if (times.IsEmpty()) state.SkipWithError("no times");
    benchmark::DoNotOptimize(times);
  }
  CountPerSpectrumAndMass(state);
}
BENCHMARK(BM_AicAveragedTimes)
    ->ArgNames({"spectra", "masses", "by_measurement"})
    ->ArgsProduct({{10, 100, 1000, 10000}, {3, 30, 300}, {0, 1}})
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

// One line of three parts, with tracing off and on (the trace component drops it).
void BM_TraceLine(benchmark::State& state) {
  const ModuleStateScope module_state;
  FreeHost host(state.range(0) != 0);
  CreateTraceObject(host, "vorntofcaliblib");
  TraceObj trace;
  trace.TraceEntry(9, "BM_TraceLine");
  double time_ns = 17018.080068699;
  for (auto _ : state) {
    benchmark::DoNotOptimize(time_ns);
    trace.TracePrint("AveragedMeasuredCalibrantTime[", std::int32_t{3}, "]: ", time_ns);
  }
}
BENCHMARK(BM_TraceLine)->ArgName("traced")->Arg(0)->Arg(1);

// What a routine pays to announce itself and to carry its error policy.
void BM_GuardedRoutine(benchmark::State& state) {
  const ModuleStateScope module_state;
  FreeHost host(state.range(0) != 0);
  CreateTraceObject(host, "vorntofcaliblib");
  constexpr Routine kRoutine{.name = "BM_GuardedRoutine", .on_error = OnError::kSwallow};
  int calls = 0;
  for (auto _ : state) {
    Guarded(kRoutine, [&](TraceObj&) { benchmark::DoNotOptimize(++calls); });
  }
}
BENCHMARK(BM_GuardedRoutine)->ArgName("traced")->Arg(0)->Arg(1);

}  // namespace
}  // namespace tof::bench
