#include "component/acquisition/per_mass_search.h"

#include <cmath>
#include <limits>

#include "tests/component/error_number_of.h"
#include "tests/support/aic_fixture.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::BandLimitRead;
using fakes::Calls;
using fakes::FlagRead;
using fakes::InOrder;
using fakes::Repeated;
using fakes::SetpointRead;
using fakes::SettingRead;
using fakes::SpectrumTaken;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::Not;

const std::string kSurvey = "UseFirstSpectrumToFindTimesAndVoltages";

Calls RfWritten(const std::string& volts) {
  return fakes::RfWritten(volts, 83);
}

Calls AbundanceRead(const std::string& mass, const std::string& tolerance) {
  return {"SpecParser.GetPeakAttribute(" + mass + "," + tolerance + ")"};
}

// Through the survey, of which the search is a part. The band is 100 to 200. At 75 V, the value at
// entry, mass 0 lies in it, mass 1 above and mass 2 below; mass 1 gains 10 counts a volt.
class PerMassSearching : public fakes::AicFixture {
 protected:
  PerMassSearching() {
    instrument.settings["Calibration/AIC_SetpointToUse"] = 83.0;
    instrument.settings["Calibration/AIC_TargetMinAb"] = 100.0;
    instrument.settings["Calibration/AIC_TargetMaxAb"] = 200.0;
    instrument.settings["Calibration/AIC_SearchSpeedUpFactor"] = 1.5;
    instrument.abundance_at = [this](double mass, double volts) { return abundance(mass, volts); };
    instrument.searched_rf_value = [this](double) { return found; };
  }
  void Run() {
    const RfVoltage rf = Rf(83);
    const RfRange range{.low = low, .high = 160.0, .step = 2.0};
    UseFirstSpectrumToFindTimesAndVoltages({parts, host, rf, log, data}, range, 200, window);
  }
  void OnlyMass1() {
    data.expected_masses = Variant::DoubleArray({400.0});
    SizeFor(2);
    journal.Clear();
  }
  void Skip() { instrument.flags["AIC_SkipFinalLinearAbAdj"] = "Yes"; }
  void Fast() { instrument.flags["AIC_RunFastVersion"] = "Yes"; }
  // The calls behind those that begin every survey.
  Calls CallsOfTheSearch() const {
    const Calls calls = CallsMade();
    const auto begin =
        std::find(calls.begin(), calls.end(), "AcqController.GetCurrentMassCalObject");
    return {begin, calls.end()};
  }
  Calls BeforeAMass() const {
    return InOrder({{"AcqController.IsAbortRequested"}, RfWritten("75"), fakes::kSettled});
  }

  std::function<double(double, double)> abundance = [](double mass, double volts) {
    if (mass == 100.0) return 150.0;
    return mass == 400.0 ? 10.0 * volts - 50.0 : 50.0;
  };
  double found = 20.0;  // where both searches put the setpoint
  double low = 10.0;
  double window = 0.75;
};

TEST_F(PerMassSearching, JudgesEachMassAtTheValueAtEntryAndStoresIt) {
  data.expected_masses = Variant::DoubleArray({100.0, 900.0});
  SizeFor(2);
  journal.Clear();
  Run();
  const auto not_searched = [this](const std::string& mass) {
    return InOrder({BeforeAMass(), AbundanceRead(mass, "0.4"), SetpointRead(83),
                    SpectrumTaken("0.75"), BandJudged()});
  };
  EXPECT_THAT(CallsOfTheSearch(),
              ElementsAreArray(InOrder({{"AcqController.GetCurrentMassCalObject"},
                                        not_searched("100"),
                                        not_searched("900"),
                                        Logged()})));
  EXPECT_THAT(ChosenVoltages(), ElementsAre(75.0, 75.0));
  EXPECT_THAT(ChosenAbundances(), ElementsAre(150, 50));
}

TEST_F(PerMassSearching, SaysNotAdjustingForAMassThatIsNotAboveTheMaximum) {
  data.expected_masses = Variant::DoubleArray({100.0});
  SizeFor(1);
  Run();
  EXPECT_THAT(
      TextsOf(kSurvey),
      ElementsAre("dPeakFindTimeWindow = 0.75", "varCalibrantMasses(massIdx) = 100",
                  "SpecParser.GetPeakAttribute(PeakCalculationtype.abund, "
                  "(varCalibrantMasses(massIdx)))[150] > MaxAllowableAbundance[200]",
                  "else", "Not Adjusting Ab: dMassAbundance[150] > MaxAllowableAbundance[200]",
                  "Final SPValue,Ab for MassIdx[ 0] = [75, 150]",
                  "massIdx[0] SPValue,Ab = [75, 150]"));
  EXPECT_EQ(Log(), "");
}

