// The AIC log at the end of a calibration.
#include "component/automation/convert.h"
#include "tests/component/calibration/driver_fixture.h"

namespace tof {
namespace {

using fakes::Driver;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

// A ramp of three steps; every mass is in the band at each.
class EndOfTheAicLog : public Driver {
 protected:
  EndOfTheAicLog() {
    instrument.flags["AIC_AlwaysRunOnly"] = "Yes";
    instrument.flags[instrument.flag_key] = "No";
    instrument.flags["AICLoggingEnabled"] = "3000";
    instrument.settings["Calibration/AIC_RF_LowValue"] = 20.0;
    instrument.settings["Calibration/AIC_RF_HighValue"] = 24.0;
    instrument.settings["Calibration/AIC_RF_Step"] = 2.0;
    n_spectra = 2;
  }
  const std::string& Log() { return host.files.at("D:\\Data\\Logfiles\\AIC_1.TXT").bytes; }

  CalibrationState state_;
};

TEST_F(EndOfTheAicLog, LeavesNoStreamBehind) {
  ASSERT_NE(CalibrateWith(state_), nullptr);
  EXPECT_EQ(state_.aic_log.stream, nullptr);
  EXPECT_EQ(NumberOf("TextStream.Close(AIC_1.TXT)"), 1U);
}

TEST_F(EndOfTheAicLog, LeavesNothingForALaterTraditionalRunToWriteTo) {
  ASSERT_NE(CalibrateWith(state_), nullptr);
  const std::string written = Log();
  instrument.flags["AIC_AlwaysRunOnly"] = "";
  suppress_aic = true;
  ASSERT_NE(CalibrateWith(state_), nullptr);
  EXPECT_EQ(Log(), written);
  EXPECT_THAT(events.events, IsEmpty());
}

TEST_F(EndOfTheAicLog, IsAnErrorWhenLoggingWasSwitchedOnDuringTheRun) {
  instrument.flags["AICLoggingEnabled"] = "No";
  instrument.on_spectrum = [&] { instrument.flags["AICLoggingEnabled"] = "3000"; };
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events,
              ElementsAre(Pair(91, "Object variable or With block variable not set")));
  EXPECT_EQ(Traced("10"), 1);
  EXPECT_EQ(Traced("11"), 0);
  EXPECT_EQ(instrument.aic_ends, 0);
  EXPECT_NEAR(instrument.in_force->record[0], instrument.true_a_per_ns, 1e-12)
      << "the fit was in force before";
}

TEST_F(EndOfTheAicLog, IsSkippedWhenLoggingWasSwitchedOffDuringTheRun) {
  instrument.on_spectrum = [&] { instrument.flags["AICLoggingEnabled"] = "No"; };
  ASSERT_NE(CalibrateWith(state_), nullptr);
  EXPECT_NE(state_.aic_log.stream, nullptr);
  EXPECT_EQ(NumberOf("TextStream.Close(AIC_1.TXT)"), 0U);
  EXPECT_EQ(instrument.aic_ends, 1);
}

}  // namespace
}  // namespace tof
