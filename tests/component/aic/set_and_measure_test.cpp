#include "component/aic/set_and_measure.h"

#include <cmath>

#include "tests/support/aic_fixture.h"
#include "tests/support/fault_sweep.h"
#include "tests/support/traced_calls.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::Elements;
using fakes::InOrder;
using fakes::RfWritten;
using fakes::SpectrumTaken;
using ::testing::AllOf;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

const Calls kFlag = {"TuneFlags.GetFlag(ObfuscateCalibAlg,-1)"};

class SettingVoltages : public fakes::AicFixture {
 protected:
  SettingVoltages() {
    instrument.abundance_at = [](double mass, double volts) { return 1000.0 * volts + mass; };
  }
  Survey Points(const std::vector<double>& volts) {
    Survey survey(0, static_cast<std::int32_t>(volts.size()) - 1);
    for (std::int32_t i = 0; i <= survey.UBound(); ++i) {
      survey(i).Voltage = volts[static_cast<std::size_t>(i)];
      survey(i).Times.ReDim(0, 2);
      survey(i).Abundances.ReDim(0, 2);
    }
    return survey;
  }
  void Measure(Survey& survey) {
    SetTheseVoltagesAndGetTimesAndAbundances(parts, host, Rf(), data.expected_masses, log, survey);
  }
};

TEST_F(SettingVoltages, SetsSettlesTakesOneSpectrumAndLogsItPointAfterPoint) {
  Survey survey = Points({80.0, 85.5});
  Measure(survey);
  EXPECT_THAT(
      CallsMade(),
      ElementsAreArray(InOrder({Logged(), kFlag, Logged(2), kFlag, RfWritten("80"), fakes::kSettled,
                                SpectrumTaken("-1"), Logged(), kFlag, RfWritten("85.5"),
                                fakes::kSettled, SpectrumTaken("-1"), Logged()})));
}

TEST_F(SettingVoltages, WritesEmptyLinesHeadingAndOneLineAVoltage) {
  Survey survey = Points({80.0, 85.5});
  Measure(survey);
  EXPECT_EQ(Log(),
            "\r\n"
            "\r\n"
            "Survey: Voltage, [Time, Abundance]s \r\n"
            "80, [10300, 80100], [20300, 80400], [30300, 80900]\r\n"
            "85.5, [10300, 85600], [20300, 85900], [30300, 86400]\r\n");
}

TEST_F(SettingVoltages, TracesEveryMassOfEveryPoint) {
  Survey survey = Points({80.0, 85.5});
  Measure(survey);
  EXPECT_THAT(host.trace->lines,
              ElementsAre("Entry SetTheseVoltagesAndGetTimesAndAbundances 9",
                          "SetTheseVoltagesAndGetTimesAndAbundances 9: massIdx = 0",
                          "SetTheseVoltagesAndGetTimesAndAbundances 9: massIdx = 1",
                          "SetTheseVoltagesAndGetTimesAndAbundances 9: massIdx = 2",
                          "SetTheseVoltagesAndGetTimesAndAbundances 9: massIdx = 0",
                          "SetTheseVoltagesAndGetTimesAndAbundances 9: massIdx = 1",
                          "SetTheseVoltagesAndGetTimesAndAbundances 9: massIdx = 2",
                          "Exit SetTheseVoltagesAndGetTimesAndAbundances 9"));
}

TEST_F(SettingVoltages, FillsThePointsAndLeavesTheLastVoltage) {
  instrument.spectrum_shift_ns = {0.25, 0.5};
  Survey survey = Points({80.0, 85.5});
  Measure(survey);
  EXPECT_EQ(survey(0).Times, (BoundedArray<double>{10300.25, 20300.25, 30300.25}));
  EXPECT_EQ(survey(0).Abundances, (BoundedArray<std::int32_t>{80100, 80400, 80900}));
  EXPECT_EQ(survey(1).Times, (BoundedArray<double>{10300.5, 20300.5, 30300.5}));
  EXPECT_EQ(survey(1).Abundances, (BoundedArray<std::int32_t>{85600, 85900, 86400}));
  EXPECT_EQ(RfValue(), 85.5);
}

