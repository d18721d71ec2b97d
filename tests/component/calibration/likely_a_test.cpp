#include "component/calibration/likely_a.h"

#include "tests/component/calibration/calibration_calls.h"
#include "tests/component/error_number_of.h"
#include "tests/support/calibration_fixture.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::FlagRead;
using fakes::InOrder;
using fakes::Repeated;
using fakes::SetpointRead;
using fakes::SetpointWritten;
using fakes::SettingRead;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class LikelyA : public fakes::CalibrationFixture {
 protected:
  bool Calculate() {
    Instrument parts = Collaborators();
    return CalculateLikelyAAndt0Values(parts, host, likely_a, t0, masses);
  }
  // Times and A that can be reckoned by hand: A = 1 per us, t0 = 0, ions at sqrt(m) us.
  void FlyAtOnePerMicrosecond(std::vector<double> sample) {
    instrument.true_a_per_ns = 0.001;
    instrument.true_t0_ns = 0.0;
    instrument.in_force = instrument.NewCoefficients(0.001, 0.0);
    instrument.flags["Calibration_t0ToUseToStartLookingforA_usec"] = "0";
    instrument.sample_masses = std::move(sample);
    masses = Variant::DoubleArray(instrument.sample_masses);
  }
  std::size_t NumberOf(const std::string& call) const { return journal.Only({call}).size(); }

  double likely_a = 0.0;
  double t0 = 0.0;
};

TEST_F(LikelyA, IsFoundInThisOrderOfCalls) {
  host.trace->on = false;
  FlyAtOnePerMicrosecond({144.0, 289.0, 529.0, 841.0});
  EXPECT_TRUE(Calculate());
  EXPECT_EQ(likely_a, 1.0);
  EXPECT_EQ(t0, 0.0);
  const Calls list_sized =
      InOrder({{"Create.PeakList"}, {"PeakList.Initialize"}, Repeated(6, {"PeakList.Add"})});
  const Calls searched = {"SpecParser.FindPeaks(12000,72000,6)", "PeakList.PreparePeakList(5,0)"};
  const Calls range = {"DataDictionary.GetAcqStartTime", "DataDictionary.GetAcqEndTime"};
  EXPECT_THAT(
      journal.entries(),
      ElementsAreArray(InOrder(
          {SetpointRead(69),
           FlagRead("SkipTOFCalibrationDuringAutotunes"),
           FlagRead("SkipCalcLikelyABeforeCalibration"),
           FlagRead("CalcLikelyA_OverrideNumPeaksSought"),
           {"DataDictionary.GetStatusReader", "StatusReader.Read(ACTUAL.NDR[NRDYSTATE],VARIANT,0)",
            "DataDictionary.GetStatusReader",
            "StatusReader.Read(REG[ACTUAL].OBJ[1].NDR[RUNSTATE],VARIANT,0)"},
           FlagRead("Calibration_t0ToUseToStartLookingforA_usec"),
           range,
           range,
           list_sized,
           list_sized,
           FlagRead("CalcLikelyA_PartitionSpec"),
           searched,
           searched,
           {"PeakList.Count", "PeakList.Count", "PeakList.Count"},
           Repeated(4, {"PeakList.GetRecord"}),
           FlagRead("SkipTOFCalibrationDuringAutotunes"),
           {"PeakList.Count"},
           Repeated(16, {"PeakList.GetRecord"}),
           {"AcqController.GetCurrentA"},
           SetpointRead(162),
           SettingRead("Calibration/TargetAPercentError")})));
}

