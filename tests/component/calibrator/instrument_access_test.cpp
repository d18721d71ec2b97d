// The accesses to setpoints, settings and flags that every routine makes in the same way.
#include <cmath>
#include <limits>

#include "tests/component/error_number_of.h"
#include "tests/support/calibration_fixture.h"
#include "tests/support/expected_calls.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::kInjectedNumber;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

constexpr const char* kWindowRead =
    "CalibSettings.GetValue(PeakHandling/PeakFindWindowInPercentT,0)";

class InstrumentAccess : public fakes::CalibrationFixture {
 protected:
  void SetUp() override { host.trace->on = false; }

  // Every call of `access` fails once; each failure is raised as it is and ends the access.
  template <class Access>
  void ExpectEachFailureRaised(Access access) {
    std::int32_t raised = 0;
    fakes::FailEachCall(
        journal, [] {}, [&] { raised = ErrorNumberOf(access); },
        [&](const std::string& failed) {
          EXPECT_EQ(raised, kInjectedNumber);
          EXPECT_EQ(journal.entries().back(), failed);
        });
  }

  Instrument parts = Collaborators();
};

TEST_F(InstrumentAccess, PreparesTwiceAndFetchesATableForEveryReading) {
  EXPECT_EQ(ReadSetpoint(parts, 149), Variant(std::int16_t{1}));
  ReadSetpoint(parts, 18);
  EXPECT_THAT(
      journal.entries(),
      ElementsAreArray(fakes::InOrder({fakes::SetpointRead(149), fakes::SetpointRead(18)})));
  ExpectEachFailureRaised([&] { ReadSetpoint(parts, 149); });
}

TEST_F(InstrumentAccess, PreparesTwiceAndFetchesATableForEveryWriting) {
  WriteSetpoint(parts, 149, ValueType::kInt16, std::int16_t{3});
  WriteSetpoint(parts, 150, ValueType::kBoolean, false);
  WriteSetpoint(parts, 84, ValueType::kDouble, 12.5);
  WriteSetpoint(parts, 117, ValueType::kInt32, std::int32_t{-1});
  EXPECT_THAT(journal.entries(),
              ElementsAreArray(fakes::InOrder({fakes::SetpointAccess("SetSetpoint(149,2,3)"),
                                               fakes::SetpointAccess("SetSetpoint(150,11,False)"),
                                               fakes::SetpointAccess("SetSetpoint(84,5,12.5)"),
                                               fakes::SetpointAccess("SetSetpoint(117,3,-1)")})));
  EXPECT_EQ(instrument.setpoints.at(149), Variant(std::int16_t{3}));
  ExpectEachFailureRaised([&] { WriteSetpoint(parts, 149, ValueType::kInt16, std::int16_t{4}); });
}

TEST_F(InstrumentAccess, ReadsASettingBySectionAndKey) {
  instrument.settings["Section/Key"] = -2.25;
  EXPECT_EQ(Setting(parts, "Section", "Key"), -2.25);
  EXPECT_EQ(CalibrationSetting(parts, "AIC_SetpointToUse"), 84.0);
  EXPECT_THAT(journal.entries(),
              ElementsAre("CalibSettings.GetValue(Section/Key,0)",
                          "CalibSettings.GetValue(Calibration/AIC_SetpointToUse,0)"));
  ExpectEachFailureRaised([&] { Setting(parts, "Section", "Key"); });
}

TEST_F(InstrumentAccess, TakesZeroForASettingThatIsAbsent) {
  EXPECT_EQ(CalibrationSetting(parts, "NoSuchKey"), 0.0);
}

TEST_F(InstrumentAccess, ReadsAFlagByItsKeyAndMinusOne) {
  instrument.flags["Key"] = " Yes ";
  EXPECT_EQ(Flag(parts, "Key"), " Yes ");
  EXPECT_THAT(journal.entries(), ElementsAre("TuneFlags.GetFlag(Key,-1)"));
  ExpectEachFailureRaised([&] { Flag(parts, "Key"); });
}

TEST_F(InstrumentAccess, ComparesFlagsAsExactText) {
  for (const char* other : {"yes", "YES", " Yes", "Yes ", "Y", "True", "-1", ""}) {
    instrument.flags["Key"] = other;
    EXPECT_FALSE(FlagIs(parts, "Key", "Yes")) << other;
  }
  instrument.flags["Key"] = "Yes";
  EXPECT_TRUE(FlagIs(parts, "Key", "Yes"));
  EXPECT_FALSE(FlagIs(parts, "AbsentKey", "Yes"));
}

