// Where the traces and the lines of the AIC log of an abundance-immune acquisition stand between
// the calls to the instrument. What the lines say is tested elsewhere, except where it is traced.
#include "component/acquisition/first_spectrum_survey.h"
#include "component/acquisition/time_spanned_peak_times.h"
#include "tests/support/aic_fixture.h"
#include "tests/support/traced_calls.h"

namespace tof {
namespace {

using fakes::BandLimitRead;
using fakes::Between;
using fakes::Calls;
using fakes::Entered;
using fakes::FlagRead;
using fakes::InOrder;
using fakes::kSettled;
using fakes::Left;
using fakes::Repeated;
using fakes::SetpointRead;
using fakes::SettingRead;
using fakes::SpectrumTaken;
using ::testing::ElementsAreArray;
using ::testing::EndsWith;

const std::string kAcquisition = "GetTimeSpannedCalibrantPeakTimes";
const std::string kSurvey = "UseFirstSpectrumToFindTimesAndVoltages";
const std::string kPoints = "SetTheseVoltagesAndGetTimesAndAbundances";
const std::string kCollection = "CollectAdditionalPointsForPurposesOfAveraging_byMass";
const Calls kAborted = {"AcqController.IsAbortRequested"};

Calls SurveyTraced(const std::string& text) {
  return fakes::Traced(kSurvey, text);
}

class OrderOfAnAcquisition : public fakes::AicFixture {
 protected:
  OrderOfAnAcquisition() {
    instrument.settings["Calibration/AIC_RF_LowValue"] = 20.0;
    instrument.settings["Calibration/AIC_RF_HighValue"] = 22.0;
    instrument.settings["Calibration/AIC_RF_Step"] = 2.0;
    instrument.flags["ObfuscateCalibAlg"] = "1";
    data.measured_times.ReDim({0, 1}, {0, 2});
  }
  Variant Measure() {
    return GetTimeSpannedCalibrantPeakTimes(parts, host, 84, log, data, 2, window);
  }
  static Calls Traced(const std::string& text) { return fakes::Traced(kAcquisition, text); }
  static Calls DisplaySet(const std::string& live) {
    return {"DataDictionary.GetConfigObject", "SpectrumDisplay.SetDisplayUpdate(" + live + ")"};
  }