TEST_F(SettingVoltages, RoundsAbundancesHalvesToEven) {
  instrument.abundance_at = [](double mass, double) { return mass == 400.0 ? 3.5 : 2.5; };
  Survey survey = Points({80.0});
  Measure(survey);
  EXPECT_EQ(survey(0).Abundances, (BoundedArray<std::int32_t>{2, 4, 2}));
  EXPECT_THAT(Log(), HasSubstr("80, [10300, 2], [20300, 4], [30300, 2]\r\n"));
}

TEST_F(SettingVoltages, TakesTheMassesThatTheSpectrumWasParsedFor) {
  instrument.first_mass_parsed = 1;
  Survey survey = Points({80.0});
  survey(0).Abundances(0) = -5;
  Measure(survey);
  EXPECT_THAT(TextsOf("SetTheseVoltagesAndGetTimesAndAbundances"),
              ElementsAre("massIdx = 1", "massIdx = 2"));
  EXPECT_THAT(Log(), ::testing::EndsWith("\r\n80, [20300, 80400], [30300, 80900]\r\n"));
  EXPECT_EQ(survey(0).Abundances, (BoundedArray<std::int32_t>{-5, 80400, 80900}));

  instrument.first_mass_parsed = 0;
  instrument.masses_left_out = 1;
  Measure(survey);
  EXPECT_THAT(Log(), ::testing::EndsWith("\r\n80, [10300, 80100], [20300, 80400]\r\n"));
}

TEST_F(SettingVoltages, TakesAPeakThatIsNotFoundAsTheParserReportsIt) {
  instrument.abundance_at = [](double mass, double) { return mass == 400.0 ? 0.0 : 7.0; };
  Survey survey = Points({80.0});
  Measure(survey);
  EXPECT_THAT(Log(), HasSubstr("80, [10300, 7], [NaN, 0], [30300, 7]\r\n"));
  EXPECT_TRUE(std::isnan(survey(0).Times(1)));
}

TEST_F(SettingVoltages, KeepsTheirOrderAndShowsNothingUnlessTheFlagIsExactly2) {
  for (const char* other : {"", "1", "Yes", "2 "}) {
    instrument.flags["ObfuscateCalibAlg"] = other;
    journal.Clear();
    Survey survey = Points({1.0, 2.0, 3.0, 4.0, 5.0, 6.0});
    Measure(survey);
    EXPECT_THAT(
        journal.Only({"SetpointTable.SetSetpoint"}),
        ElementsAre("SetpointTable.SetSetpoint(84,5,1)", "SetpointTable.SetSetpoint(84,5,2)",
                    "SetpointTable.SetSetpoint(84,5,3)", "SetpointTable.SetSetpoint(84,5,4)",
                    "SetpointTable.SetSetpoint(84,5,5)", "SetpointTable.SetSetpoint(84,5,6)"));
    EXPECT_EQ(NumberOf("SpectrumDisplay."), 0U);
  }
  EXPECT_THAT(Log(), AllOf(Not(HasSubstr("Idx Array")), Not(HasSubstr("Randomized Array"))));
}

class SettingVoltagesInRandomOrder : public SettingVoltages {
 protected:
  SettingVoltagesInRandomOrder() { instrument.flags["ObfuscateCalibAlg"] = "2"; }
  // The indexes behind "Randomized Array: ", each with its ", " in front.
  std::vector<std::string> LoggedOrder() const {
    const std::string label = "Randomized Array: ";
    const std::size_t begin = Log().rfind(label) + label.size();
    std::string rest = Log().substr(begin, Log().find("\r\n", begin) - begin);
    std::vector<std::string> order;
    while (!rest.empty()) {
      EXPECT_EQ(rest.substr(0, 2), ", ");
      const std::size_t end = rest.find(',', 2);
      order.push_back(rest.substr(2, end == std::string::npos ? end : end - 2));
      rest = end == std::string::npos ? std::string() : rest.substr(end);
    }
    return order;
  }
};

