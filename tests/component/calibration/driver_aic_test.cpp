#include "tests/component/calibration/driver_fixture.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::Driver;
using fakes::FlagRead;
using fakes::InOrder;
using fakes::SetpointRead;
using fakes::SettingRead;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::StartsWith;

struct AicCase {
  const char* name;
  const char* always;
  const char* flag_value;
  bool suppressed;
  bool avoided;
  bool runs;
};

class AicDecision : public Driver, public ::testing::WithParamInterface<AicCase> {};

TEST_P(AicDecision, IsTakenFromFlagsCallerAndParser) {
  instrument.flags["AIC_AlwaysRunOnly"] = GetParam().always;
  instrument.flags[instrument.flag_key] = GetParam().flag_value;
  suppress_aic = GetParam().suppressed;
  instrument.avoid_aic = GetParam().avoided;
  Calibrate();
  EXPECT_EQ(Traced(GetParam().runs ? "bEnableAbImmuneCalib[True]" : "bEnableAbImmuneCalib[False]"),
            1);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, AicDecision,
    ::testing::Values(AicCase{"Allowed", "", "No", false, false, true},
                      AicCase{"AllowedButSuppressed", "", "No", true, false, false},
                      AicCase{"AllowedButAvoided", "", "No", false, true, false},
                      AicCase{"NotAllowed", "", "Yes", false, false, false},
                      AicCase{"LowerCaseNoIsNotAllowed", "", "no", false, false, false},
                      AicCase{"AlwaysWinsOverAllOthers", "Yes", "Yes", true, true, true},
                      AicCase{"LowerCaseYesIsNotAlways", "yes", "Yes", false, false, false}),
    [](const auto& one) { return std::string(one.param.name); });

class DriverWithAic : public Driver {
 protected:
  DriverWithAic() {
    instrument.flags["AIC_AlwaysRunOnly"] = "Yes";
    instrument.flags[instrument.flag_key] = "No";
    instrument.flags["AICLoggingEnabled"] = "3000";
  }
  const std::string& Log(int n) {
    return host.files.at("D:\\Data\\Logfiles\\AIC_" + std::to_string(n) + ".TXT").bytes;
  }
};

TEST_F(DriverWithAic, RoundsTheSetpointToUseHalvesToEven) {
  instrument.settings["Calibration/AIC_SetpointToUse"] = 84.5;
  CalibrationState state;
  CalibrateWith(state);
  EXPECT_EQ(state.oct_rf_setpoint_id, 84);
}

TEST_F(DriverWithAic, OpensTheAicLogWithDateAndGainChannel) {
  Calibrate();
  EXPECT_THAT(Log(1), StartsWith("===AIC 20240229 at 13:05:09===\r\nGainChannel = 1\r\n"));
}

TEST_F(DriverWithAic, OpensTheAicLogBehindTheDecisionAndBeforeTheAbortTest) {
  host.trace->on = false;
  Calibrate();
  const auto& calls = journal.entries();
  const auto first = std::find(calls.begin(), calls.end(), "SpecParser.ShouldAvoidAIC(10)");
  const Calls expected =
      InOrder({SetpointRead(18), SetpointRead(149), SettingRead("Calibration/AIC_SetpointToUse"),
               FlagRead("AICLoggingEnabled"), SetpointRead(149), Calls{"Host.Now"},
               Calls{"Host.DateTimeText"}, Calls{"CalibLogFiles.OpenLogFile(AIC,TXT)"},
               Calls{"AcqController.IsAbortRequested"}});
  ASSERT_NE(first, calls.end());
  EXPECT_THAT(
      std::vector<std::string>(first + 1, first + 1 + static_cast<std::ptrdiff_t>(expected.size())),
      ElementsAreArray(expected));
}

TEST_F(DriverWithAic, OpensNoAicLogUnlessTheFlagIs3000) {
  instrument.flags["AICLoggingEnabled"] = "Yes";
  Calibrate();
  EXPECT_EQ(NumberOf("CalibLogFiles.OpenLogFile(AIC"), 0U);
}