TEST_F(LikelyA, TracesItsWayInTheseTexts) {
  FlyAtOnePerMicrosecond({144.0, 289.0, 529.0, 841.0});
  EXPECT_TRUE(Calculate());
  const std::string test =
      "Abs(dTargetA - Data(idx, A)) < Abs(dTargetA * dAllowablePercentError) ==> Abs(1 - 1) < "
      "Abs(1 * 0.02)";
  const auto texts = host.trace->Texts();
  ASSERT_EQ(texts.size(), 21U);
  EXPECT_THAT(
      std::vector<std::string>(texts.begin(), texts.begin() + 17),
      ElementsAre(
          "Before While: NReady[0], RunState[2]", "Calibrant Masses...", "Calibrant[0] = 144",
          "Calibrant[1] = 289", "Calibrant[2] = 529", "Calibrant[3] = 841",
          "PeakFindin between dSearchStartTimeInNS[12000], dSearchEndTimeInNS[72000]",
          "Initialization complete", "Dumping peaklist...", "Peak[0]: Mass, Height[12000, 150000]",
          "Peak[1]: Mass, Height[17000, 150000]", "Peak[2]: Mass, Height[23000, 150000]",
          "Peak[3]: Mass, Height[29000, 150000]", "Moving on...", "dTargetA = 1", test, test));
  EXPECT_EQ(texts[17], test);
  EXPECT_EQ(texts[18].substr(0, texts[18].find("[x]")),
            "Top candidates:LBound(Data, 1)[0]; UBound(Data, 1)[15]; "
            "peakListInNanoseconds.PeakCount[4]\r\n\r\n");
  EXPECT_THAT(texts[18], HasSubstr("\r\n[x] AssumedMass[529], Time[23000], A[1], Goodness[0]"));
}

// The rest of the trace: what follows the listing.
TEST_F(LikelyA, EndsItsTraceWithTheValuesTwice) {
  EXPECT_TRUE(Calculate());
  const auto texts = host.trace->Texts();
  EXPECT_EQ(texts[texts.size() - 2], "LikelyA[0.65], t0[0.3]");
  EXPECT_EQ(texts.back(), "Successful: LikelyA[0.65], t0[0.3]");
  EXPECT_EQ(host.trace->lines.front(), "Entry CalculateLikelyAAndt0Values 2");
}

TEST_F(LikelyA, ReturnsTheStoredValuesWithoutReadingASpectrum) {
  instrument.flags["SkipCalcLikelyABeforeCalibration"] = "Yes";
  instrument.flags["SkipCalcLikelyABeforeCalibration_LikelyA"] = "0.7125";
  instrument.flags["SkipCalcLikelyABeforeCalibration_t0"] = "-0.25";
  EXPECT_TRUE(Calculate());
  EXPECT_EQ(likely_a, 0.7125);
  EXPECT_EQ(t0, -0.25);
  EXPECT_EQ(NumberOf("SpecParser"), 0U);
  EXPECT_EQ(NumberOf("StatusReader"), 0U);
  EXPECT_THAT(host.trace->Texts(), ElementsAre("Skipping LikelyA based on XML flag being set"));
}

TEST_F(LikelyA, AnswersFalseWhenAutotunesAreSkipped) {
  instrument.flags["SkipTOFCalibrationDuringAutotunes"] = "Yes";
  instrument.flags["SkipCalcLikelyABeforeCalibration"] = "Yes";
  EXPECT_FALSE(Calculate());
  EXPECT_THAT(host.message_boxes, IsEmpty());
  EXPECT_THAT(host.trace->Texts(), ElementsAre("Skipping Calibration based on XML flag being set"));
}

TEST_F(LikelyA, LeavesAScintillatorAtZeroAlone) {
  EXPECT_TRUE(Calculate());
  EXPECT_EQ(NumberOf("SetpointTable.SetSetpoint"), 0U);
}

TEST_F(LikelyA, ResetsAnyOtherScintillatorToZero) {
  for (const Variant& value :
       {Variant(1.0), Variant(-1.0), Variant(std::int16_t{2}), Variant(true), Variant("0.5")}) {
    instrument.setpoints[69] = value;
    EXPECT_TRUE(Calculate());
    EXPECT_EQ(instrument.setpoints.at(69), Variant(0.0));
    EXPECT_THAT(host.trace->Texts(), Contains("Scint NOT not TTI mode; setting scint=0"));
    const Calls begin = InOrder({{"Trace.Entry(CalculateLikelyAAndt0Values,2)"},
                                 SetpointRead(69),
                                 {"Trace.TracePrint(Scint NOT not TTI mode; setting scint=0,"
                                  "CalculateLikelyAAndt0Values,2)"},
                                 SetpointWritten(69, ValueType::kDouble, "0")});
    EXPECT_THAT(Calls(journal.entries().begin(),
                      journal.entries().begin() + static_cast<std::ptrdiff_t>(begin.size())),
                ElementsAreArray(begin));
  }
}

