#include "component/acquisition/voltage_ramp.h"

#include <cmath>
#include <map>

#include "tests/component/error_number_of.h"
#include "tests/support/aic_fixture.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::FlagRead;
using fakes::InOrder;
using fakes::RfWritten;
using fakes::SpectrumTaken;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsSupersetOf;
using ::testing::Not;

const std::string kSurvey = "UseFirstSpectrumToFindTimesAndVoltages";

// Through the survey, of which the ramp is a part. Steps at 20, 22 and 24 V.
class VoltageRamp : public fakes::AicFixture {
 protected:
  VoltageRamp() {
    instrument.settings["Calibration/AIC_TargetMinAb"] = 100.0;
    instrument.settings["Calibration/AIC_TargetMaxAb"] = 200.0;
    instrument.abundance_at = [this](double mass, double volts) { return of[mass][volts]; };
  }
  void Run() {
    const RfVoltage rf = Rf();
    UseFirstSpectrumToFindTimesAndVoltages({parts, host, rf, log, data}, range, maximum, window);
  }
  // What the walk said of the masses.
  std::vector<std::string> Stored() const {
    std::vector<std::string> lines;
    for (const std::string& text : TextsOf(kSurvey)) {
      if (text.rfind("Storing", 0) == 0) lines.push_back(text);
    }
    return lines;
  }
  Calls VoltagesSet() const { return journal.Only({"SetpointTable.SetSetpoint"}); }

  RfRange range{.low = 20.0, .high = 24.0, .step = 2.0};
  std::int32_t maximum = 200;
  double window = 0.75;
  std::map<double, std::map<double, double>> of = {
      {100.0, {{20.0, 120.0}, {22.0, 180.0}, {24.0, 150.0}}},
      {400.0, {{20.0, 300.0}, {22.0, 190.0}, {24.0, 199.0}}},
      {900.0, {{20.0, 110.0}, {22.0, 250.0}, {24.0, 260.0}}}};
};

TEST_F(VoltageRamp, SurveysForTheLogThenWalksWithTheCallersWindow) {
  Run();
  const auto surveyed = [this](const std::string& volts) {
    return InOrder({FlagRead("ObfuscateCalibAlg"), RfWritten(volts), fakes::kSettled,
                    SpectrumTaken("-1"), Logged()});
  };
  const auto walked = [](const std::string& volts) {
    return InOrder({{"AcqController.IsAbortRequested"},
                    RfWritten(volts),
                    fakes::kSettled,
                    SpectrumTaken("0.75")});
  };
  EXPECT_THAT(
      CallsMade(),
      ElementsAreArray(InOrder({fakes::SetpointRead(84), FlagRead("EnableAICAltSPPlugValues"),
                                fakes::SettingRead("Calibration/AIC_LowQuadAMUStartValue"),
                                fakes::SettingRead("Calibration/AIC_LowQuadAMUStopValue"), Logged(),
                                FlagRead("ObfuscateCalibAlg"), Logged(2), surveyed("20"),
                                surveyed("22"), surveyed("24"), Logged(), walked("20"),
                                walked("22"), walked("24"), fakes::Repeated(3, BandJudged())})));
}

TEST_F(VoltageRamp, TracesStepsAndWhatItStores) {
  Run();
  EXPECT_THAT(TextsOf(kSurvey),
              ElementsAre("dPeakFindTimeWindow = 0.75", "Seeking target values...",
                          "RampStepIdx, Voltage = 0, 20",
                          "Storing mass at massIdx[0], time[10300] and abundance[120]",
                          "Storing mass at massIdx[2], time[30300] and abundance[110]",
                          "RampStepIdx, Voltage = 1, 22",
                          "Storing BETTER mass at massIdx[0], time[10300] and abundance[180]",
                          "Storing mass at massIdx[1], time[20300] and abundance[190]",
                          "RampStepIdx, Voltage = 2, 24",
                          "Storing BETTER mass at massIdx[1], time[20300] and abundance[199]"));
}

TEST_F(VoltageRamp, LogsTheSurveyAndAnEmptyLineBehindIt) {
  Run();
  EXPECT_EQ(Log(),
            "\r\n"
            "\r\n"
            "Survey: Voltage, [Time, Abundance]s \r\n"
            "20, [10300, 120], [20300, 300], [30300, 110]\r\n"
            "22, [10300, 180], [20300, 190], [30300, 250]\r\n"
            "24, [10300, 150], [20300, 199], [30300, 260]\r\n"
            "\r\n");
}

