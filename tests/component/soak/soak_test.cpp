// Ten thousand calibrations on one object, with faults, aborts and settings by chance.
#include <gtest/gtest.h>

#include <array>
#include <iostream>
#include <iterator>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "component/automation/convert.h"
#include "component/calibrator/tof_calibrator.h"
#include "component/trace/trace.h"
#include "tests/component/soak/memory.h"
#include "tests/component/whole_run/aic_ways.h"
#include "tests/support/calibration_fixture.h"

namespace tof::fakes {
namespace {

constexpr int kRuns = 10000;
constexpr int kRunsBetweenLooksAtTheMemory = 50;
constexpr std::uint32_t kSeed = 20240229;

class Chance {
 public:
  std::uint32_t UpTo(std::uint32_t last) {
    return static_cast<std::uint32_t>(generator_() % (last + 1));
  }
  bool In(std::uint32_t n) { return UpTo(n - 1) == 0; }  // once in n
  template <class List>
  auto OneOf(const List& list) {
    return list[UpTo(static_cast<std::uint32_t>(list.size()) - 1)];
  }

 private:
  std::mt19937 generator_{kSeed};
};

// One object and its world, for all runs.
struct World {
  World() : host(journal), instrument(journal, host) {
    journal.keep_entries = false;
    Reset();
    calibrator = std::make_unique<TofCalibrator>(instrument, host, events);
  }

  // The instrument as its software finds it again after anything: settings, setpoints,
  // coefficients.
  void Reset(const Way& way = kWays.front()) {
    const FakeInstrument fresh(journal, host);
    instrument.setpoints = fresh.setpoints;
    instrument.settings = fresh.settings;
    instrument.flags = fresh.flags;
    instrument.in_force = fresh.in_force;
    instrument.defaults = fresh.defaults;
    instrument.has_likely_a = false;
    instrument.has_display = true;
    instrument.display_live = true;
    instrument.scale_factor = 1.0;
    instrument.abort_requested = 0;
    instrument.bad_fits = std::vector<double>();
    Arrange(way, instrument);
    journal.request_abort = [this] { instrument.abort_requested = -1; };
    journal.fail_from = journal.abort_before = Journal::kNever;
    journal.fail_count = 1;
    host.trace->on = false;
    host.trace->Forget();
    host.message_boxes = std::vector<std::string>();
    masses = Variant::DoubleArray(instrument.sample_masses);
    n_spectra = 2;
    times = Variant();
    optional = {};
    events = RecordedEvents();
    journal.Clear();
  }

  std::shared_ptr<MassCalCoefficients> Calibrate() {
    bool suppress_aic = false;
    return calibrator->calibrateTOFMassAxis(n_spectra, masses, times, suppress_aic, optional);
  }

  int OpenStreams(const std::string& begin) const {
    int open = 0;
    for (const auto& [path, file] : host.files) {
      if (path.find("\\" + begin) != std::string::npos) open += file.open_streams;
    }
    return open;
  }

  void RemoveClosedFiles() {
    for (auto file = host.files.begin(); file != host.files.end();) {
      file = file->second.open_streams == 0 ? host.files.erase(file) : std::next(file);
    }
  }