TEST_F(PerMassSearching, SearchesOnlyAboveTheMaximumNotAtIt) {
  OnlyMass1();
  Skip();
  abundance = [](double, double volts) { return volts == 75.0 ? 200.0 : 150.0; };
  Run();
  EXPECT_EQ(NumberOf("SpecParser.SearchTargetAbundance"), 0U);
  abundance = [](double, double volts) { return volts == 75.0 ? 200.25 : 150.0; };
  Run();
  EXPECT_EQ(NumberOf("SpecParser.SearchTargetAbundance"), 1U);
}

TEST_F(PerMassSearching, ListsTheMassesThatStayOutsideTheBandInTheAicLog) {
  Skip();
  found = 30.0;
  Run();
  EXPECT_THAT(ChosenAbundances(), ElementsAre(150, 250, 50));
  EXPECT_EQ(Log(),
            "mass[1] stays above the maximum, [voltage,ab]=[30, 250]\r\n"
            "mass[2] stays below the minimum, [voltage,ab]=[75, 50]\r\n");
}

TEST_F(PerMassSearching, StoresTheAttributesOfOneSpectrumAtTheFinalSetpoint) {
  instrument.spectrum_shift_ns = {0.25, 0.5, 0.75};
  std::vector<double> volts;
  instrument.on_spectrum = [&] { volts.push_back(RfValue(83)); };
  Skip();
  Run();
  EXPECT_THAT(volts, ElementsAre(75.0, 20.0, 75.0));
  EXPECT_EQ(data.peaks(0).SpectrumAttribs(0, 0).time, 10300.25);
  EXPECT_EQ(data.peaks(1).SpectrumAttribs(0, 0).time, 20300.5);
  EXPECT_EQ(data.peaks(2).SpectrumAttribs(0, 0).time, 30300.75);
  EXPECT_EQ(data.peaks(1).SpectrumAttribs(0, 1).abundance, 1000150.0) << "that of row 1";
  EXPECT_EQ(data.peaks(1).SpectrumAttribs(1, 0), PeakAttribs{});
}

// --- By the spectrum parser.

TEST_F(PerMassSearching, LetsTheParserSearchAndSkipsTheAdjustmentOnItsFlag) {
  OnlyMass1();
  Skip();
  Run();
  EXPECT_THAT(CallsOfTheSearch(),
              ElementsAreArray(InOrder({{"AcqController.GetCurrentMassCalObject"},
                                        BeforeAMass(),
                                        AbundanceRead("400", "0.4"),
                                        FlagRead("AIC_RunFastVersion"),
                                        {"SpecParser.SearchTargetAbundance(400,0.1)"},
                                        {"AcqController.IsAbortRequested"},
                                        AbundanceRead("400", "0.2"),
                                        SetpointRead(83),
                                        FlagRead("AIC_SkipFinalLinearAbAdj"),
                                        SpectrumTaken("0.75"),
                                        BandJudged()})));
  EXPECT_THAT(ChosenVoltages(), ElementsAre(20.0));
  EXPECT_THAT(ChosenAbundances(), ElementsAre(150));
}

TEST_F(PerMassSearching, TracesTheParsersSearch) {
  OnlyMass1();
  Skip();
  Run();
  EXPECT_THAT(TextsOf(kSurvey),
              ElementsAre("dPeakFindTimeWindow = 0.75", "varCalibrantMasses(massIdx) = 400",
                          "SpecParser.GetPeakAttribute(PeakCalculationtype.abund, "
                          "(varCalibrantMasses(massIdx)))[700] > MaxAllowableAbundance[200]",
                          "Binary Searching Targeted Abundance...",
                          "Final SPValue,Ab for MassIdx[ 0] = [20, 150]",
                          "massIdx[0] SPValue,Ab = [20, 150]"));
}

TEST_F(PerMassSearching, NeedsNoCoefficientsObjectWithoutTheFirmware) {
  instrument.has_mass_cal_object = false;
  Run();
  EXPECT_EQ(NumberOf("SpecParser.SearchTargetAbundance"), 1U);
  EXPECT_THAT(ChosenVoltages(), ElementsAre(75.0, 20.0, 75.0));
  Fast();
  EXPECT_EQ(ErrorNumberOf([&] { Run(); }), 91);
}