TEST_F(LikelyA, TakesTheInstrumentsCalibrantsWhenMassesAreMissing) {
  masses = Variant(Variant::Missing{});
  EXPECT_TRUE(Calculate());
  EXPECT_DOUBLE_EQ(likely_a, 0.65);
  EXPECT_THAT(journal.Only({"SetpointTable", "DataDictionary.GetModeName", "AcqController.GetConf",
                            "AcqController.GetCalibrant"}),
              ElementsAre("SetpointTable.GetSetpoint(69)", "SetpointTable.GetSetpoint(117)",
                          "DataDictionary.GetModeName", "AcqController.GetConfigurationName",
                          "AcqController.GetCalibrantMasses(3,MS,Standard)",
                          "SetpointTable.GetSetpoint(162)"));
}

TEST_F(LikelyA, SeeksTwoPeaksMoreThanMasses) {
  EXPECT_TRUE(Calculate());
  EXPECT_EQ(NumberOf("SpecParser.FindPeaks(12000,72000,8)"), 2U);
}

TEST_F(LikelyA, SeeksAsManyPeaksAsTheOverrideSaysHalvesToEven) {
  instrument.flags["CalcLikelyA_OverrideNumPeaksSought"] = "Yes";
  instrument.settings["Calibration/CalcLikelyA_NumPeaksSought"] = 12.5;
  EXPECT_TRUE(Calculate());
  EXPECT_EQ(NumberOf("SpecParser.FindPeaks(12000,72000,12)"), 2U);
}

// --- The wait for the instrument.

TEST_F(LikelyA, WaitsUntilTheInstrumentIsReadyAndRunning) {
  instrument.ready_states = {Variant(std::int32_t{-1}), Variant(std::int32_t{0}),
                             Variant(std::int32_t{5})};
  instrument.run_states = {Variant(std::int32_t{2}), Variant(std::int32_t{1}),
                           Variant(std::int32_t{2})};
  EXPECT_TRUE(Calculate());
  const auto texts = host.trace->Texts();
  EXPECT_THAT(
      std::vector<std::string>(texts.begin(), texts.begin() + 4),
      ElementsAre("Before While: NReady[-1], RunState[2]", "In While: NReady[0], RunState[1]",
                  "In While: NReady[5], RunState[2]", "Calibrant Masses..."));
  EXPECT_EQ(NumberOf("Host.Sleep(1000)"), 2U);
}

TEST_F(LikelyA, WaitsWithoutALimitAndWithoutAnAbortTest) {
  instrument.abort_requested = -1;
  instrument.run_states.assign(5000, Variant(std::int32_t{1}));
  instrument.run_states.emplace_back(std::int32_t{2});
  EXPECT_TRUE(Calculate());
  EXPECT_EQ(NumberOf("Host.Sleep(1000)"), 5000U);
  EXPECT_EQ(NumberOf("AcqController.IsAbortRequested"), 0U);
}

TEST_F(LikelyA, EndsTheWaitForAnInstrumentThatIsNeverReadyOnlyByAFault) {
  instrument.run_states = {Variant(std::int32_t{1})};
  journal.abort_operation = "Host.Sleep";
  journal.request_abort = [this] {
    if (host.slept_ms == 99000) journal.fail_operation = "Host.Sleep";
  };
  EXPECT_FALSE(Calculate());
  EXPECT_EQ(NumberOf("Host.Sleep"), 100U);
  EXPECT_THAT(host.message_boxes, ElementsAre("Error"));
}

// --- Too little to estimate from.

TEST_F(LikelyA, NeedsThreePeaks) {
  instrument.sample_masses.resize(2);
  EXPECT_FALSE(Calculate());
  EXPECT_THAT(host.message_boxes, IsEmpty());
  EXPECT_EQ(host.trace->Texts().back(),
            "Peakfinder found less than 3 peaks in the spectrum; returning...");
}

