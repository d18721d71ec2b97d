#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/instruments/conformance/outcomes.h"
#include "tests/instruments/standin/test_instrument.h"
#include "tests/support/fake_instrument.h"

namespace tof::conformance {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

std::vector<std::string> IdsNotApplicable(const std::vector<CheckResult>& results) {
  std::vector<std::string> ids;
  for (const auto& [id, reason] : NotApplicables(results)) ids.push_back(id);
  return ids;
}

// A fake on which every check applies: with a range of voltages, and abundances that depend on
// them and are above the band to begin with.
struct WorkingFake {
  WorkingFake() {
    instrument.settings["Calibration/AIC_RF_LowValue"] = 20.0;
    instrument.settings["Calibration/AIC_RF_HighValue"] = 160.0;
    instrument.settings["Calibration/AIC_RF_Step"] = 2.0;
    instrument.flags["Enable1700mzTune"] = "Yes";
    instrument.abundance_at = [](double, double volts) { return 4000.0 * volts; };
    instrument.row1_abundance_excess = 0.0;
  }
  std::vector<CheckResult> Check() {
    return RunChecks({.factory = instrument,
                      .host = host,
                      .abort = {[this] { instrument.abort_requested = -1; },
                                [this] { instrument.abort_requested = 0; }}});
  }