TEST_F(VoltageRamp, KeepsTheHighestAbundanceBelowTheMaximumOfEachMass) {
  Run();
  EXPECT_THAT(ChosenVoltages(), ElementsAre(22.0, 24.0, 20.0));
  EXPECT_THAT(ChosenAbundances(), ElementsAre(180, 199, 110));
  EXPECT_EQ(RfValue(), 24.0);
}

TEST_F(VoltageRamp, StoresTheAttributesOfTheChosenStepAsMeasurementZero) {
  instrument.spectrum_shift_ns = {0.0, 0.0, 0.0, 0.25, 0.5, 0.75};
  Run();
  EXPECT_EQ(data.peaks(0).SpectrumAttribs(0, 0).time, 10300.5);
  EXPECT_EQ(data.peaks(1).SpectrumAttribs(0, 0).time, 20300.75);
  EXPECT_EQ(data.peaks(2).SpectrumAttribs(0, 0).time, 30300.25);
  EXPECT_EQ(data.peaks(0).SpectrumAttribs(0, 0).abundance, 0.0);  // the field is not kept
  EXPECT_EQ(data.peaks(0).SpectrumAttribs(0, 1).abundance, 1000180.0) << "that of row 1";
  EXPECT_EQ(data.peaks(0).SpectrumAttribs(1, 0), PeakAttribs{});
}

// The survey before it is for the log alone.
TEST_F(VoltageRamp, ChoosesByTheWalkNotByTheSurvey) {
  of[100.0] = {{20.0, 120.0}, {22.0, 180.0}, {24.0, 150.0}};
  instrument.on_spectrum = [&] {
    if (instrument.spectra_taken == 3) of[100.0] = {{20.0, 190.0}, {22.0, 180.0}, {24.0, 150.0}};
  };
  Run();
  EXPECT_THAT(Log(), HasSubstr("20, [10300, 120]"));
  EXPECT_EQ(data.peaks(0).Voltage, 20.0);
  EXPECT_EQ(data.peaks(0).Abundance, 190);
}

TEST_F(VoltageRamp, ComparesStrictlyBothTimes) {
  of[100.0] = {{20.0, 200.0}, {22.0, 150.0}, {24.0, 150.0}};
  Run();
  EXPECT_EQ(data.peaks(0).Voltage, 22.0) << "a reading at the maximum is not eligible, an equal "
                                            "one not better";
  of[100.0] = {{20.0, 199.0}, {22.0, 150.0}, {24.0, 150.0}};
  Run();
  EXPECT_EQ(data.peaks(0).Voltage, 20.0);
}

// Halves to even before they are compared and stored.
TEST_F(VoltageRamp, JudgesRoundedAbundances) {
  of[100.0] = {{20.0, 199.5}, {22.0, 198.5}, {24.0, 197.6}};
  Run();
  EXPECT_EQ(data.peaks(0).Voltage, 22.0);
  EXPECT_EQ(data.peaks(0).Abundance, 198);
}

TEST_F(VoltageRamp, ScalesTheMaximumAndALaterReadingButNotTheStoredOne) {
  data.ab_scalars = BoundedArray<double>{0.5, 2.0, 1.0};
  of[100.0] = {{20.0, 100.0}, {22.0, 40.0}, {24.0, 80.0}};    // below 100; 80 x 0.5 is not above 40
  of[400.0] = {{20.0, 399.0}, {22.0, 200.0}, {24.0, 400.0}};  // below 400; 200 x 2 is above 399
  Run();
  EXPECT_THAT(Stored(),
              ElementsAre("Storing mass at massIdx[1], time[20300] and abundance[399]",
                          "Storing mass at massIdx[2], time[30300] and abundance[110]",
                          "Storing mass at massIdx[0], time[10300] and abundance[40]",
                          "Storing BETTER mass at massIdx[1], time[20300] and abundance[200]"));
  EXPECT_THAT(ChosenVoltages(), ElementsAre(22.0, 22.0, 20.0));
}