TEST_F(LikelyA, NeedsThreePeaksInTheSecondListAlone) {
  instrument.most_peaks_found = {6, 2};
  EXPECT_FALSE(Calculate());
  EXPECT_EQ(host.trace->Texts().back(),
            "Peakfinder found less than 3 peaks in the spectrum; returning...");
}

TEST_F(LikelyA, ReadsRowsOneToTheNumberOfPeaksInTheFirstPass) {
  // Nine pairings. Sorted by A: 0.6, 0.75, 0.8, 1 (of 256, 144, 400: the exchange sort's order),
  // 1.25, 1.33, 1.67. Two of the three at 1 have goodness 0 and follow row 0, which has 0 as well.
  FlyAtOnePerMicrosecond({144.0, 256.0, 400.0});
  EXPECT_FALSE(Calculate());
  const auto texts = host.trace->Texts();
  const auto listing = std::find_if(texts.begin(), texts.end(), [](const std::string& text) {
    return text.rfind("Top candidates:", 0) == 0;
  });
  ASSERT_NE(listing, texts.end());
  EXPECT_EQ(*listing,
            "Top candidates:LBound(Data, 1)[0]; UBound(Data, 1)[8]; "
            "peakListInNanoseconds.PeakCount[3]\r\n"
            "\r\n[x] AssumedMass[144], Time[12000], A[1], Goodness[0]"
            "\r\n[x] AssumedMass[400], Time[20000], A[1], Goodness[0]");
  // Two are not enough, and the loosened pass reads beyond the ninth row.
  EXPECT_EQ(*(listing + 1), "3 likely candidates not found; loosening criteria...");
  EXPECT_EQ(*(listing + 2), "CalculateLIkelyAAndt0Values.Error[9]");
  EXPECT_THAT(host.message_boxes, ElementsAre("Error"));
}

TEST_F(LikelyA, SkipsTheFirstPassWithASinglePeak) {
  FlyAtOnePerMicrosecond(
      {144.0, 169.0, 196.0, 225.0, 256.0, 289.0, 324.0, 361.0, 400.0, 441.0, 484.0, 529.0, 576.0});
  instrument.most_peaks_found = {1, 13};
  EXPECT_FALSE(Calculate());
  EXPECT_THAT(host.message_boxes, IsEmpty());
  const auto texts = host.trace->Texts();
  EXPECT_THAT(texts, Contains("Top candidates:LBound(Data, 1)[0]; UBound(Data, 1)[12]; "
                              "peakListInNanoseconds.PeakCount[1]\r\n"));
  EXPECT_THAT(texts, Not(Contains(HasSubstr("Abs(dTargetA"))));
  EXPECT_THAT(texts.back(), HasSubstr("\r\n[] AssumedMass["));
}

// --- The two passes and the last test.

TEST_F(LikelyA, IsLoosenedWhenFewerThanThreeCandidatesAreNear) {
  instrument.in_force->record[0] = instrument.true_a_per_ns * 1.03;
  EXPECT_TRUE(Calculate());
  EXPECT_NEAR(likely_a, 0.65, 0.65 * 0.03);
  const auto texts = host.trace->Texts();
  EXPECT_THAT(texts, Contains("3 likely candidates not found; loosening criteria..."));
  EXPECT_THAT(texts, Contains(HasSubstr("\r\n[ ] AssumedMass[")));
  EXPECT_THAT(texts[texts.size() - 3], ::testing::StartsWith("\r\n[x] AssumedMass["));
}

TEST_F(LikelyA, IsRefusedWhenTheMeanIsTwiceTheToleranceAway) {
  instrument.in_force->record[0] = instrument.true_a_per_ns * 1.06;
  EXPECT_FALSE(Calculate());
  EXPECT_THAT(host.message_boxes, IsEmpty());
}

TEST_F(LikelyA, RejectsACandidateExactlyOnTheTolerance) {
  FlyAtOnePerMicrosecond({144.0, 289.0, 529.0, 841.0});
  instrument.settings["Calibration/TargetAPercentError"] = 0.0;  // difference and tolerance 0
  EXPECT_FALSE(Calculate());
  const auto texts = host.trace->Texts();
  for (const std::string& text : texts) EXPECT_THAT(text, Not(HasSubstr("[x]")));
  EXPECT_THAT(texts.back(), HasSubstr("\r\n[] AssumedMass[529], Time[23000], A[1], Goodness[0]"));
  instrument.settings["Calibration/TargetAPercentError"] = 1e-9;
  EXPECT_TRUE(Calculate());
}

