#include <gtest/gtest.h>

#include "component/automation/error.h"
#include "tests/component/error_number_of.h"
#include "tests/instruments/standin/test_instrument.h"

namespace tof::standin {
namespace {

TEST(StandInDataDictionary, TellsWhatTheDescriptionSays) {
  auto description = description::BuiltInDescription();
  description.acquisition.time_s = 0.125;
  description.mode_uses_rf_setpoints = false;
  TestInstrument test(description);
  const auto dictionary = test.instrument.CreateDataDictionary();
  EXPECT_EQ(dictionary->GetFlagKey(), "AIC_SwitchedOff");
  EXPECT_EQ(dictionary->GetTimeValue(), 0.125);
  EXPECT_EQ(dictionary->GetAcqStartTime(), 12);
  EXPECT_EQ(dictionary->GetAcqEndTime(), 72);
  EXPECT_EQ(dictionary->GetModeName(), "positive");
  EXPECT_FALSE(dictionary->ModeUsesRfSetpoints("positive"));
  EXPECT_EQ(ErrorNumberOf([&] { dictionary->ModeUsesRfSetpoints("negative"); }), 5);
}

TEST(StandInDataDictionary, ReadsTheStatusByName) {
  auto description = description::BuiltInDescription();
  description.status = {.nrdystate = -3, .runstate = 1};
  TestInstrument test(description);
  const auto reader = test.instrument.CreateDataDictionary()->GetStatusReader();
  EXPECT_EQ(reader->Read("ACTUAL.NDR[NRDYSTATE]", "VARIANT", 0), Variant(std::int32_t{-3}));
  EXPECT_EQ(reader->Read("REG[ACTUAL].OBJ[1].NDR[RUNSTATE]", "VARIANT", 0),
            Variant(std::int32_t{1}));
  EXPECT_EQ(ErrorNumberOf([&] { reader->Read("NRDYSTATE", "VARIANT", 0); }), 5);
}

TEST(StandInDataDictionary, IsNotReadyAtTheDescribedTimes) {
  auto description = description::BuiltInDescription();
  description.status.not_ready = {{0.0, 2.0}, {5.0, 6.0}};
  TestInstrument test(description);
  const auto reader = test.instrument.CreateDataDictionary()->GetStatusReader();
  const auto ready_at = [&](double seconds) {
    test.clock->Advance(seconds - test.clock->Seconds());
    return *reader->Read("ACTUAL.NDR[NRDYSTATE]", "VARIANT", 0).As<std::int32_t>() >= 0;
  };
  EXPECT_FALSE(ready_at(0.0));
  EXPECT_TRUE(ready_at(2.0));
  EXPECT_TRUE(ready_at(4.5));
  EXPECT_FALSE(ready_at(5.0));
  EXPECT_TRUE(ready_at(6.0));
}

TEST(StandInDataDictionary, FreezesTheDisplay) {
  TestInstrument test;
  const auto display = test.instrument.CreateDataDictionary()->GetConfigObject();
  EXPECT_TRUE(test.instrument.State().display_is_live);
  display->SetDisplayUpdate(false);
  EXPECT_FALSE(test.instrument.State().display_is_live);
}

TEST(StandInSettings, LeaveTheVariableOfAnAbsentKeyAlone) {
  TestInstrument test;
  const auto settings = test.instrument.CreateCalibSettings();
  double value = 10.0;
  settings->GetValue("Calibration", "AIC_ScalarForMass0", 0, value);
  EXPECT_EQ(value, 10.0);
  settings->GetValue("Elsewhere", "AIC_RF_Step", 0, value);
  EXPECT_EQ(value, 10.0);
  settings->GetValue("Calibration", "AIC_RF_Step", 0, value);
  EXPECT_EQ(value, 2.0);
}

TEST(StandInFlags, AreEmptyWhenAbsent) {
  TestInstrument test;
  const auto flags = test.instrument.CreateTuneFlags();
  EXPECT_EQ(flags->GetFlag("UseCalibrationAlgInMTObj", -1), "Yes");
  EXPECT_EQ(flags->GetFlag("ObfuscateCalibAlg", -1), "");
}

}  // namespace
}  // namespace tof::standin