TEST_F(PerMassSearching, HearsOfAnAbortBehindTheParsersSearch) {
  journal.request_abort = [&] { instrument.abort_requested = 1; };
  journal.abort_operation = "SpecParser.SearchTargetAbundance";
  EXPECT_EQ(ErrorNumberOf([&] { Run(); }), 1);
  EXPECT_EQ(LastTrace(), "error[1] in " + kSurvey + "(): User aborted");
  EXPECT_THAT(ChosenAbundances(), ElementsAre(150, 0, 0)) << "what was stored before stays";
  EXPECT_EQ(RfValue(83), 20.0) << "the setpoint stays where the search put it";
}

// --- By the firmware.

TEST_F(PerMassSearching, CallsTheFirmwareWithItsTenArguments) {
  OnlyMass1();
  Skip();
  Fast();
  found = 20.5;
  Run();
  EXPECT_THAT(
      CallsOfTheSearch(),
      ElementsAreArray(InOrder(
          {{"AcqController.GetCurrentMassCalObject"},
           BeforeAMass(),
           AbundanceRead("400", "0.4"),
           FlagRead("AIC_RunFastVersion"),
           SettingRead("Calibration/AIC_SearchSpeedUpFactor"),
           BandLimitRead("AIC_TargetMinAb"),
           BandLimitRead("AIC_TargetMaxAb"),
           {"MassCalCoefficients.MassToTime"},
           {"Create.FirmwareLibrary"},
           {"FirmwareLibrary.BinarySearchForTargetAb(22,100,200,1.5,0.1,20,160,1,20285,20315)"},
           SettingRead("Calibration/AIC_SetpointToUse"),
           RfWritten("20.5"),
           fakes::kSettled,
           AbundanceRead("400", "0.2"),
           FlagRead("AIC_SkipFinalLinearAbAdj"),
           SpectrumTaken("0.75"),
           BandJudged()})));
  EXPECT_THAT(ChosenVoltages(), ElementsAre(20.5));
  EXPECT_THAT(ChosenAbundances(), ElementsAre(155));
}

TEST_F(PerMassSearching, TracesTheFirmwaresSearch) {
  data.expected_masses = Variant::DoubleArray({100.0, 400.0});
  SizeFor(1);
  Skip();
  Fast();
  Run();
  EXPECT_THAT(TextsOf(kSurvey), Contains("BinarySearched; found Setpoint for mass[1] = 20"));
  EXPECT_THAT(TextsOf(kSurvey), Not(Contains("Binary Searching Targeted Abundance...")));
}

TEST_F(PerMassSearching, WidensTheSingleThatTheFirmwareFound) {
  OnlyMass1();
  Skip();
  Fast();
  found = 20.1;
  Run();
  EXPECT_EQ(data.peaks(0).Voltage, double{20.1F});
  EXPECT_NE(data.peaks(0).Voltage, 20.1);
  EXPECT_THAT(TextsOf(kSurvey),
              Contains("BinarySearched; found Setpoint for mass[0] = 20.1000003814697"));
}

TEST_F(PerMassSearching, ScalesTheBandForTheFirmwareByTheController) {
  OnlyMass1();
  Skip();
  Fast();
  instrument.scale_factor = 0.5;
  Run();
  EXPECT_EQ(NumberOf("FirmwareLibrary.BinarySearchForTargetAb(22,50,100,1.5,"), 1U);
}

TEST_F(PerMassSearching, TakesTheExpectedTimeFromTheCurrentCoefficients) {
  OnlyMass1();
  Skip();
  Fast();
  instrument.in_force->record[1] = 310.0;
  Run();
  EXPECT_EQ(NumberOf("FirmwareLibrary.BinarySearchForTargetAb(22,100,200,1.5,0.1,20,160,1,20295,"
                     "20325)"),
            1U);
}

TEST_F(PerMassSearching, AppliesTheFirmwaresValueToTheSetpointThatTheSettingNamesThen) {
  OnlyMass1();
  Skip();
  Fast();
  instrument.settings["Calibration/AIC_SetpointToUse"] = 84.5;
  instrument.abundance_at = {};
  instrument.abundance = 300.0;
  Run();
  EXPECT_EQ(RfValue(84), 20.0);
  EXPECT_EQ(RfValue(83), 75.0);
  EXPECT_EQ(data.peaks(0).Voltage, 20.0);
}