TEST_F(LikelyA, TakesTheToleranceOfTheFpsMode) {
  instrument.in_force->record[0] = instrument.true_a_per_ns * 1.025;
  instrument.setpoints[162] = true;
  EXPECT_TRUE(Calculate());
  EXPECT_EQ(NumberOf("CalibSettings.GetValue(Calibration/TargetAPercentError_FPS,0)"), 1U);
  EXPECT_THAT(host.trace->Texts(),
              Not(Contains("3 likely candidates not found; loosening criteria...")));
}

// --- Faults.

TEST_F(LikelyA, ShowsAMessageBoxAndAnswersFalseOnAFault) {
  journal.fail_operation = "AcqController.GetCurrentA";
  EXPECT_FALSE(Calculate());
  EXPECT_THAT(host.message_boxes, ElementsAre("Error"));
  EXPECT_EQ(host.trace->Texts().back(), "CalculateLIkelyAAndt0Values.Error[4711]");
}

TEST_F(LikelyA, AnswersFalseWhenTheMessageBoxFailsToo) {
  Instrument parts = Collaborators();
  journal.fail_from = 0;
  journal.fail_count = fakes::Journal::kNever;
  EXPECT_FALSE(CalculateLikelyAAndt0Values(parts, host, likely_a, t0, masses));
  EXPECT_THAT(host.message_boxes, IsEmpty());
}

TEST_F(LikelyA, RefusesAStartingT0ThatIsNoNumber) {
  instrument.flags["Calibration_t0ToUseToStartLookingforA_usec"] = "";
  EXPECT_FALSE(Calculate());
  EXPECT_EQ(host.trace->Texts().back(), "CalculateLIkelyAAndt0Values.Error[13]");
}

TEST_F(LikelyA, NeverRaisesWhicheverCallFails) {
  host.trace->on = false;
  bool found = false;
  std::size_t failures = 0;
  Instrument parts = Collaborators();
  fakes::FailEachCall(
      journal, [&] { host.message_boxes.clear(); },
      [&] { found = CalculateLikelyAAndt0Values(parts, host, likely_a, t0, masses); },
      [&](const std::string&) {
        if (!found) ++failures;
        EXPECT_LE(host.message_boxes.size(), found ? 0U : 1U);
      });
  EXPECT_GT(failures, 0U);
}

// --- The pairing and sorting steps.

class Pairing : public LikelyA {
 protected:
  void Pair(double start_t0) {
    Instrument parts = Collaborators();
    peaks.records = {{.position = 2000.0}, {.position = 4000.0}};
    CalibrateProcedureA(parts, table, peaks, BoundedArray<double>({16.0, 64.0}), start_t0);
  }
  fakes::FakePeakList peaks{journal};
  CandidateTable table{0, 3};
};

TEST_F(Pairing, PairsEveryMassWithEveryPeak) {
  Pair(0.0);
  EXPECT_EQ(
      table,
      CandidateTable(
          {{16.0, 2000.0, 2.0}, {16.0, 4000.0, 1.0}, {64.0, 2000.0, 4.0}, {64.0, 4000.0, 2.0}}));
}

TEST_F(Pairing, LeavesTheRestAtZeroWhenAPeakLiesAtT0) {
  Pair(4.0);
  EXPECT_EQ(table, CandidateTable({{16.0, 2000.0, 2.0}, {16.0, 4000.0, 0.0}, {}, {}}));
  EXPECT_THAT(host.trace->Texts(), ElementsAre("CalibrateProcedureA.Error[11]"));
}

TEST_F(Pairing, IsSkippedWithTheAutotunes) {
  instrument.flags["SkipTOFCalibrationDuringAutotunes"] = "Yes";
  Pair(0.0);
  EXPECT_EQ(table, CandidateTable(0, 3));
  EXPECT_THAT(host.trace->lines,
              ElementsAre("Entry CalibrateProcedureA 9",
                          "CalibrateProcedureA 9: Skipping Calibration based on XML flag being set",
                          "Exit CalibrateProcedureA 9"));
}