  fakes::Journal journal;
  fakes::FakeHost host{journal};
  fakes::FakeInstrument instrument{journal, host};
};

TEST(FakeInstrument, PassesEveryCheck) {
  WorkingFake fake;
  const std::vector<CheckResult> results = fake.Check();
  EXPECT_THAT(Failures(results), IsEmpty());
  EXPECT_THAT(NotApplicables(results), IsEmpty());
}

TEST(FakeInstrument, IsLeftAsItWasFound) {
  WorkingFake fake;
  const auto setpoints = fake.instrument.setpoints;
  const CoefficientRecord coefficients = fake.instrument.in_force->record;
  const CalInfo info = fake.instrument.in_force->info;
  fake.Check();
  EXPECT_EQ(fake.instrument.setpoints, setpoints);
  EXPECT_EQ(fake.instrument.in_force->record, coefficients);
  EXPECT_EQ(fake.instrument.in_force->info, info);
  EXPECT_FALSE(fake.instrument.has_likely_a);
  EXPECT_TRUE(fake.instrument.display_live);
  EXPECT_EQ(fake.instrument.abort_requested, 0);
  EXPECT_EQ(fake.host.OpenStreams(), 0);
}

TEST(FakeInstrument, HasNothingToShowOfWhatItLacks) {
  WorkingFake fake;
  fake.instrument.has_display = false;
  fake.instrument.defaults = nullptr;
  fake.instrument.abundance_at = nullptr;
  fake.instrument.settings.erase("Calibration/AIC_SetpointToUse");
  fake.instrument.flags.erase("Enable1700mzTune");
  const std::vector<CheckResult> results =
      RunChecks({.factory = fake.instrument, .host = fake.host});
  EXPECT_THAT(Failures(results), IsEmpty());
  EXPECT_THAT(
      IdsNotApplicable(results),
      UnorderedElementsAre(
          "SpectrumDisplay.freezes-and-goes-live", "AcqController.abort-is-seen",
          "AcqController.default-coefficients-are-usable", "SetpointTable.rf-voltage-is-read-back",
          "SetpointTable.current-rf-value-is-a-number",
          "SetpointTable.tune-setpoints-are-written-back",
          "CalibSettings.abundance-band-is-an-interval", "CalibSettings.rf-range-can-be-walked",
          "SpecParser.search-ends-in-the-band", "FirmwareLibrary.search-stays-within-its-limits",
          "FirmwareLibrary.search-ends-in-the-band"));
}

// Whatever call fails, the suite tells it of some check and comes to its end.
TEST(FakeInstrument, NeverEndsTheSuiteWhateverItRaises) {
  constexpr std::size_t kStride = 7;
  WorkingFake sound;
  const std::size_t checks = sound.Check().size();
  const std::size_t calls = sound.journal.count();
  for (std::size_t n = 0; n < calls; n += kStride) {
    WorkingFake fake;
    fake.journal.fail_from = n;
    fake.journal.fail_count = fakes::Journal::kNever;
    EXPECT_EQ(fake.Check().size(), checks) << n;
  }
}

TEST(VirtualInstrument, PassesTheSuite) {
  standin::TestInstrument test;
  const std::vector<CheckResult> results =
      RunChecks({.factory = test.instrument,
                 .host = test.host,
                 .abort = {[&] { test.instrument.RequestAbort(); },
                           [&] { test.instrument.WithdrawAbort(); }}});
  EXPECT_THAT(Failures(results), IsEmpty());
}

TEST(VirtualInstrument, IsLeftAsItWasFound) {
  standin::TestInstrument test;
  const auto& state = test.instrument.State();
  const auto setpoints = state.setpoints;
  const CoefficientRecord coefficients = state.in_force.coefficients;
  RunChecks({.factory = test.instrument, .host = test.host});
  for (const auto& [id, setpoint] : setpoints) {
    EXPECT_EQ(state.setpoints.at(id).value, setpoint.value) << id;
  }
  EXPECT_EQ(state.in_force.coefficients, coefficients);
  EXPECT_FALSE(state.starting.has_value());
  EXPECT_TRUE(state.display_is_live);
}

TEST(VirtualInstrument, IsSearchedForOtherMassesThanItsOwn) {
  standin::TestInstrument test;
  const auto failures = [&](const std::vector<double>& masses) {
    return Failures(RunChecks({.factory = test.instrument, .host = test.host, .masses = masses}));
  };
  EXPECT_THAT(failures({498.901186, 362.926338}), IsEmpty());
  EXPECT_THAT(failures({600.0}), ElementsAre(HasSubstr("SpecParser.finds-calibrants")));
}

struct Recorded {
  const char* description;
  const char* folder;  // of its spectra
};

void PrintTo(const Recorded& row, std::ostream* out) {
  *out << row.description;
}

class RecordedInstruments : public ::testing::TestWithParam<Recorded> {};

TEST_P(RecordedInstruments, PassTheSuite) {
  standin::InstrumentOptions options;
  options.data_folder = std::filesystem::path(TOF_SHARED_DATA) / GetParam().folder;
  if (!std::filesystem::exists(options.data_folder)) {
    GTEST_SKIP() << "no recorded spectra in " << options.data_folder;
  }
  standin::TestInstrument test(
      description::ReadDescription(std::string(TOF_SOURCE_DIR) + "/examples/recorded/" +
                                   GetParam().description + ".xml"),
      options);
  const std::vector<CheckResult> results =
      RunChecks({.factory = test.instrument,
                 .host = test.host,
                 .abort = {[&] { test.instrument.RequestAbort(); },
                           [&] { test.instrument.WithdrawAbort(); }}});
  EXPECT_THAT(Failures(results), IsEmpty());
  // Their spectra do not follow a voltage; the rest is there.
  for (const auto& [id, reason] : NotApplicables(results)) {
    EXPECT_THAT(reason, ::testing::AnyOf(HasSubstr("Calibration/AIC_SetpointToUse"),
                                         HasSubstr("Enable1700mzTune")))
        << id;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Examples, RecordedInstruments,
    ::testing::Values(Recorded{"ladder", "ladder"}, Recorded{"breath-ind1-1", "breath"},
                      Recorded{"breath-ind1-2", "breath"}, Recorded{"breath-ind1-3", "breath"},
                      Recorded{"breath-single", "breath"}, Recorded{"linear_tof", "linear_tof"}),
    [](const auto& row) {
      std::string name = row.param.description;
      std::replace(name.begin(), name.end(), '-', '_');
      return name;
    });

}  // namespace
}  // namespace tof::conformance