TEST_F(VoltageRamp, TakesTheStepNearestAboveForAMassThatWasNeverEligible) {
  of[100.0] = {{20.0, 900.0}, {22.0, 500.0}, {24.0, 700.0}};
  Run();
  EXPECT_EQ(data.peaks(0).Voltage, 22.0);
  EXPECT_EQ(data.peaks(0).Abundance, 500);
  EXPECT_EQ(data.peaks(0).SpectrumAttribs(0, 0).time, 10300.0);
  EXPECT_THAT(Log(),
              EndsWith("\r\n\r\nmass[0] stays above the maximum, [voltage,ab]=[22, 500]\r\n"));
  EXPECT_THAT(Stored(), Not(::testing::Contains(HasSubstr("massIdx[0]"))));
}

TEST_F(VoltageRamp, TakesTheFirstOfStepsThatAreEquallyNearAbove) {
  of[100.0] = {{20.0, 700.0}, {22.0, 500.0}, {24.0, 500.0}};
  of[400.0] = {{20.0, 500.0}, {22.0, 500.0}, {24.0, 700.0}};
  Run();
  EXPECT_THAT(ChosenVoltages(), ElementsAre(22.0, 20.0, 20.0));
}

TEST_F(VoltageRamp, PrefersAnyEligibleStepToOneAboveTheMaximum) {
  of[100.0] = {{20.0, 201.0}, {22.0, 3.0}, {24.0, 201.0}};
  Run();
  EXPECT_EQ(data.peaks(0).Voltage, 22.0);
  EXPECT_THAT(Log(), EndsWith("mass[0] stays below the minimum, [voltage,ab]=[22, 3]\r\n"));
}

// A step at 0 V and an abundance of 0 are readings like others.
TEST_F(VoltageRamp, TakesAStepAtZeroVoltsWithoutIonsForAReading) {
  range = {.low = 0.0, .high = 4.0, .step = 2.0};
  of[100.0] = {{0.0, 0.0}, {2.0, 0.0}, {4.0, 300.0}};
  Run();
  EXPECT_EQ(data.peaks(0).Voltage, 0.0);
  EXPECT_EQ(data.peaks(0).Abundance, 0);
  EXPECT_TRUE(std::isnan(data.peaks(0).SpectrumAttribs(0, 0).time));
  EXPECT_THAT(Stored(), IsSupersetOf({"Storing mass at massIdx[0], time[NaN] and abundance[0]"}));
}

TEST_F(VoltageRamp, ReplacesAPeakThatWasNotFoundByOneThatIs) {
  of[100.0] = {{20.0, 0.0}, {22.0, 1.0}, {24.0, 0.0}};
  Run();
  EXPECT_EQ(data.peaks(0).Voltage, 22.0);
  EXPECT_EQ(data.peaks(0).SpectrumAttribs(0, 0).time, 10300.0);
}

TEST_F(VoltageRamp, RoundsTheNumberOfStepsHalvesToEven) {
  struct Row {
    double high;
    std::size_t steps_walked;
  };
  for (const Row& row : {Row{25.0, 3}, Row{27.0, 5}, Row{24.9, 3}, Row{25.1, 4}, Row{20.0, 1},
                         Row{19.5, 1}, Row{19.0, 1}}) {
    range.high = row.high;
    journal.Clear();
    Run();
    EXPECT_EQ(VoltagesSet().size(), 2 * row.steps_walked) << row.high;
  }
}

TEST_F(VoltageRamp, RaisesTheVoltageByRepeatedAddition) {
  range = {.low = 0.1, .high = 1.0, .step = 0.1};
  Run();
  double voltage = 0.1;
  for (int i = 0; i < 9; ++i) voltage += 0.1;
  ASSERT_NE(voltage, 1.0);
  EXPECT_EQ(RfValue(), voltage);
}

TEST_F(VoltageRamp, GoesDownWithANegativeStep) {
  range = {.low = 24.0, .high = 20.0, .step = -2.0};
  Run();
  EXPECT_EQ(RfValue(), 20.0);
  EXPECT_THAT(ChosenVoltages(), ElementsAre(22.0, 24.0, 20.0));
}

TEST_F(VoltageRamp, WalksInOrderAlsoWhenTheSurveyDidNot) {
  instrument.flags["ObfuscateCalibAlg"] = "2";
  Run();
  const Calls set = VoltagesSet();
  ASSERT_EQ(set.size(), 6U);
  EXPECT_THAT(Calls(set.begin() + 3, set.end()), ElementsAre("SetpointTable.SetSetpoint(84,5,20)",
                                                             "SetpointTable.SetSetpoint(84,5,22)",
                                                             "SetpointTable.SetSetpoint(84,5,24)"));
}