TEST_F(DriverWithAic, LeavesTheAicLogOpenAfterAFailureForALaterTraditionalRun) {
  journal.fail_operation = "AcqController.IsAbortRequested";
  EXPECT_EQ(Calibrate(), nullptr);
  journal.fail_operation.clear();
  EXPECT_EQ(host.files.at("D:\\Data\\Logfiles\\AIC_1.TXT").open_streams, 1);
  instrument.flags["AIC_AlwaysRunOnly"] = "No";
  suppress_aic = true;
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_THAT(Log(1), HasSubstr("Averages (and times used for averaging)"));
  EXPECT_EQ(host.files.at("D:\\Data\\Logfiles\\AIC_1.TXT").open_streams, 1);
}

TEST_F(DriverWithAic, ClosesAnAicLogLeftOpenWhenItOpensTheNext) {
  journal.fail_operation = "AcqController.IsAbortRequested";
  Calibrate();
  Calibrate();
  EXPECT_EQ(host.files.at("D:\\Data\\Logfiles\\AIC_1.TXT").open_streams, 0);
  EXPECT_EQ(host.files.at("D:\\Data\\Logfiles\\AIC_2.TXT").open_streams, 1);
  EXPECT_EQ(NumberOf("TextStream.Close"), 0U);
}

TEST_F(DriverWithAic, WritesNoLineWhileTheFlagKeyIsNotNo) {
  journal.fail_operation = "AcqController.IsAbortRequested";
  Calibrate();
  journal.fail_operation.clear();
  const std::string header = Log(1);
  instrument.flags["AIC_AlwaysRunOnly"] = "";
  instrument.flags[instrument.flag_key] = "Yes";
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_EQ(Log(1), header);
}

TEST_F(DriverWithAic, CorrectsTheGainChannelAndPutsItBack) {
  instrument.setpoints[18] = std::int16_t{2};
  instrument.setpoints[149] = std::int16_t{3};
  Calibrate();
  EXPECT_THAT(
      journal.Only({"SetpointTable.SetSetpoint(149"}),
      ElementsAre("SetpointTable.SetSetpoint(149,2,1)", "SetpointTable.SetSetpoint(149,2,3)"));
}

// A ramp of three steps; every mass is in the band at each.
class WholeAicRun : public DriverWithAic {
 protected:
  WholeAicRun() {
    instrument.settings["Calibration/AIC_RF_LowValue"] = 20.0;
    instrument.settings["Calibration/AIC_RF_HighValue"] = 24.0;
    instrument.settings["Calibration/AIC_RF_Step"] = 2.0;
    n_spectra = 2;
  }
  double RfValue() const { return ToDouble(instrument.setpoints.at(84)); }
  int OpenStreamsOf(int n) {
    return host.files.at("D:\\Data\\Logfiles\\AIC_" + std::to_string(n) + ".TXT").open_streams;
  }
};

TEST_F(WholeAicRun, CalibratesFromTheTimesAtTheChosenVoltages) {
  ASSERT_NE(Calibrate(), nullptr);
  EXPECT_NEAR(instrument.in_force->record[0], instrument.true_a_per_ns, 1e-12);
  EXPECT_EQ(AsDoubleArray(times).size(), instrument.sample_masses.size());
  EXPECT_EQ(RfValue(), 75.0);
  EXPECT_THAT(events.events, ::testing::IsEmpty());
}

TEST_F(WholeAicRun, ClosesItsLogAndTellsTheInstrumentOfTheEndBehindTheDataLog) {
  Calibrate();
  EXPECT_THAT(
      journal.Only({"AcqController.SetCalibCoefficients", "AcqController.EndAIC",
                    "CalibLogFiles.OpenLogFile", "TextStream.Close(AIC",
                    "TextStream.Close(CalibrationData"}),
      ElementsAre("CalibLogFiles.OpenLogFile(AIC,TXT)", "AcqController.SetCalibCoefficients",
                  "CalibLogFiles.OpenLogFile(CalibrationData,TXT)",
                  "TextStream.Close(CalibrationData_2.TXT)", "TextStream.Close(AIC_1.TXT)",
                  "AcqController.EndAIC"));
  EXPECT_EQ(OpenStreamsOf(1), 0);
  const auto texts = DriverTexts();
  EXPECT_THAT(std::vector<std::string>(texts.end() - 4, texts.end()),
              ElementsAre("8", "9", "10", "11"));
}

