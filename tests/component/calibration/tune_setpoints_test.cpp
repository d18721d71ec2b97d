#include "component/calibration/tune_setpoints.h"

#include "tests/component/calibration/calibration_calls.h"
#include "tests/support/calibration_fixture.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::FlagRead;
using fakes::InOrder;
using fakes::SetpointRead;
using fakes::SetpointWritten;
using fakes::SettingRead;
using ::testing::ElementsAreArray;
using ::testing::Property;

class TuneSetpoints : public fakes::CalibrationFixture {
 protected:
  TuneSetpoints() {
    instrument.flags["Enable1700mzTune"] = "Yes";
    instrument.settings["Calibration/SmallMoleculeCalib_HPRF_Standard"] = 150.0;
    instrument.settings["Calibration/SmallMoleculeCalib_LPRF_Standard"] = 60.0;
    instrument.settings["Calibration/SmallMoleculeCalib_Fragmentor_Standard"] = 140.0;
    instrument.settings["Calibration/SmallMoleculeCalib_CCdV_Standard"] = 2.5;
  }
  void Apply() {
    Instrument parts = Collaborators();
    ApplySmallMoleculeCalibSetpoints(parts, saved);
  }
  void Restore() {
    Instrument parts = Collaborators();
    RestoreSmallMoleculeCalibSetpoints(parts, saved);
  }
  double Setpoint(std::int32_t id) { return *instrument.setpoints.at(id).As<double>(); }

  SavedTuneSetpoints saved;
};

const Calls kModeAsked = {"DataDictionary.GetModeName", "DataDictionary.ModeUsesRfSetpoints(MS)"};

Calls Saved() {
  return InOrder({SetpointRead(190), SetpointRead(191), SetpointRead(85), SetpointRead(101)});
}

TEST_F(TuneSetpoints, AreAppliedInThisOrderWhereTheModeUsesTwoRfSetpoints) {
  Apply();
  EXPECT_THAT(journal.entries(),
              ElementsAreArray(InOrder({FlagRead("Enable1700mzTune"),
                                        Saved(),
                                        {"AcqController.GetConfigurationName"},
                                        kModeAsked,
                                        SettingRead("Calibration/SmallMoleculeCalib_HPRF_Standard"),
                                        SetpointWritten(190, ValueType::kDouble, "150"),
                                        SettingRead("Calibration/SmallMoleculeCalib_LPRF_Standard"),
                                        SetpointWritten(191, ValueType::kDouble, "60"),
                                        SettingRead("Calibration/SmallMoleculeCalib_CCdV_Standard"),
                                        SetpointWritten(85, ValueType::kDouble, "2.5")})));
  EXPECT_EQ(Setpoint(101), 175.0);
}

TEST_F(TuneSetpoints, AreAppliedInThisOrderWhereTheModeUsesTheFragmentor) {
  instrument.mode_uses_rf_setpoints = false;
  Apply();
  EXPECT_THAT(
      journal.entries(),
      ElementsAreArray(InOrder({FlagRead("Enable1700mzTune"),
                                Saved(),
                                {"AcqController.GetConfigurationName"},
                                kModeAsked,
                                SettingRead("Calibration/SmallMoleculeCalib_Fragmentor_Standard"),
                                SetpointWritten(101, ValueType::kDouble, "140"),
                                SettingRead("Calibration/SmallMoleculeCalib_CCdV_Standard"),
                                SetpointWritten(85, ValueType::kDouble, "2.5")})));
  EXPECT_EQ(Setpoint(190), 200.0);
}

TEST_F(TuneSetpoints, AreRestoredInThisOrder) {
  Apply();
  Restore();
  EXPECT_THAT(journal.entries(),
              ElementsAreArray(InOrder({FlagRead("Enable1700mzTune"), kModeAsked,
                                        SetpointWritten(190, ValueType::kDouble, "200"),
                                        SetpointWritten(191, ValueType::kDouble, "90"),
                                        SetpointWritten(85, ValueType::kDouble, "1.5")})));
}

TEST_F(TuneSetpoints, AreThoseOfTheOtherModeWhenItChangedBeforeTheRestore) {
  Apply();
  instrument.mode_uses_rf_setpoints = false;
  Restore();
  EXPECT_EQ(Setpoint(190), 150.0);  // as applied
  EXPECT_EQ(Setpoint(191), 60.0);
  EXPECT_EQ(Setpoint(101), 175.0);  // restored, although it was never changed
  EXPECT_EQ(Setpoint(85), 1.5);
}

TEST_F(TuneSetpoints, AreZerosWhenTheyWereNeverApplied) {
  instrument.mode_uses_rf_setpoints = false;
  Restore();
  EXPECT_EQ(Setpoint(101), 0.0);
  EXPECT_EQ(Setpoint(85), 0.0);
  EXPECT_EQ(Setpoint(190), 200.0);
}

TEST_F(TuneSetpoints, AreNeitherReadNorWrittenUnlessTheFlagIsExactlyYes) {
  for (const char* text : {"yes", "YES", "No", ""}) {
    instrument.flags["Enable1700mzTune"] = text;
    Apply();
    EXPECT_THAT(journal.entries(), ElementsAreArray(FlagRead("Enable1700mzTune")));
    Restore();
    EXPECT_THAT(journal.entries(), ElementsAreArray(FlagRead("Enable1700mzTune")));
  }
  instrument.flags.erase("Enable1700mzTune");
  Apply();
  Restore();
  EXPECT_EQ(saved.hprf, 0.0);
  EXPECT_EQ(Setpoint(190), 200.0);
}

TEST_F(TuneSetpoints, TakeTheirKeysFromTheConfiguration) {
  instrument.configuration_name = "Other";
  Apply();
  EXPECT_EQ(Setpoint(190), 0.0);  // no such setting
  EXPECT_EQ(saved.hprf, 200.0);
}

TEST_F(TuneSetpoints, KeepWhatWasSavedBeforeAReadFailed) {
  journal.fail_operation = "SetpointTable.GetSetpoint(85)";
  EXPECT_THAT([&] { Apply(); }, ::testing::Throws<AutomationError>(
                                    Property(&AutomationError::number, fakes::kInjectedNumber)));
  EXPECT_EQ(saved.hprf, 200.0);
  EXPECT_EQ(saved.lprf, 90.0);
  EXPECT_EQ(saved.ccdv, 0.0);
  EXPECT_EQ(saved.fragmentor, 0.0);
}

TEST_F(TuneSetpoints, RaiseAFailedRestoreToTheCaller) {
  journal.fail_operation = "SetpointTable.SetSetpoint(191";
  saved.hprf = 7.0;
  EXPECT_THAT([&] { Restore(); }, ::testing::Throws<AutomationError>(
                                      Property(&AutomationError::number, fakes::kInjectedNumber)));
  EXPECT_EQ(Setpoint(190), 7.0);
  EXPECT_EQ(Setpoint(85), 1.5);
}

TEST_F(TuneSetpoints, LeaveNoTraceOfTheirOwn) {
  Apply();
  Restore();
  EXPECT_THAT(host.trace->lines, ::testing::IsEmpty());
}

}  // namespace
}  // namespace tof