TEST_F(SettingVoltagesInRandomOrder, LogsBothOrdersWithTheirExtraSeparator) {
  host.seed = 3;
  Survey survey = Points({0.0, 1.0, 2.0});
  Measure(survey);
  EXPECT_THAT(Log(), HasSubstr("\r\nOriginal Idx Array: , 0, 1, 2\r\nRandomized Array: , "));
  EXPECT_THAT(LoggedOrder(), ::testing::UnorderedElementsAre("0", "1", "2"));
}

TEST_F(SettingVoltagesInRandomOrder, LogsTheOriginalOrderBeforeItIsRandomized) {
  Survey survey = Points({42.0});
  Measure(survey);
  const std::string name = "SetTheseVoltagesAndGetTimesAndAbundances";
  EXPECT_THAT(
      fakes::Between(journal.entries(), fakes::Entered(name)[0], fakes::Left(name)[0]),
      ElementsAreArray(InOrder(
          {fakes::Entered(name), Logged(), kFlag, Logged(), fakes::Entered("RandomizeThisArray"),
           Calls{"Host.RandomSeed"}, fakes::Left("RandomizeThisArray"), Logged(3), kFlag,
           RfWritten("42"), fakes::kSettled, SpectrumTaken("-1"),
           fakes::Traced(name, "massIdx = 0"), fakes::Traced(name, "massIdx = 1"),
           fakes::Traced(name, "massIdx = 2"), Logged(), fakes::Left(name)})));
}

TEST_F(SettingVoltagesInRandomOrder, VisitsThePointsAsLoggedAndFillsEachInItsPlace) {
  host.seed = 11;
  Survey survey = Points({0.0, 1.0, 2.0, 3.0});
  Measure(survey);
  Calls expected;
  for (const std::string& index : LoggedOrder()) {
    expected.push_back("SetpointTable.SetSetpoint(84,5," + index + ")");
  }
  EXPECT_NE(LoggedOrder(), (std::vector<std::string>{"0", "1", "2", "3"}));
  EXPECT_THAT(journal.Only({"SetpointTable.SetSetpoint"}), ElementsAreArray(expected));
  for (std::int32_t i = 0; i <= 3; ++i) EXPECT_EQ(survey(i).Abundances(0), 1000 * i + 100) << i;
}

TEST_F(SettingVoltagesInRandomOrder, ShowTheSpectrumNeverForFourPoints) {
  Survey survey = Points({0.0, 1.0, 2.0, 3.0});
  Measure(survey);
  EXPECT_EQ(NumberOf("SpectrumDisplay."), 0U);
}

TEST_F(SettingVoltagesInRandomOrder, ShowTheSpectrumOnceForFiveBeforeTheFifthIsSet) {
  Survey survey = Points({0.0, 1.0, 2.0, 3.0, 4.0});
  Measure(survey);
  const Calls calls = journal.Only({"SpecParser.", "SpectrumDisplay."});
  EXPECT_THAT(calls, ElementsAreArray(InOrder({fakes::Repeated(4, SpectrumTaken("-1")),
                                               {"SpectrumDisplay.SetDisplayUpdate(True)",
                                                "SpectrumDisplay.SetDisplayUpdate(False)"},
                                               SpectrumTaken("-1")})));
  EXPECT_THAT(Log(), HasSubstr("Unfreeze\r\nFreeze\r\n"));
}