  Journal journal;
  FakeHost host;
  FakeInstrument instrument;
  RecordedEvents events;
  ModuleStateScope module_state;
  std::unique_ptr<TofCalibrator> calibrator;
  Variant masses;
  Variant times;
  std::int16_t n_spectra = 2;
  OptionalCalibrationArguments optional;
};

// --- What a run may meet.

void ArrangeSettings(World& world, Chance& chance) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr std::array<double, 12> kValues = {0.0,   -1.0, 0.5, 7.0,  20.0,      60.0,
                                              160.0, 1e-9, 1e9, kNan, kInfinity, -kInfinity};
  constexpr std::array<const char*, 9> kKeys = {
      "AIC_RF_LowValue",    "AIC_RF_HighValue",        "AIC_RF_Step",
      "AIC_TargetMinAb",    "AIC_TargetMaxAb",         "UseThisPowerFlag",
      "AIC_ScalarForMass1", "AIC_SearchSpeedUpFactor", "AICAltSPPlugValueForMass3"};
  for (std::uint32_t n = chance.UpTo(2); n > 0; --n) {
    const std::string key = std::string("Calibration/") + chance.OneOf(kKeys);
    world.instrument.settings[key] = chance.OneOf(kValues);
  }
  if (chance.In(8)) world.instrument.settings.erase("Calibration/AIC_TargetMaxAb");
  if (chance.In(4)) world.instrument.flags["AIC_UseAbScalars"] = "Yes";
  if (chance.In(4)) world.instrument.flags["AICLoggingEnabled"] = "No";
  if (chance.In(4)) world.instrument.flags["TraceAICPeakAttributes"] = "Yes";
  if (chance.In(4)) world.instrument.flags["SkipCalcLikelyABeforeCalibration"] = "No";
  if (chance.In(4)) world.instrument.flags[world.instrument.flag_key] = "Yes";
  if (chance.In(16)) world.instrument.flags["SkipTOFCalibrationDuringAutotunes"] = "Yes";
  if (chance.In(8)) world.instrument.flags["UseCalibrationAlgInMTObj"] = "No";
  if (chance.In(8)) world.instrument.has_display = false;
  for (std::uint32_t n = chance.In(4) ? chance.UpTo(2) : 0; n > 0; --n) {
    world.instrument.bad_fits.push_back(0.5);
  }
  if (chance.In(4)) world.optional.dTradWeighting = chance.OneOf(kValues);
  world.host.trace->on = chance.In(2);
}

void ArrangeArguments(World& world, Chance& chance) {
  constexpr std::array<std::int16_t, 8> kSpectra = {-5, -1, 0, 1, 2, 2, 3, 5};
  world.n_spectra = chance.OneOf(kSpectra);
  if (!chance.In(3)) return;
  std::vector<double> masses;
  for (std::uint32_t n = chance.UpTo(11); n > 0; --n) masses.push_back(100.0 * n);
  switch (chance.UpTo(5)) {
    case 0:
      world.masses = Variant();
      break;
    case 1:
      world.masses = Variant("322.0481");
      break;
    case 2: {
      Variant::Array texts(1, 4);
      for (std::int32_t i = 1; i <= 4; ++i) texts(i) = Variant(std::to_string(i) + "00.25");
      world.masses = texts;
      break;
    }
    default:
      if (!masses.empty()) world.masses = Variant::DoubleArray(masses);
  }
}

void ArrangeFault(World& world, Chance& chance) {
  constexpr std::uint32_t kLastCall = 1500;
  if (chance.In(2)) world.journal.fail_from = chance.UpTo(kLastCall);
  if (chance.In(4)) world.journal.fail_count = chance.UpTo(50);
  if (chance.In(8)) world.journal.fail_count = Journal::kNever;
  if (chance.In(6)) world.journal.abort_before = chance.UpTo(kLastCall);
}

// --- What every run promises, whatever it met.

void ExpectPromises(const World& world, const std::shared_ptr<MassCalCoefficients>& result,
                    const FakeCoefficients* old_coefficients) {
  EXPECT_LE(world.events.events.size(), 1U);
  if (!world.events.events.empty()) {
    EXPECT_EQ(result, nullptr);
  }
  const auto& in_force = world.instrument.in_force;
  const bool old = in_force.get() == old_coefficients;
  const bool defaults = in_force == world.instrument.defaults;
  if (result != nullptr) {
    EXPECT_EQ(result, in_force) << "what is returned is in force";
  } else if (!old && !defaults) {
    // A fit that was put in force before a later step failed: never a bad one.
    EXPECT_NEAR(in_force->record[0], world.instrument.true_a_per_ns, 0.03 * 0.00065);
  }
  EXPECT_LE(world.OpenStreams("AIC_"), 1);
  EXPECT_LE(world.OpenStreams("CalibrationLog_"), 1);
  EXPECT_EQ(world.host.OpenStreams(),
            world.OpenStreams("AIC_") + world.OpenStreams("CalibrationLog_"));
  EXPECT_EQ(CurrentModuleState().trace.call_stack.size(), 1U);
}

// The usual calibration works, and leaves everything as it found it.
void ExpectTheUsualRunToWork(World& world) {
  world.Reset();
  const auto found = world.instrument.setpoints;
  ASSERT_NE(world.Calibrate(), nullptr) << ::testing::PrintToString(world.events.events);
  EXPECT_EQ(world.instrument.setpoints, found);
  EXPECT_EQ(world.OpenStreams("AIC_"), 0);
  EXPECT_NEAR(world.instrument.in_force->record[0], world.instrument.true_a_per_ns, 1e-12);
}

TEST(Soak, HoldsItsPromisesWhateverHappens) {
  World world;
  Chance chance;
  std::int64_t blocks_at_first = 0;
  int calibrated = 0;
  int failed = 0;
  for (int run = 0; run < kRuns; ++run) {
    SCOPED_TRACE("run " + std::to_string(run));
    if (run % kRunsBetweenLooksAtTheMemory == 0) {
      ExpectTheUsualRunToWork(world);
      world.RemoveClosedFiles();
      world.Reset();
      if (run == 0) {
        blocks_at_first = LiveBlocks();
      } else {
        EXPECT_EQ(LiveBlocks(), blocks_at_first) << "blocks of memory";
      }
    }
    world.Reset(chance.OneOf(kWays));
    ArrangeSettings(world, chance);
    ArrangeArguments(world, chance);
    ArrangeFault(world, chance);
    const FakeCoefficients* const old_coefficients = world.instrument.in_force.get();
    const auto result = world.Calibrate();
    ExpectPromises(world, result, old_coefficients);
    calibrated += result != nullptr ? 1 : 0;
    failed += world.events.events.empty() ? 0 : 1;
    ASSERT_FALSE(HasFailure());
  }
  std::cout << kRuns << " runs: " << calibrated << " calibrated, " << failed << " failed, "
            << blocks_at_first << " blocks of memory at every look\n";
  EXPECT_GT(calibrated, kRuns / 10);
  EXPECT_GT(failed, kRuns / 10);
}

}  // namespace
}  // namespace tof::fakes