TEST_F(Pairing, SortsByAThenByGoodness) {
  Pair(0.0);
  CalibrateProcedureB(table);
  FillGoodness(table);
  EXPECT_EQ(table, CandidateTable({{16.0, 4000.0, 1.0, 0.0},
                                   {16.0, 2000.0, 2.0, 1.0},
                                   {64.0, 4000.0, 2.0, 0.0},
                                   {64.0, 2000.0, 4.0, 2.0}}));
  CalibrateProcedureC(table);
  EXPECT_EQ(table, CandidateTable({{16.0, 4000.0, 1.0, 0.0},
                                   {64.0, 4000.0, 2.0, 0.0},
                                   {16.0, 2000.0, 2.0, 1.0},
                                   {64.0, 2000.0, 4.0, 2.0}}));
}

TEST_F(Pairing, SwallowsTheFaultsOfItsThreeSteps) {
  Instrument parts = Collaborators();
  journal.fail_operation = "Trace.Entry";
  CalibrateProcedureA(parts, table, peaks, BoundedArray<double>({16.0, 64.0}), 0.0);
  CalibrateProcedureB(table);
  CalibrateProcedureC(table);
  EXPECT_THAT(host.trace->Texts(),
              ElementsAre("CalibrateProcedureA.Error[4711]", "CalibrateProcedureB.Error[4711]",
                          "CalibrateProcedureC.Error[4711]"));
}

// --- Handing the values over.

class LikelyAHandedOver : public LikelyA {
 protected:
  void Apply(bool manual = false) {
    Instrument parts = Collaborators();
    ApplyLikelyAAt0Coefficients(parts, host, manual, masses);
  }
};

TEST_F(LikelyAHandedOver, BecomesTheStartOfTheNextFitAndAnAbortIsAskedForBehindIt) {
  Apply();
  EXPECT_TRUE(instrument.has_likely_a);
  EXPECT_DOUBLE_EQ(instrument.likely_a_per_us, 0.65);
  EXPECT_EQ(instrument.likely_t0_us, 0.3);
  EXPECT_THAT(journal.Only({"AcqController.SetL", "AcqController.IsA"}),
              ElementsAre("AcqController.SetLikelyAAndT0", "AcqController.IsAbortRequested"));
}

TEST_F(LikelyAHandedOver, RaisesItsOwnErrorWhenThereIsNone) {
  instrument.sample_masses.resize(2);
  try {
    Apply();
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), -822);
    EXPECT_EQ(error.source(), "calibrateTOFMassAxis");
    EXPECT_EQ(error.description(), "Failed to find a Likely A and t0 value");
  }
  EXPECT_EQ(NumberOf("AcqController.IsAbortRequested"), 0U);
  EXPECT_EQ(host.trace->Texts().back(),
            "error[-822] in ApplyLikelyAAt0Coefficients(): Failed to find a Likely A and t0 value");
}

TEST_F(LikelyAHandedOver, RaisesAnAbortWithoutASource) {
  instrument.abort_requested = 1;
  try {
    Apply();
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 1);
    EXPECT_EQ(error.source(), "");
    EXPECT_EQ(error.description(), "User aborted");
  }
  EXPECT_TRUE(instrument.has_likely_a);
}

TEST_F(LikelyAHandedOver, IsDoneWithoutInAManualCalibrationWhileAutotunesAreSkipped) {
  instrument.flags["SkipTOFCalibrationDuringAutotunes"] = "Yes";
  Apply(true);
  EXPECT_FALSE(instrument.has_likely_a);
  EXPECT_EQ(NumberOf("AcqController.IsAbortRequested"), 1U);
  EXPECT_EQ(ErrorNumberOf([&] { Apply(false); }), -822);
}

TEST_F(LikelyAHandedOver, IsNeededInAManualCalibrationOtherwise) {
  instrument.sample_masses.resize(2);
  EXPECT_EQ(ErrorNumberOf([&] { Apply(true); }), -822);
}

}  // namespace
}  // namespace tof