TEST_F(SettingVoltagesInRandomOrder, OfOnePointIsThatPoint) {
  Survey survey = Points({42.0});
  Measure(survey);
  EXPECT_EQ(Log(),
            "\r\n"
            "Original Idx Array: , 0\r\n"
            "Randomized Array: , 0\r\n"
            "\r\n"
            "Survey: Voltage, [Time, Abundance]s \r\n"
            "42, [10300, 42100], [20300, 42400], [30300, 42900]\r\n");
}

TEST_F(SettingVoltagesInRandomOrder, GoOnInAscendingOrderWhenNoSeedIsToBeHad) {
  journal.fail_operation = "Host.RandomSeed";
  Survey survey = Points({0.0, 1.0, 2.0});
  Measure(survey);
  EXPECT_THAT(LoggedOrder(), ElementsAre("0", "1", "2"));
  EXPECT_THAT(TextsOf("RandomizeThisArray"),
              ElementsAre("error[4711] in RandomizeThisArray(): Injected fault"));
  EXPECT_EQ(instrument.spectra_taken, 3);
}

TEST_F(SettingVoltages, EndWithAnAbortAndKeepWhatTheCallerPutThere) {
  host.on_messages = [&] {
    if (instrument.spectra_taken == 1) instrument.abort_requested = -1;
  };
  Survey survey = Points({80.0, 81.0, 82.0});
  survey(1).Abundances(0) = -5;
  Measure(survey);
  EXPECT_EQ(LastTrace(), "error[1] in SetTheseVoltagesAndGetTimesAndAbundances(): User aborted");
  EXPECT_EQ(survey(0).Abundances(0), 80100);
  EXPECT_EQ(survey(1).Abundances(0), -5);
  EXPECT_THAT(Elements(survey(2).Times), Each(0.0));
  EXPECT_EQ(RfValue(), 81.0);
}

TEST_F(SettingVoltages, EndAtAPointWithoutArrays) {
  Survey survey = Points({80.0, 81.0, 82.0});
  survey(1).Times = {};
  Measure(survey);
  EXPECT_EQ(LastTrace(),
            "error[9] in SetTheseVoltagesAndGetTimesAndAbundances(): Subscript out of range");
  EXPECT_EQ(survey(0).Abundances(2), 80900);
  EXPECT_THAT(Elements(survey(1).Abundances), Each(0));
  EXPECT_EQ(instrument.spectra_taken, 2);
  EXPECT_THAT(TextsOf("SetTheseVoltagesAndGetTimesAndAbundances"),
              ElementsAre("massIdx = 0", "massIdx = 1", "massIdx = 2", "massIdx = 0", LastTrace()))
      << "a mass is traced before it is stored";
}

TEST_F(SettingVoltages, EndAtAnAbundanceThatIsNoWholeNumberOf32Bits) {
  instrument.abundance_at = [](double, double volts) { return volts == 81.0 ? 3e9 : 7.0; };
  Survey survey = Points({80.0, 81.0});
  Measure(survey);
  EXPECT_EQ(LastTrace(), "error[6] in SetTheseVoltagesAndGetTimesAndAbundances(): Overflow");
}

TEST_F(SettingVoltages, EndAtOnceWithoutPoints) {
  Survey survey;
  Measure(survey);
  EXPECT_EQ(LastTrace(),
            "error[9] in SetTheseVoltagesAndGetTimesAndAbundances(): Subscript out of range");
  EXPECT_THAT(CallsMade(), IsEmpty());
}

TEST_F(SettingVoltages, TraceAndSwallowEveryFailure) {
  Survey survey;
  fakes::FailEachCall(
      journal,
      [&] {
        survey = Points({80.0, 81.0});
      },
      [&] { EXPECT_NO_THROW(Measure(survey)); },
      [&](const std::string& failed) {
        if (failed.rfind("Trace.", 0) == 0) return;
        EXPECT_EQ(LastTrace(),
                  "error[4711] in SetTheseVoltagesAndGetTimesAndAbundances(): Injected fault");
      });
}

}  // namespace
}  // namespace tof
