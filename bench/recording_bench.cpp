// What recording and replaying cost: a calibration on an instrument that costs nothing.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>

#include "bench/free_instrument.h"
#include "component/calibrator/tof_calibrator.h"
#include "hosts/recording/recorder.h"
#include "hosts/recording/replay.h"
#include "hosts/recording/taped_calibrator.h"

namespace tof::bench {
namespace {

constexpr std::int32_t kMasses = 10;

struct NoEvents : StatusEvents {
  void evtNewStatus(std::int32_t, const std::string&) override {}
};

// Traced, as a recording always is.
struct Bench {
  FreeHost host{true};
  FreeInstrument instrument{kMasses};
  NoEvents events;
  std::int16_t n_spectra = 10;
  bool suppress_aic = true;
  OptionalCalibrationArguments optional;

  template <class Calibrator>
  void Use(Calibrator& calibrator, benchmark::State& state) {
    Variant times;
    if (calibrator.calibrateTOFMassAxis(n_spectra, instrument.masses, times, suppress_aic,
                                        optional) == nullptr) {
      state.SkipWithError("the calibration failed");
    }
  }
};

// A recording in a folder of its own.
class RecordingPath {
 public:
  RecordingPath() {
    std::string name = (std::filesystem::temp_directory_path() / "tof_bench_XXXXXX").string();
    if (mkdtemp(name.data()) != nullptr) folder_ = name;
  }
  ~RecordingPath() {
    std::error_code nothing_to_do_about_it;
    std::filesystem::remove_all(folder_, nothing_to_do_about_it);
  }
  RecordingPath(const RecordingPath&) = delete;
  RecordingPath& operator=(const RecordingPath&) = delete;

  std::filesystem::path path() const { return folder_ / "recording.jsonl"; }

 private:
  std::filesystem::path folder_;
};

std::int64_t RecordOnce(const std::filesystem::path& path, benchmark::State& state) {
  Bench bench;
  recording::RecordingFile file(path, "a benchmark");
  recording::Recorder recorder(file);
  {
    recording::TapedCalibrator calibrator(recorder, &bench.instrument, &bench.host, &bench.events);
    bench.Use(calibrator, state);
  }
  file.Close(recorder.calls());
  return recorder.calls();
}

void BM_Plain(benchmark::State& state) {
  for (auto _ : state) {
    Bench bench;
    const ModuleStateScope module_state;
    TofCalibrator calibrator(bench.instrument, bench.host, bench.events);
    bench.Use(calibrator, state);
  }
}
BENCHMARK(BM_Plain)->Unit(benchmark::kMicrosecond);

void BM_Recorded(benchmark::State& state) {
  const RecordingPath recording;
  std::int64_t calls = 0;
  for (auto _ : state) calls = RecordOnce(recording.path(), state);
  state.counters["calls"] = static_cast<double>(calls);
  state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(recording.path()));
  state.counters["per_call"] =
      benchmark::Counter(static_cast<double>(calls * state.iterations()),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_Recorded)->Unit(benchmark::kMicrosecond);

void BM_ReadAndReplayed(benchmark::State& state) {
  const RecordingPath recording;
  RecordOnce(recording.path(), state);
  for (auto _ : state) {
    const auto result = recording::Replay(recording::ReadRecording(recording.path()));
    if (result.difference) state.SkipWithError("a difference");
  }
}
BENCHMARK(BM_ReadAndReplayed)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tof::bench
