// The order in which setpoints are put back, and the types that they are written with.
#include "component/acquisition/instrument_state.h"
#include "component/calibration/tune_setpoints.h"
#include "tests/component/calibration/calibration_calls.h"
#include "tests/support/calibration_fixture.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::FlagRead;
using fakes::InOrder;
using fakes::SetpointWritten;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

constexpr int kDoubleCode = 5;
static_assert(static_cast<int>(ValueType::kDouble) == kDoubleCode);
static_assert(static_cast<int>(ValueType::kInt16) == 2);
static_assert(static_cast<int>(ValueType::kBoolean) == 11);

class WrittenSetpoints : public fakes::CalibrationFixture {
 protected:
  WrittenSetpoints() {
    host.trace->on = false;
    instrument.flags["Enable1700mzTune"] = "Yes";
  }
  const Variant& Setpoint(std::int32_t id) { return instrument.setpoints.at(id); }
};

const Calls kModeAsked = {"DataDictionary.GetModeName", "DataDictionary.ModeUsesRfSetpoints(MS)"};

TEST_F(WrittenSetpoints, AreTheFragmentorThenTheCollisionCellWhereTheModeUsesOne) {
  instrument.mode_uses_rf_setpoints = false;
  Instrument parts = Collaborators();
  RestoreSmallMoleculeCalibSetpoints(
      parts, {.hprf = 1.25, .lprf = 2.25, .fragmentor = 3.25, .ccdv = 4.25});
  EXPECT_THAT(journal.entries(),
              ElementsAreArray(InOrder({FlagRead("Enable1700mzTune"), kModeAsked,
                                        SetpointWritten(101, ValueType::kDouble, "3.25"),
                                        SetpointWritten(85, ValueType::kDouble, "4.25")})));
}

TEST_F(WrittenSetpoints, AreTheTwoRfSetpointsThenTheCollisionCellWhereTheModeUsesTwo) {
  Instrument parts = Collaborators();
  RestoreSmallMoleculeCalibSetpoints(
      parts, {.hprf = 1.25, .lprf = 2.25, .fragmentor = 3.25, .ccdv = 4.25});
  EXPECT_THAT(journal.entries(),
              ElementsAreArray(InOrder({FlagRead("Enable1700mzTune"), kModeAsked,
                                        SetpointWritten(190, ValueType::kDouble, "1.25"),
                                        SetpointWritten(191, ValueType::kDouble, "2.25"),
                                        SetpointWritten(85, ValueType::kDouble, "4.25")})));
}

TEST_F(WrittenSetpoints, AreDoublesWhateverTheyWereReadAs) {
  instrument.setpoints[190] = std::int16_t{201};
  instrument.setpoints[191] = "90.25";
  instrument.setpoints[85] = true;
  instrument.setpoints[101] = std::int32_t{170000};
  Instrument parts = Collaborators();
  SavedTuneSetpoints saved;
  ApplySmallMoleculeCalibSetpoints(parts, saved);
  EXPECT_EQ(saved.fragmentor, 170000.0);
  RestoreSmallMoleculeCalibSetpoints(parts, saved);
  EXPECT_EQ(Setpoint(190), Variant(201.0));
  EXPECT_EQ(Setpoint(191), Variant(90.25));
  EXPECT_EQ(Setpoint(85), Variant(-1.0));
}

TEST_F(WrittenSetpoints, AreSavedInAllFourMembersWhateverTheMode) {
  for (const bool uses_two : {true, false}) {
    instrument.setpoints[190] = 200.0;
    instrument.setpoints[191] = 90.0;
    instrument.setpoints[101] = 175.0;
    instrument.setpoints[85] = 1.5;
    instrument.mode_uses_rf_setpoints = uses_two;
    Instrument parts = Collaborators();
    SavedTuneSetpoints saved;
    ApplySmallMoleculeCalibSetpoints(parts, saved);
    EXPECT_EQ(saved.hprf, 200.0);
    EXPECT_EQ(saved.lprf, 90.0);
    EXPECT_EQ(saved.fragmentor, 175.0);
    EXPECT_EQ(saved.ccdv, 1.5);
  }
}

TEST_F(WrittenSetpoints, OfTheInstrumentStateAreIntegersAndABoolean) {
  instrument.setpoints[18] = 4.0;
  instrument.setpoints[149] = "3";
  instrument.setpoints[150] = std::int32_t{5};
  instrument.setpoints[128] = std::int32_t{12};
  Instrument parts = Collaborators();
  SavedInstrumentState saved;
  StorePreAutotuneInstrumentState(parts, saved);
  EXPECT_THAT(journal.entries(), ElementsAreArray(fakes::InstrumentStateStored()));
  journal.Clear();
  RestorePreAutotuneInstrumentState(parts, saved, false, {}, {}, {});
  EXPECT_THAT(journal.entries(),
              ElementsAreArray(fakes::InstrumentStateRestored("4", "True", "3", "12")));
  EXPECT_EQ(Setpoint(18), Variant(std::int16_t{4}));
  EXPECT_EQ(Setpoint(150), Variant(true));
  EXPECT_EQ(Setpoint(149), Variant(std::int16_t{3}));
  EXPECT_EQ(Setpoint(128), Variant(std::int16_t{12}));
}

TEST_F(WrittenSetpoints, CorrectTheGainChannelAsA16BitInteger) {
  instrument.setpoints[18] = 2.0;
  instrument.setpoints[149] = 3.0;
  Instrument parts = Collaborators();
  EnsureProperInstrumentStateForCalibration(parts, false);
  EXPECT_THAT(journal.entries(),
              ElementsAreArray(InOrder({fakes::SetpointRead(18), fakes::SetpointRead(149),
                                        SetpointWritten(149, ValueType::kInt16, "1")})));
  EXPECT_EQ(Setpoint(149), Variant(std::int16_t{1}));
}

}  // namespace
}  // namespace tof