TEST_F(WholeAicRun, TellsTheInstrumentOfTheEndWithoutALogToo) {
  instrument.flags["AICLoggingEnabled"] = "Yes";
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_EQ(instrument.aic_ends, 1);
  EXPECT_EQ(NumberOf("TextStream.Close(AIC"), 0U);
}

TEST_F(WholeAicRun, OpensALogOf3000ThatGetsNoLineWhileTheFlagKeyIsNotNo) {
  instrument.flags[instrument.flag_key] = "Yes";
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_EQ(Log(1), "===AIC 20240229 at 13:05:09===\r\nGainChannel = 1\r\n");
}

TEST_F(WholeAicRun, LeavesSetpointDisplayAndOpenLogAndTellsOfNoEndAfterAnAbort) {
  instrument.flags["ObfuscateCalibAlg"] = "1";
  instrument.on_spectrum = [&] {
    if (instrument.spectra_taken == 8) instrument.abort_requested = -1;
  };
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(std::pair(1, std::string("User aborted"))));
  EXPECT_EQ(RfValue(), 20.0);
  EXPECT_FALSE(instrument.display_live);
  EXPECT_EQ(OpenStreamsOf(1), 1);
  EXPECT_EQ(instrument.aic_ends, 0);
}

TEST_F(WholeAicRun, PutsBackWhatAnAbortLeftButTheSetpointWithTheNextSuccess) {
  instrument.flags["ObfuscateCalibAlg"] = "1";
  instrument.on_spectrum = [&] {
    if (instrument.spectra_taken == 8) instrument.abort_requested = -1;
  };
  EXPECT_EQ(Calibrate(), nullptr);
  instrument.on_spectrum = [] {};
  instrument.abort_requested = 0;
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_EQ(RfValue(), 20.0) << "the value that the second run found";
  EXPECT_TRUE(instrument.display_live);
  EXPECT_EQ(OpenStreamsOf(1), 0);
  EXPECT_EQ(instrument.aic_ends, 1);
}

TEST_F(WholeAicRun, ReportsAFaultOfTheAcquisitionAsTheMissingTimes) {
  instrument.settings["Calibration/AIC_RF_Step"] = 0.0;
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(std::pair(13, std::string("Type mismatch"))));
  EXPECT_EQ(instrument.aic_ends, 0);
}

TEST_F(WholeAicRun, MeasuresAnewForTheSecondFit) {
  instrument.bad_fits = {0.5};
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_EQ(NumberOf("Trace.Entry(GetTimeSpannedCalibrantPeakTimes"), 2U);
  EXPECT_EQ(instrument.aic_ends, 1);
  EXPECT_EQ(NumberOf("CalibLogFiles.OpenLogFile(AIC"), 1U);
}

TEST_F(WholeAicRun, EndsAicAfterTwoBadFitsInNoWay) {
  instrument.bad_fits = {0.5, 0.5};
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_EQ(instrument.aic_ends, 0);
  EXPECT_EQ(OpenStreamsOf(1), 1);
  EXPECT_EQ(RfValue(), 75.0) << "each acquisition had put it back";
}

TEST_F(WholeAicRun, LeavesTheAttributesForTheDataSetOfTheHost) {
  Calibrate();
  const std::string& data_set =
      host.files.at("D:\\Data\\Logfiles\\AbImmunecalib_SpotFireDataSetLog.csv").bytes;
  const std::string first = data_set;
  calibrator->WriteDataToSpotFireLog();
  EXPECT_EQ(std::count(data_set.begin(), data_set.end(), '\n'),
            2 * std::count(first.begin(), first.end(), '\n') - 1);
}

TEST_F(Driver, LeavesTheGainChannelAloneWithoutAic) {
  instrument.setpoints[18] = std::int16_t{2};
  instrument.setpoints[149] = std::int16_t{3};
  Calibrate();
  EXPECT_THAT(journal.Only({"SetpointTable.SetSetpoint(149"}),
              ElementsAre("SetpointTable.SetSetpoint(149,2,3)"));
}

}  // namespace
}  // namespace tof