  double window = -1.0;
};

TEST_F(OrderOfAnAcquisition, FreezesSizesAndReadsTheMaximumBeforeTheSurvey) {
  Measure();
  EXPECT_THAT(Between(journal.entries(), Entered(kAcquisition)[0], Entered(kSurvey)[0]),
              ElementsAreArray(InOrder({Entered(kAcquisition),
                                        SetpointRead(84),
                                        SettingRead("Calibration/AIC_RF_HighValue"),
                                        SettingRead("Calibration/AIC_RF_LowValue"),
                                        SettingRead("Calibration/AIC_RF_Step"),
                                        SettingRead("PeakHandling/PeakFindWindowInPercentT"),
                                        Traced("dPeakFindTimeWindow = 0.5"),
                                        Logged(),
                                        FlagRead("ObfuscateCalibAlg"),
                                        DisplaySet("False"),
                                        Logged(),
                                        Entered("InitializeTimesArray"),
                                        Left("InitializeTimesArray"),
                                        BandLimitRead("AIC_TargetMaxAb"),
                                        Logged(),
                                        Entered("ReadAbundanceScalarsFromXML"),
                                        SetpointRead(117),
                                        {"DataDictionary.GetModeName"},
                                        {"AcqController.GetConfigurationName"},
                                        {"AcqController.GetCalibrantMasses(3,MS,Standard)"},
                                        Repeated(3, FlagRead("AIC_UseAbScalars")),
                                        Logged(),
                                        Left("ReadAbundanceScalarsFromXML"),
                                        BandLimitRead("AIC_TargetMaxAb"),
                                        Entered(kSurvey)})));
}

TEST_F(OrderOfAnAcquisition, ChoosesTheCollectionBehindTheSurvey) {
  Measure();
  EXPECT_THAT(Between(journal.entries(), Left(kSurvey)[0], Entered(kCollection)[0]),
              ElementsAreArray(InOrder({Left(kSurvey),
                                        FlagRead("AIC_MinimizeImpactOfDriftOnCalibPointCollection"),
                                        Entered(kCollection)})));
}

TEST_F(OrderOfAnAcquisition, CopiesAndPutsTheSetpointBackBeforeItAverages) {
  double first_copied = -1.0;
  const Calls setpoint_back = fakes::RfWritten("75");
  journal.abort_operation = setpoint_back.back();
  journal.request_abort = [&] { first_copied = data.measured_times(0, 0); };
  Measure();
  EXPECT_THAT(
      Between(journal.entries(), Left(kCollection)[0], Entered("AverageThePeakAttributes")[0]),
      ElementsAreArray(InOrder(
          {Left(kCollection), Logged(), setpoint_back, Entered("AverageThePeakAttributes")})));
  EXPECT_EQ(first_copied, 10300.0);
}

TEST_F(OrderOfAnAcquisition, TracesTheAnswerBehindTheDataSetAndUnfreezesLast) {
  Measure();
  EXPECT_THAT(Between(journal.entries(), Left("AverageThePeakAttributes")[0],
                      Entered("WriteDataToSpotFireLog")[0]),
              ElementsAreArray(
                  InOrder({Left("AverageThePeakAttributes"), Entered("WriteDataToSpotFireLog")})));
  EXPECT_THAT(Between(journal.entries(), Left("WriteDataToSpotFireLog")[0], Left(kAcquisition)[0]),
              ElementsAreArray(InOrder({Left("WriteDataToSpotFireLog"), Traced("1.2.3"),
                                        Traced("Saving varAveragedTimes[0, 2] to "
                                               "GetTimeSpannedCalibrantPeakTimes[0, 2]"),
                                        Traced("Successfully saved varAveragedTimes"),
                                        FlagRead("ObfuscateCalibAlg"), DisplaySet("True"), Logged(),
                                        Left(kAcquisition)})));
}

TEST_F(OrderOfAnAcquisition, LogsNoFreezeThatTheDisplayRefused) {
  journal.fail_operation = "SpectrumDisplay.SetDisplayUpdate(False)";
  EXPECT_TRUE(Measure().IsEmpty());
  EXPECT_EQ(Log(), "NumSteps calculated to be 1; ReDim(1)\r\n");
}

TEST_F(OrderOfAnAcquisition, LogsNoUnfreezeThatTheDisplayRefused) {
  journal.fail_operation = "SpectrumDisplay.SetDisplayUpdate(True)";
  EXPECT_TRUE(Measure().IsEmpty());
  EXPECT_THAT(Log(), EndsWith("AIC; writing file with Calibration data for Tune Report\r\n"));
}

TEST_F(OrderOfAnAcquisition, CountsTheMassesBehindTheFreezeAndBeforeItSizesForThem) {
  data.expected_masses = {};
  EXPECT_TRUE(Measure().IsEmpty());
  EXPECT_EQ(NumberOf(Entered("InitializeTimesArray")[0]), 0U);
  EXPECT_THAT(Log(), EndsWith("\r\nFreeze\r\n"));
}

// --- The survey.

class OrderOfASurvey : public fakes::AicFixture {
 protected:
  OrderOfASurvey() {
    instrument.settings["Calibration/AIC_SetpointToUse"] = 83.0;
    instrument.settings["Calibration/AIC_TargetMinAb"] = 100.0;
    instrument.settings["Calibration/AIC_TargetMaxAb"] = 200.0;
    instrument.settings["Calibration/AIC_SearchSpeedUpFactor"] = 1.5;
    instrument.abundance_at = [](double, double volts) { return 10.0 * volts - 50.0; };
    instrument.searched_rf_value = [](double) { return 25.125; };
    data.expected_masses = Variant::DoubleArray({400.0});
    SizeFor(2);
  }
  void Run(std::int32_t id) {
    const RfVoltage rf = Rf(id);
    UseFirstSpectrumToFindTimesAndVoltages({parts, host, rf, log, data},
                                           {.low = 20.0, .high = 22.0, .step = 2.0}, 200, window);
  }
  Calls CallsFrom(const std::string& first) const {
    return Between(journal.entries(), first, Left(kSurvey)[0]);
  }
  static Calls Written(const std::string& volts) { return fakes::RfWritten(volts, 83); }
  static Calls AbundanceRead(const std::string& tolerance) {
    return {"SpecParser.GetPeakAttribute(400," + tolerance + ")"};
  }
  // What both ways of searching begin with, for a mass of 700 counts at the value at entry.
  Calls Judged(const std::string& volts, const std::string& counts) const {
    return InOrder({{"AcqController.GetCurrentMassCalObject"},
                    kAborted,
                    Written(volts),
                    kSettled,
                    SurveyTraced("varCalibrantMasses(massIdx) = 400"),
                    AbundanceRead("0.4"),
                    SurveyTraced("SpecParser.GetPeakAttribute(PeakCalculationtype.abund, "
                                 "(varCalibrantMasses(massIdx)))[" +
                                 counts + "] > MaxAllowableAbundance[200]")});
  }
  // The lowering from 25.125 V, 201 counts, by one step; then the storing.
  Calls AdjustedAndStored() const {
    const Calls measured =
        InOrder({Entered("GetAveragedPeakAbundance"), Repeated(3, AbundanceRead("0.2")),
                 Left("GetAveragedPeakAbundance")});
    return InOrder({FlagRead("AIC_SkipFinalLinearAbAdj"), SetpointRead(83), measured,
                    SurveyTraced("starting SP Value[25.125], dMassAbundance[201]"), Logged(),
                    SurveyTraced("dMassAbundance = 201"), Logged(), Written("25.025"), kSettled,
                    measured, SurveyTraced("dMassAbundance[200] ==> New SP Value[25.025]"),
                    Logged(), Stored("25.025", "200")});
  }
  Calls Stored(const std::string& volts, const std::string& counts) const {
    const std::string pair = "[" + volts + ", " + counts + "]";
    return InOrder({SpectrumTaken("0.75"),
                    SurveyTraced("Final SPValue,Ab for MassIdx[ 0] = " + pair),
                    SurveyTraced("massIdx[0] SPValue,Ab = " + pair), BandJudged(), Left(kSurvey)});
  }