TEST_F(PerMassSearching, NeedsTheFlagsToBeExactlyYes) {
  OnlyMass1();
  for (const char* other : {"yes", "", "1", "Yes "}) {
    instrument.setpoints[83] = 75.0;
    instrument.flags["AIC_RunFastVersion"] = other;
    instrument.flags["AIC_SkipFinalLinearAbAdj"] = other;
    journal.Clear();
    Run();
    EXPECT_EQ(NumberOf("FirmwareLibrary."), 0U) << other;
    EXPECT_EQ(NumberOf("Trace.Entry(GetAveragedPeakAbundance"), 1U) << other;
  }
}

TEST_F(PerMassSearching, HearsOfAnAbortBehindTheFirmwaresSearch) {
  Fast();
  journal.request_abort = [&] { instrument.abort_requested = -1; };
  journal.abort_operation = "FirmwareLibrary.";
  EXPECT_EQ(ErrorNumberOf([&] { Run(); }), 1);
  EXPECT_EQ(RfValue(83), 20.0);
}

// --- The linear adjustment.

class LinearAdjustment : public PerMassSearching {
 protected:
  LinearAdjustment() {
    OnlyMass1();
    found = 25.25;  // 202.5 counts
  }
};

TEST_F(LinearAdjustment, LowersTheSetpointUntilTheAbundanceIsInTheBand) {
  Run();
  const Calls measured = Repeated(3, AbundanceRead("400", "0.2"));
  const auto step = [&](const std::string& volts) {
    return InOrder({Logged(), RfWritten(volts), fakes::kSettled, measured, Logged()});
  };
  const Calls calls = CallsOfTheSearch();
  const auto flag = std::find(calls.begin(), calls.end(), FlagRead("AIC_SkipFinalLinearAbAdj")[0]);
  ASSERT_NE(flag, calls.end());
  EXPECT_THAT(Calls(flag + 1, calls.end()),
              ElementsAreArray(InOrder({SetpointRead(83), measured, Logged(), step("25.15"),
                                        step("25.05"), SpectrumTaken("0.75"), BandJudged()})));
  EXPECT_EQ(data.peaks(0).Abundance, 200);
  EXPECT_EQ(data.peaks(0).Voltage, 25.25 - 0.1 - 0.1);
}

TEST_F(LinearAdjustment, TracesAndLogsEveryStep) {
  Run();
  const std::vector<std::string> lines = {
      "starting SP Value[25.25], dMassAbundance[202]", "dMassAbundance = 202",
      "dMassAbundance[202] ==> New SP Value[25.15]", "dMassAbundance = 202",
      "dMassAbundance[200] ==> New SP Value[25.05]"};
  std::string logged;
  for (const std::string& line : lines) logged += line + "\r\n";
  EXPECT_EQ(Log(), logged);
  const std::vector<std::string> texts = TextsOf(kSurvey);
  ASSERT_EQ(texts.size(), 4 + lines.size() + 2);
  EXPECT_THAT(std::vector<std::string>(texts.begin() + 4, texts.end() - 2),
              ElementsAreArray(lines));
  EXPECT_EQ(texts.back(), "massIdx[0] SPValue,Ab = [25.05, 200]");
}

TEST_F(LinearAdjustment, MeasuresAMassInTheBandOnceAndMovesNothing) {
  found = 25.0;
  Run();
  EXPECT_EQ(Log(), "starting SP Value[25], dMassAbundance[200]\r\n");
  EXPECT_EQ(data.peaks(0).Voltage, 25.0);
  EXPECT_EQ(journal.Only({"SetpointTable.SetSetpoint"}).size(), 1U);
}

TEST_F(LinearAdjustment, FollowsTheFirmwaresSearchToo) {
  Fast();
  Run();
  EXPECT_THAT(Log(), HasSubstr("New SP Value[25.05]"));
  EXPECT_EQ(data.peaks(0).Abundance, 200);
}

TEST_F(LinearAdjustment, EndsBehindTheFirstMeasurementBelowTheLowerLimit) {
  abundance = [](double, double) { return 300.0; };
  low = 25.0;
  Run();
  EXPECT_EQ(Log(),
            "starting SP Value[25.25], dMassAbundance[300]\r\n"
            "dMassAbundance = 300\r\n"
            "dMassAbundance[300] ==> New SP Value[25.15]\r\n"
            "dMassAbundance = 300\r\n"
            "dMassAbundance[300] ==> New SP Value[25.05]\r\n"
            "dMassAbundance = 300\r\n"
            "dMassAbundance[300] ==> New SP Value[24.95]\r\n"
            "mass[0] stays above the maximum, [voltage,ab]=[24.95, 300]\r\n");
}

