// The calibrator on stand-in instruments, end to end.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "component/calibrator/tof_calibrator.h"
#include "component/trace/trace.h"
#include "instruments/masstime/fit.h"
#include "tests/instruments/standin/test_instrument.h"

namespace tof::standin {
namespace {

struct Events : StatusEvents {
  std::vector<std::string> messages;
  void evtNewStatus(std::int32_t number, const std::string& message) override {
    messages.push_back(std::to_string(number) + " " + message);
  }
};

struct Outcome {
  std::shared_ptr<MassCalCoefficients> coefficients;
  std::vector<std::string> events;
  std::vector<double> times_ns;    // of the calibrants, averaged
  std::vector<double> errors_ppm;  // of the calibrants, by the new coefficients
};

enum class Way { kAsTheInstrumentAllows, kTraditional };

// Calibrates as the description's defaults say.
Outcome Calibrate(TestInstrument& test, Way way = Way::kAsTheInstrumentAllows) {
  const ModuleStateScope module;  // its log file belongs to this test's host
  Events events;
  TofCalibrator calibrator(test.instrument, test.host, events);
  const description::InstrumentDescription& description = test.instrument.State().description;
  const std::vector<double> masses = description::CalibrantMasses(description);
  std::int16_t spectra = description.run.spectra;
  bool suppress_aic = way == Way::kTraditional;
  Variant times;
  OptionalCalibrationArguments optional{.dTradWeighting = description.run.trad_weighting,
                                        .dPeakFindTimeWindow = description.run.peak_window};
  Outcome outcome;
  outcome.coefficients = calibrator.calibrateTOFMassAxis(
      spectra, Variant(BoundedArray<double>(masses)), times, suppress_aic, optional);
  outcome.events = events.messages;
  if (!outcome.coefficients) return outcome;
  const auto* measured = times.As<Variant::DoubleArray>();
  for (std::size_t i = 0; i < masses.size(); ++i) {
    const double time_ns = (*measured)(static_cast<std::int32_t>(i));
    outcome.times_ns.push_back(time_ns);
    outcome.errors_ppm.push_back((outcome.coefficients->TimeToMass(time_ns) / masses[i] - 1.0) *
                                 1e6);
  }
  return outcome;
}

double Rms(const std::vector<double>& values) {
  double squares = 0.0;
  for (const double value : values) squares += value * value;
  return std::sqrt(squares / static_cast<double>(values.size()));
}

TEST(Calibration, OfTheBuiltInInstrumentFindsItsTrueLaw) {
  TestInstrument test;
  const Outcome outcome = Calibrate(test);
  ASSERT_TRUE(outcome.coefficients) << testing::PrintToString(outcome.events);
  const CoefficientRecord record = outcome.coefficients->GetCoefficientRecord();
  // All peaks are of one band of abundance, so that the dead time moves them alike; what is left is
  // the drift of some minutes and the counting of ions.
  EXPECT_NEAR(record[0], 0.00065, 0.00065 * 2e-6);
  EXPECT_NEAR(record[1], 300.0, 0.05);
  EXPECT_LT(Rms(outcome.errors_ppm), 0.6);
  EXPECT_EQ(test.instrument.CreateAcqController()->GetCurrentA(), record[0]);
}

TEST(Calibration, InTheTraditionalWayIsMovedByTheDeadTime) {
  TestInstrument test;
  const Outcome outcome = Calibrate(test, Way::kTraditional);
  ASSERT_TRUE(outcome.coefficients) << testing::PrintToString(outcome.events);
  EXPECT_NEAR(outcome.coefficients->GetCoefficientRecord()[0], 0.00065, 0.00065 * 20e-6);
  EXPECT_GT(Rms(outcome.errors_ppm), 3.0);
  EXPECT_LT(Rms(outcome.errors_ppm), 20.0);
}

TEST(Calibration, TakesTheSpectraThatWereAskedForAndOneThatIsNotStored) {
  TestInstrument test;
  Calibrate(test, Way::kTraditional);
  EXPECT_EQ(test.instrument.Counted().spectra, 11);
}

TEST(Calibration, WithARampTakesTwoSpectraAStepAndThoseOfEachMass) {
  TestInstrument test;
  Calibrate(test);
  EXPECT_EQ(test.instrument.Counted().spectra, 2 * 71 + 10 * 10);
  // Steps and measurements; the entry value; sample rate, resolution, gain and setpoint 128.
  EXPECT_EQ(test.instrument.Counted().setpoint_writes, 2 * 71 + 10 * 10 + 1 + 4);
}

TEST(Calibration, LeavesTheVoltageAsItWas) {
  TestInstrument test;
  Calibrate(test);
  EXPECT_EQ(SetpointOf(test.instrument.State(), 83).value, Variant(75.0));
}

TEST(Calibration, GivesTheSameBytesForTheSameSeed) {
  InstrumentOptions other_seed;
  other_seed.seed = 2;
  TestInstrument first, second, third(description::BuiltInDescription(), other_seed);
  const auto record_of = [](TestInstrument& test) {
    return Calibrate(test).coefficients->GetCoefficientRecord();
  };
  const CoefficientRecord record = record_of(first);
  EXPECT_EQ(record_of(second), record);
  EXPECT_NE(record_of(third), record);
  for (const auto& [path, file] : first.host.files) {
    EXPECT_EQ(second.host.files.at(path).bytes, file.bytes) << path;
  }
}

TEST(Calibration, ReportsAPlannedFault) {
  InstrumentOptions options;
  options.faults = {{Operation::kMassCalCoefficientsCalibrate, 1, false}};
  TestInstrument test(description::BuiltInDescription(), options);
  const Outcome outcome = Calibrate(test);
  EXPECT_FALSE(outcome.coefficients);
  EXPECT_EQ(outcome.events, std::vector<std::string>{
                                "440 Planned failure of MassCalCoefficients.Calibrate, call 1"});
}

TEST(Calibration, EndsAtAPlannedAbort) {
  InstrumentOptions options;
  options.abort_after_sec = 3.0;
  TestInstrument test(description::BuiltInDescription(), options);
  const Outcome outcome = Calibrate(test);
  EXPECT_FALSE(outcome.coefficients);
  EXPECT_EQ(outcome.events, std::vector<std::string>{"1 User aborted"});
  EXPECT_LE(test.instrument.Counted().spectra, 4);
}

// The same fit again, for its leave-one-out errors.
masstime::Fit FitOf(const TestInstrument& test, const Outcome& outcome) {
  const InstrumentState& state = test.instrument.State();
  const std::vector<double> masses = description::CalibrantMasses(state.description);
  return masstime::FitTerms(
      {masses, outcome.times_ns}, WindowOf(state),
      static_cast<masstime::TermSet>(outcome.coefficients->GetCalInfo().PolyTermsFlags),
      masstime::Weighting::kRelativeMass);
}

struct RecordedRun {
  const char* example;
  const char* folder;
  double largest_rms_ppm;
  double largest_loo_ppm;
};

class RecordedCalibration : public testing::TestWithParam<RecordedRun> {};

TEST_P(RecordedCalibration, MatchesEveryCalibrant) {
  const std::filesystem::path data = std::filesystem::path(TOF_SHARED_DATA) / GetParam().folder;
  if (!std::filesystem::exists(data)) GTEST_SKIP() << "the shared spectra are not on this machine";
  InstrumentOptions options;
  options.data_folder = data;
  TestInstrument test(
      description::ReadDescription(std::filesystem::path(TOF_SOURCE_DIR) / "examples/recorded" /
                                   (std::string(GetParam().example) + ".xml")),
      options);
  const Outcome outcome = Calibrate(test);
  ASSERT_TRUE(outcome.coefficients) << testing::PrintToString(outcome.events);
  const masstime::Fit fit = FitOf(test, outcome);
  std::cout << GetParam().example << ": rms " << Rms(outcome.errors_ppm) << " ppm, leave-one-out "
            << fit.loo_rms_ppm << " ppm\n";
  EXPECT_LE(Rms(outcome.errors_ppm), GetParam().largest_rms_ppm)
      << testing::PrintToString(outcome.errors_ppm);
  EXPECT_LE(fit.loo_rms_ppm, GetParam().largest_loo_ppm);
}

INSTANTIATE_TEST_SUITE_P(Examples, RecordedCalibration,
                         testing::Values(RecordedRun{"ladder", "ladder", 1.5, 2.2},
                                         RecordedRun{"breath-ind1-1", "breath", 3.15, 4.86},
                                         RecordedRun{"breath-ind1-2", "breath", 2.7, 4.05},
                                         RecordedRun{"breath-ind1-3", "breath", 2.79, 3.96},
                                         RecordedRun{"breath-single", "breath", 3.2, 4.1},
                                         RecordedRun{"linear_tof", "linear_tof", 45.0, 65.0}),
                         [](const testing::TestParamInfo<RecordedRun>& run) {
                           std::string name = run.param.example;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

}  // namespace
}  // namespace tof::standin
