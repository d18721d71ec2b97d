// A calibrator on the fake instrument, with everything that passes on tape.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "hosts/recording/recorder.h"
#include "hosts/recording/recording.h"
#include "hosts/recording/replay.h"
#include "hosts/recording/taped_calibrator.h"
#include "tests/component/whole_run/aic_ways.h"
#include "tests/hosts/temporary_folder.h"
#include "tests/support/calibration_fixture.h"

namespace tof::recording {

using fakes::FakeHost;
using fakes::FakeInstrument;
using fakes::Journal;

struct Scenario {
  std::string name;
  std::function<void(FakeInstrument&, FakeHost&)> arrange;
};

// Traditional ones, then every way of abundance-immune calibration.
inline std::vector<Scenario> Scenarios() {
  std::vector<Scenario> scenarios = {
      {"Traditional", [](FakeInstrument&, FakeHost&) {}},
      {"TwoBadFits",
       [](FakeInstrument& instrument, FakeHost&) {
         instrument.bad_fits = {0.5, 0.5};
       }},
      {"NoLikelyA",
       [](FakeInstrument& instrument, FakeHost&) {
         instrument.most_peaks_found = {0, 0};
       }},
      {"Aborted",
       [](FakeInstrument& instrument, FakeHost&) {
         instrument.on_spectrum = [&instrument] { instrument.abort_requested = -1; };
       }},
      {"WithoutTrace", [](FakeInstrument&, FakeHost& host) { host.trace = nullptr; }},
      {"NumbersThatAreNone",
       [](FakeInstrument& instrument, FakeHost&) {
         instrument.spectrum_shift_ns = {0.0, std::numeric_limits<double>::quiet_NaN(),
                                         std::numeric_limits<double>::infinity()};
       }},
  };
  for (const fakes::Way& way : fakes::kWays) {
    scenarios.push_back({way.name, [way](FakeInstrument& instrument, FakeHost& host) {
                           fakes::Arrange(way, instrument);
                           host.trace->on = way.traced;
                         }});
  }
  return scenarios;
}

// One run of one scenario. What the calibrator asked for is in the journal.
struct ScenarioRun {
  explicit ScenarioRun(const Scenario& scenario) : host(journal), instrument(journal, host) {
    scenario.arrange(instrument, host);
    masses = Variant::DoubleArray(instrument.sample_masses);
  }

  // Calibrates, then writes the data set and averages again: every method but the test hook's
  // leaves something. `Calibrator` is the component's own or the one on tape.
  template <class Calibrator>
  void Use(Calibrator& calibrator) {
    has_coefficients = calibrator.calibrateTOFMassAxis(n_spectra, masses, times, suppress_aic,
                                                       optional) != nullptr;
    calibrator.WriteDataToSpotFireLog();
    bool enable_aic = false;
    double window = -1.0;
    averaged = calibrator.GetAveragedTimesForCalibration(masses, n_spectra, enable_aic, window);
    calibrator.TestNewStuff();
  }

  void Plainly() {
    const ModuleStateScope module_state;
    try {
      TofCalibrator calibrator(instrument, host, events);
      Use(calibrator);
    } catch (const AutomationError&) {
      creation_failed = true;
    }
  }

  // Over a tape.
  void On(Tape& tape) {
    try {
      TapedCalibrator calibrator(tape, &instrument, &host, &events);
      Use(calibrator);
    } catch (const AutomationError&) {
      creation_failed = true;
    }
  }

  // The bytes of the recording.
  std::string Recorded() {
    const testing::TemporaryFolder folder;
    RecordingFile file(folder / "recording", "a test");
    Recorder recorder(file);
    On(recorder);
    file.Close(recorder.calls());
    EXPECT_EQ(file.failure(), std::nullopt);
    return testing::BytesOf(folder / "recording");
  }

  Journal journal;
  FakeHost host;
  FakeInstrument instrument;
  fakes::RecordedEvents events;
  std::int16_t n_spectra = 2;
  Variant masses;
  Variant times;
  Variant averaged;
  bool suppress_aic = false;
  OptionalCalibrationArguments optional;
  bool has_coefficients = false;
  bool creation_failed = false;
};

}  // namespace tof::recording
