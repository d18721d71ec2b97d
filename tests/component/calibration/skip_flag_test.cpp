// The flag that switches autotune calibrations off: what it does not look at, and what it excuses.
#include "component/automation/convert.h"
#include "component/calibration/likely_a.h"
#include "tests/component/calibration/driver_fixture.h"
#include "tests/component/error_number_of.h"

namespace tof {
namespace {

using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

class SkipFlag : public fakes::Driver {
 protected:
  SkipFlag() { instrument.flags["SkipTOFCalibrationDuringAutotunes"] = "Yes"; }
  std::int32_t ErrorOfEstimate() {
    Instrument parts = Collaborators();
    return ErrorNumberOf([&] { ApplyLikelyAAt0Coefficients(parts, host, true, masses); });
  }
};

struct UnusableMasses {
  const char* name;
  Variant masses;
};

void PrintTo(const UnusableMasses& unusable, std::ostream* out) {
  *out << unusable.name;
}

const UnusableMasses kUnusable[] = {
    {"Empty", Variant()},
    {"Missing", Variant::Missing{}},
    {"Text", "322.0481"},
    {"TextInside", Variant(Variant::Array({1.0, "heavy"}))},
    {"TooMany", Variant(Variant::DoubleArray(0, 32767))},
};

class SkipFlagWithUnusableMasses : public SkipFlag,
                                   public ::testing::WithParamInterface<UnusableMasses> {};

TEST_P(SkipFlagWithUnusableMasses, ReturnsNoneWithoutAnEventAndWithoutARestore) {
  masses = GetParam().masses;
  host.trace->on = false;
  CalibrationState state;
  EXPECT_EQ(CalibrateWith(state), nullptr);
  EXPECT_THAT(events.events, IsEmpty());
  EXPECT_THAT(
      journal.entries(),
      ElementsAreArray(fakes::InOrder(
          {fakes::InstrumentStateStored(), fakes::FlagRead("SkipTOFCalibrationDuringAutotunes")})));
  EXPECT_EQ(state.data.expected_masses, masses) << "as the caller passed them";
}

TEST_P(SkipFlagWithUnusableMasses, LeavesThemAnErrorOfACalibrationByHand) {
  masses = GetParam().masses;
  optional.bThisIsAManualCalibration = true;
  EXPECT_EQ(Calibrate(), nullptr);
  ASSERT_EQ(events.events.size(), 1U);
  const bool too_many = std::string(GetParam().name) == "TooMany";
  EXPECT_EQ(events.events[0].first, too_many ? 6 : 13);
  EXPECT_EQ(instrument.spectra_taken, 0);
}

INSTANTIATE_TEST_SUITE_P(Kinds, SkipFlagWithUnusableMasses, ::testing::ValuesIn(kUnusable),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(SkipFlag, StoresAUsableListFromZeroAsEveryRunDoes) {
  masses = Variant(Variant::Array(std::vector<Variant>{"322.0481", std::int16_t{622}}, 1));
  CalibrationState state;
  EXPECT_EQ(CalibrateWith(state), nullptr);
  EXPECT_EQ(state.data.expected_masses, Variant(Variant::DoubleArray({322.0481, 622.0})));
}

TEST_F(SkipFlag, ExcusesAnEstimateThatItSkipped) {
  EXPECT_EQ(ErrorOfEstimate(), 0);
  EXPECT_FALSE(instrument.has_likely_a);
}

TEST_F(SkipFlag, DoesNotExcuseAnEstimateThatFailedBeforeItWasRead) {
  journal.fail_operation = "SetpointTable.GetSetpoint(69)";
  EXPECT_EQ(ErrorOfEstimate(), -822);
  EXPECT_EQ(host.message_boxes.size(), 1U);
  journal.fail_operation.clear();
  masses = Variant("no list");
  EXPECT_EQ(ErrorOfEstimate(), -822);
}

TEST_F(SkipFlag, DoesNotExcuseAnEstimateThatCannotReadIt) {
  journal.fail_operation = "TuneFlags.GetFlag(SkipTOF";
  EXPECT_EQ(ErrorOfEstimate(), -822);
}

TEST_F(SkipFlag, TellsTheCallerOfTheEstimateThatItWasSkipped) {
  Instrument parts = Collaborators();
  double a = 0.0;
  double t0 = 0.0;
  bool skipped = false;
  EXPECT_FALSE(CalculateLikelyAAndt0Values(parts, host, a, t0, masses, &skipped));
  EXPECT_TRUE(skipped);
  instrument.flags.erase("SkipTOFCalibrationDuringAutotunes");
  EXPECT_TRUE(CalculateLikelyAAndt0Values(parts, host, a, t0, masses, &skipped));
  EXPECT_FALSE(skipped);
}

}  // namespace
}  // namespace tof