TEST_F(LinearAdjustment, GoesOnAtALimitThatIsReachedExactly) {
  abundance = [](double, double) { return 300.0; };
  found = 25.0;
  low = 25.0;
  Run();
  EXPECT_EQ(data.peaks(0).Voltage, 25.0 - 0.1);
}

TEST_F(LinearAdjustment, TakesNoStepFromBelowTheLowerLimit) {
  low = 30.0;
  Run();
  EXPECT_EQ(Log(),
            "starting SP Value[25.25], dMassAbundance[202]\r\n"
            "mass[0] stays above the maximum, [voltage,ab]=[25.25, 202]\r\n");
}

TEST_F(LinearAdjustment, TakesNoStepToALimitThatIsNoNumber) {
  low = std::numeric_limits<double>::quiet_NaN();
  Run();
  EXPECT_EQ(data.peaks(0).Voltage, 25.25);
}

TEST_F(LinearAdjustment, IsAnOverflowWhenItNeverReachesItsLimit) {
  journal.keep_entries = false;
  log.stream = nullptr;
  abundance = [](double, double) { return 300.0; };
  low = -std::numeric_limits<double>::infinity();
  EXPECT_EQ(ErrorNumberOf([&] { Run(); }), 6);
  EXPECT_EQ(LastTrace(), "error[6] in " + kSurvey + "(): Overflow");
  EXPECT_NEAR(RfValue(83), 25.25 - 3276.7, 1e-6);
}

TEST_F(LinearAdjustment, EndsWithAnAbortInItsWait) {
  host.on_messages = [&] {
    if (RfValue(83) < 25.2 && RfValue(83) > 25.1) instrument.abort_requested = -1;
  };
  EXPECT_EQ(ErrorNumberOf([&] { Run(); }), 1);
  EXPECT_EQ(RfValue(83), 25.15);
  EXPECT_EQ(data.peaks(0).Voltage, 0.0);
}

// --- Failures.

TEST_F(PerMassSearching, EndsWithAnAbortBeforeAMass) {
  parts.settling_time_sec = 0.0;
  instrument.on_spectrum = [&] { instrument.abort_requested = 1; };
  EXPECT_EQ(ErrorNumberOf([&] { Run(); }), 1);
  EXPECT_THAT(ChosenAbundances(), ElementsAre(150, 0, 0));
  EXPECT_EQ(NumberOf("SpecParser.GetPeakAttribute"), 1U);
}

TEST_F(PerMassSearching, NeedsNoScalars) {
  data.ab_scalars = {};
  Run();
  EXPECT_THAT(ChosenAbundances(), ElementsAre(150, 150, 50));
}

TEST_F(PerMassSearching, RefusesAnAbundanceThatIsNoWholeNumberOf32Bits) {
  for (const double reading : {3e9, std::numeric_limits<double>::infinity(),
                               std::numeric_limits<double>::quiet_NaN(), -3e9}) {
    Skip();
    OnlyMass1();
    abundance = [&](double, double) { return reading; };
    EXPECT_EQ(ErrorNumberOf([&] { Run(); }), 6) << reading;
    EXPECT_EQ(data.peaks(0).Voltage, 0.0) << "nothing but the attributes is stored";
  }
}

TEST_F(PerMassSearching, RefusesWhatTheFirmwareCannotBeGiven) {
  Fast();
  instrument.settings["Calibration/AIC_SearchSpeedUpFactor"] = 1e300;
  EXPECT_EQ(ErrorNumberOf([&] { Run(); }), 6);
  EXPECT_EQ(NumberOf("FirmwareLibrary."), 0U);
}

TEST_F(PerMassSearching, TracesAndPassesOnEveryFailureInEveryWay) {
  for (const char* fast : {"No", "Yes"}) {
    instrument.flags["AIC_RunFastVersion"] = fast;
    found = 25.25;
    std::int32_t raised = 0;
    fakes::FailEachCall(
        journal, [&] { instrument.setpoints[83] = 75.0; },
        [&] { raised = ErrorNumberOf([&] { Run(); }); },
        [&](const std::string& failed) {
          if (failed.rfind("Trace.Exit", 0) == 0) return;
          EXPECT_EQ(raised, fakes::kInjectedNumber);
          EXPECT_EQ(LastTrace(), "error[4711] in " + kSurvey + "(): Injected fault");
        });
  }
}

}  // namespace
}  // namespace tof