  double window = 0.75;
};

TEST_F(OrderOfASurvey, TracesTheWindowBehindItsReadingAndBeforeTheFlag) {
  window = -1.0;
  Run(84);
  EXPECT_THAT(
      Between(journal.entries(), Entered(kSurvey)[0], Entered(kPoints)[0]),
      ElementsAreArray(InOrder(
          {Entered(kSurvey), SetpointRead(84), SettingRead("PeakHandling/PeakFindWindowInPercentT"),
           SurveyTraced("dPeakFindTimeWindow = 0.5"), FlagRead("EnableAICAltSPPlugValues"),
           SettingRead("Calibration/AIC_LowQuadAMUStartValue"),
           SettingRead("Calibration/AIC_LowQuadAMUStopValue"), Entered(kPoints)})));
}

TEST_F(OrderOfASurvey, TracesEachStepOfARampBeforeItAndEachStoringBehindItsSpectrum) {
  instrument.abundance_at = [](double, double volts) { return 5.0 * volts; };
  instrument.settings["Calibration/AIC_SetpointToUse"] = 84.0;
  Run(84);
  const auto step = [](const std::string& step_and_volts, const std::string& volts,
                       const std::string& stored) {
    return InOrder({SurveyTraced("RampStepIdx, Voltage = " + step_and_volts), kAborted,
                    fakes::RfWritten(volts), kSettled, SpectrumTaken("0.75"),
                    SurveyTraced(stored + " mass at massIdx[0], time[20300] and abundance[" +
                                 std::to_string(5 * std::stoi(volts)) + "]")});
  };
  EXPECT_THAT(CallsFrom(Left(kPoints)[0]),
              ElementsAreArray(
                  InOrder({Left(kPoints), Logged(), SurveyTraced("Seeking target values..."),
                           step("0, 20", "20", "Storing"), step("1, 22", "22", "Storing BETTER"),
                           BandJudged(), Left(kSurvey)})));
}

TEST_F(OrderOfASurvey, SaysNotAdjustingBetweenTheReadingAndTheSetpoint) {
  instrument.setpoints[83] = 20.0;
  Run(83);
  EXPECT_THAT(
      CallsFrom("AcqController.GetCurrentMassCalObject"),
      ElementsAreArray(InOrder(
          {Judged("20", "150"), SurveyTraced("else"),
           SurveyTraced("Not Adjusting Ab: dMassAbundance[150] > MaxAllowableAbundance[200]"),
           SetpointRead(83), Stored("20", "150")})));
}

TEST_F(OrderOfASurvey, TracesTheParsersSearchBeforeItAndTheAdjustmentAroundItsSteps) {
  Run(83);
  EXPECT_THAT(CallsFrom("AcqController.GetCurrentMassCalObject"),
              ElementsAreArray(InOrder({Judged("75", "700"),
                                        FlagRead("AIC_RunFastVersion"),
                                        SurveyTraced("Binary Searching Targeted Abundance..."),
                                        {"SpecParser.SearchTargetAbundance(400,0.1)"},
                                        kAborted,
                                        AbundanceRead("0.2"),
                                        SetpointRead(83),
                                        AdjustedAndStored()})));
}

TEST_F(OrderOfASurvey, TracesWhatTheFirmwareFoundBetweenTheSettingAndTheSetpoint) {
  instrument.flags["AIC_RunFastVersion"] = "Yes";
  Run(83);
  EXPECT_THAT(
      CallsFrom("AcqController.GetCurrentMassCalObject"),
      ElementsAreArray(InOrder(
          {Judged("75", "700"),
           FlagRead("AIC_RunFastVersion"),
           SettingRead("Calibration/AIC_SearchSpeedUpFactor"),
           BandLimitRead("AIC_TargetMinAb"),
           BandLimitRead("AIC_TargetMaxAb"),
           {"MassCalCoefficients.MassToTime"},
           {"Create.FirmwareLibrary"},
           {"FirmwareLibrary.BinarySearchForTargetAb(22,100,200,1.5,0.1,20,160,1,20285,20315)"},
           SettingRead("Calibration/AIC_SetpointToUse"),
           SurveyTraced("BinarySearched; found Setpoint for mass[0] = 25.125"),
           Written("25.125"),
           kSettled,
           AbundanceRead("0.2"),
           AdjustedAndStored()})));
}

}  // namespace
}  // namespace tof