// The survey's own failure is swallowed by it; the walk decides.
TEST_F(VoltageRamp, GoesOnBehindASurveyThatFailed) {
  of[100.0][22.0] = 3e9;  // overflows in the survey
  instrument.on_spectrum = [&] {
    if (instrument.spectra_taken == 2) of[100.0][22.0] = 180.0;
  };
  Run();
  EXPECT_THAT(
      TextsOf("SetTheseVoltagesAndGetTimesAndAbundances"),
      ::testing::Contains("error[6] in SetTheseVoltagesAndGetTimesAndAbundances(): Overflow"));
  EXPECT_THAT(ChosenVoltages(), ElementsAre(22.0, 24.0, 20.0));
}

TEST_F(VoltageRamp, EndsWithTheAbortThatTheSurveySwallowed) {
  host.on_messages = [&] { instrument.abort_requested = -1; };
  EXPECT_EQ(ErrorNumberOf([&] { Run(); }), 1);
  EXPECT_THAT(TextsOf(kSurvey).back(), "error[1] in " + kSurvey + "(): User aborted");
  EXPECT_EQ(instrument.spectra_taken, 0);
  EXPECT_THAT(VoltagesSet(), ElementsAre("SetpointTable.SetSetpoint(84,5,20)"));
}

TEST_F(VoltageRamp, SeesAnAbortAtEveryStepAlsoWithoutSettling) {
  parts.settling_time_sec = 0.0;
  instrument.on_spectrum = [&] {
    if (instrument.spectra_taken == 4) instrument.abort_requested = 1;
  };
  EXPECT_EQ(ErrorNumberOf([&] { Run(); }), 1);
  EXPECT_EQ(instrument.spectra_taken, 5);
  EXPECT_THAT(ChosenAbundances(), ElementsAre(180, 190, 110)) << "what was stored before stays";
  EXPECT_EQ(RfValue(), 22.0);
}

TEST_F(VoltageRamp, EndsAtAnAbundanceThatIsNoWholeNumberOf32Bits) {
  of[400.0][24.0] = 3e9;
  EXPECT_EQ(ErrorNumberOf([&] { Run(); }), 6);
  EXPECT_EQ(LastTrace(), "error[6] in " + kSurvey + "(): Overflow");
  EXPECT_THAT(ChosenAbundances(), ElementsAre(180, 190, 110));
}

TEST_F(VoltageRamp, EndsAtTheFirstMassWithoutAScalarBehindTheSurvey) {
  data.ab_scalars = BoundedArray<double>{1.0, 1.0};
  EXPECT_EQ(ErrorNumberOf([&] { Run(); }), 9);
  EXPECT_EQ(LastTrace(), "error[9] in " + kSurvey + "(): Subscript out of range");
  EXPECT_EQ(instrument.spectra_taken, 4);
}

TEST_F(VoltageRamp, TakesNoNoticeOfScalarsBeyondItsMasses) {
  data.ab_scalars = BoundedArray<double>{1.0, 1.0, 1.0, 0.0, -5.0};
  Run();
  EXPECT_THAT(ChosenAbundances(), ElementsAre(180, 199, 110));
}

TEST_F(VoltageRamp, EndsWithoutAMeasurementToStoreInto) {
  SizeFor(0);
  EXPECT_EQ(ErrorNumberOf([&] { Run(); }), 9);
}

// A failure inside the survey before the walk is the survey's to swallow.
TEST_F(VoltageRamp, TracesAndPassesOnEveryFailureOfTheWalk) {
  std::int32_t raised = 0;
  int walked = 0;
  fakes::FailEachCall(
      journal, [] {}, [&] { raised = ErrorNumberOf([&] { Run(); }); },
      [&](const std::string& failed) {
        const bool in_walk = failed == SpectrumTaken("0.75").front();
        if (!in_walk) return;
        ++walked;
        EXPECT_EQ(raised, fakes::kInjectedNumber);
        EXPECT_EQ(LastTrace(), "error[4711] in " + kSurvey + "(): Injected fault");
      });
  EXPECT_EQ(walked, 3);
}

}  // namespace
}  // namespace tof