TEST_F(InstrumentAccess, EnablesTheAicLogWith3000Only) {
  for (const char* other : {"Yes", "1", "2", "3000 ", "3000.0", "03000", ""}) {
    instrument.flags["AICLoggingEnabled"] = other;
    EXPECT_FALSE(AicLoggingEnabled(parts)) << other;
  }
  instrument.flags["AICLoggingEnabled"] = "3000";
  EXPECT_TRUE(AicLoggingEnabled(parts));
}

TEST_F(InstrumentAccess, ReplacesAPeakFindWindowOfMinusOneInTheCallersVariable) {
  double window = -1.0;
  ReplaceDefaultPeakFindWindow(parts, window);
  EXPECT_EQ(window, 0.5);
  EXPECT_THAT(journal.entries(), ElementsAre(kWindowRead));
  ExpectEachFailureRaised([&] {
    window = -1.0;
    ReplaceDefaultPeakFindWindow(parts, window);
  });
  EXPECT_EQ(window, -1.0);
}

TEST_F(InstrumentAccess, LeavesAWindowOfMinusOneWithoutASetting) {
  instrument.settings.erase("PeakHandling/PeakFindWindowInPercentT");
  double window = -1.0;
  ReplaceDefaultPeakFindWindow(parts, window);
  EXPECT_EQ(window, -1.0);
}

TEST_F(InstrumentAccess, UsesEveryOtherWindowUnchanged) {
  for (const double given : {0.0, 2.5, -2.0, -0.5, std::nextafter(-1.0, 0.0), 1e300}) {
    double window = given;
    ReplaceDefaultPeakFindWindow(parts, window);
    EXPECT_EQ(window, given);
  }
  EXPECT_THAT(journal.entries(), IsEmpty());
}

TEST_F(InstrumentAccess, MultipliesTheAbundanceBandByTheScaleFactor) {
  instrument.scale_factor = 0.25;
  EXPECT_EQ(AIC_TargetMaxAb(parts), 50000.0);
  EXPECT_EQ(AIC_TargetMinAb(parts), 25000.0);
  EXPECT_THAT(journal.entries(),
              ElementsAre("CalibSettings.GetValue(Calibration/AIC_TargetMaxAb,0)",
                          "AcqController.GetScaleFactor",
                          "CalibSettings.GetValue(Calibration/AIC_TargetMinAb,0)",
                          "AcqController.GetScaleFactor"));
  ExpectEachFailureRaised([&] { AIC_TargetMaxAb(parts); });
  ExpectEachFailureRaised([&] { AIC_TargetMinAb(parts); });
}

TEST_F(InstrumentAccess, RaisesAnOverflowForABandOfNothingTimesInfinity) {
  instrument.settings["Calibration/AIC_TargetMaxAb"] = 0.0;
  instrument.settings["Calibration/AIC_TargetMinAb"] = 0.0;
  instrument.scale_factor = std::numeric_limits<double>::infinity();
  EXPECT_EQ(ErrorNumberOf([&] { AIC_TargetMaxAb(parts); }), 6);
  EXPECT_EQ(ErrorNumberOf([&] { AIC_TargetMinAb(parts); }), 6);
}

TEST_F(InstrumentAccess, TakesAnAbsentAbundanceBandForZero) {
  instrument.settings.erase("Calibration/AIC_TargetMaxAb");
  EXPECT_EQ(AIC_TargetMaxAb(parts), 0.0);
}

TEST_F(InstrumentAccess, ReportsAnAbundanceBandBeyondTheNumbers) {
  instrument.settings["Calibration/AIC_TargetMaxAb"] = 1e300;
  instrument.scale_factor = 1e300;
  EXPECT_EQ(ErrorNumberOf([&] { AIC_TargetMaxAb(parts); }), 6);
}

class SettingsOfACalibration : public fakes::CalibrationFixture {};

TEST_F(SettingsOfACalibration, TakeAFlagInLowerCaseForNotSet) {
  instrument.flags["SkipTOFCalibrationDuringAutotunes"] = "yes";
  EXPECT_NE(Calibrate(), nullptr);
  instrument.flags["SkipTOFCalibrationDuringAutotunes"] = "Yes";
  EXPECT_EQ(Calibrate(), nullptr);
}

TEST_F(SettingsOfACalibration, LeaveAWindowOf10WithoutASetting) {
  instrument.settings.erase("PeakHandling/PeakFindWindowInPercentT");
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_EQ(optional.dPeakFindTimeWindow, 10.0);
  EXPECT_THAT(journal.entries(),
              ::testing::Contains("SpecParser.GetCalibrantPeakAttributes(10)").Times(4));
}

}  // namespace
}  // namespace tof
