#include "component/acquisition/time_spanned_peak_times.h"

#include <algorithm>
#include <map>

#include "tests/support/aic_fixture.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::BandLimitRead;
using fakes::Calls;
using fakes::FlagRead;
using fakes::InOrder;
using fakes::RfWritten;
using fakes::SettingRead;
using fakes::SpectrumTaken;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

const std::string kName = "GetTimeSpannedCalibrantPeakTimes";
constexpr const char* kByMass = "Entry CollectAdditionalPointsForPurposesOfAveraging_byMass 9";
constexpr const char* kByMeasurement =
    "Entry CollectAdditionalPointsForPurposesOfAveraging_byMeasurement 9";
constexpr const char* kDataSet = "D:\\Data\\Logfiles\\AbImmunecalib_SpotFireDataSetLog.csv";
constexpr const char* kTuneReport = "D:\\Data\\Logfiles\\TuneReportCalibData.txt";

// A ramp of two steps, 20 and 22 V, for three masses and two spectra.
class TimeSpannedPeakTimes : public fakes::AicFixture {
 protected:
  TimeSpannedPeakTimes() {
    instrument.settings["Calibration/AIC_RF_LowValue"] = 20.0;
    instrument.settings["Calibration/AIC_RF_HighValue"] = 22.0;
    instrument.settings["Calibration/AIC_RF_Step"] = 2.0;
    StartAfresh();
  }
  // As the driver leaves the store before it measures.
  void StartAfresh() {
    data.peaks = {};
    data.measured_times.ReDim({0, 1}, {0, 2});
    instrument.setpoints[84] = 75.0;
    instrument.abort_requested = 0;
    instrument.display_live = true;
    window = 0.75;
    host.trace->Forget();
    journal.Clear();
  }
  Variant Measure(std::int32_t id = 84) {
    return GetTimeSpannedCalibrantPeakTimes(parts, host, id, log, data, 2, window);
  }
  std::vector<std::string> RoutinesEntered() const {
    std::vector<std::string> entered;
    for (const std::string& line : host.trace->lines) {
      if (line.rfind("Entry ", 0) == 0) entered.push_back(line);
    }
    return entered;
  }

  double window = 0.75;
};

TEST_F(TimeSpannedPeakTimes, CallTheirRoutinesInOrder) {
  ASSERT_TRUE(Measure().IsArray());
  EXPECT_THAT(RoutinesEntered(),
              ElementsAre("Entry " + kName + " 9", "Entry InitializeTimesArray 9",
                          "Entry ReadAbundanceScalarsFromXML 9",
                          "Entry UseFirstSpectrumToFindTimesAndVoltages 9",
                          "Entry SetTheseVoltagesAndGetTimesAndAbundances 9", kByMass,
                          "Entry AverageThePeakAttributes 9", "Entry WriteDataToSpotFireLog 9"));
}

TEST_F(TimeSpannedPeakTimes, ReadWhatTheyNeedBeforeTheSurveyInOrder) {
  window = -1.0;
  Measure();
  const Calls expected = InOrder({fakes::SetpointRead(84),
                                  SettingRead("Calibration/AIC_RF_HighValue"),
                                  SettingRead("Calibration/AIC_RF_LowValue"),
                                  SettingRead("Calibration/AIC_RF_Step"),
                                  SettingRead("PeakHandling/PeakFindWindowInPercentT"),
                                  Logged(),
                                  FlagRead("ObfuscateCalibAlg"),
                                  BandLimitRead("AIC_TargetMaxAb"),
                                  Logged(),
                                  fakes::SetpointRead(117),
                                  {"DataDictionary.GetModeName"},
                                  {"AcqController.GetConfigurationName"},
                                  {"AcqController.GetCalibrantMasses(3,MS,Standard)"},
                                  fakes::Repeated(3, FlagRead("AIC_UseAbScalars")),
                                  Logged(),
                                  BandLimitRead("AIC_TargetMaxAb"),
                                  fakes::SetpointRead(84),
                                  FlagRead("EnableAICAltSPPlugValues")});
  const Calls calls = CallsMade();
  ASSERT_GE(calls.size(), expected.size());
  EXPECT_THAT(Calls(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(expected.size())),
              ElementsAreArray(expected));
}

TEST_F(TimeSpannedPeakTimes, PutTheSetpointBackBehindTheCollectionAndBeforeTheAveraging) {
  Measure();
  const Calls calls = journal.entries();
  const auto last_spectrum =
      std::find(calls.rbegin(), calls.rend(), SpectrumTaken("0.75").front()).base();
  const auto averaging =
      std::find(calls.begin(), calls.end(), "Trace.Entry(AverageThePeakAttributes,9)");
  ASSERT_LT(last_spectrum, averaging);
  Calls between(last_spectrum, averaging);
  between.erase(std::remove_if(between.begin(), between.end(),
                               [](const auto& call) { return call.rfind("Trace.", 0) == 0; }),
                between.end());
  EXPECT_THAT(between, ElementsAreArray(InOrder({Logged(7), RfWritten("75")})));
  EXPECT_EQ(RfValue(), 75.0);
}

TEST_F(TimeSpannedPeakTimes, LogARunByteByByte) {
  instrument.flags["ObfuscateCalibAlg"] = "1";
  Measure();
  EXPECT_EQ(Log(),
            "NumSteps calculated to be 1; ReDim(1)\r\n"
            "Freeze\r\n"
            "Abundance Threshold = 200000\r\n"
            "Scalars for Ab Profile, 1, 1, 1\r\n"
            "\r\n"
            "\r\n"
            "Survey: Voltage, [Time, Abundance]s \r\n"
            "20, [10300, 150000], [20300, 150000], [30300, 150000]\r\n"
            "22, [10300, 150000], [20300, 150000], [30300, 150000]\r\n"
            "\r\n"
            "\r\n"
            "Collecting tofs for Averaging...\r\n"
            "TOFs [MassIdx, OctRF voltage, tofs]\r\n"
            "0, 20, 10300, 10300\r\n"
            "1, 20, 20300, 20300\r\n"
            "2, 20, 30300, 30300\r\n"
            "\r\n"
            "Abundances [MassIdx, OctRF voltage, Abundances]\r\n"
            "0, 20, 150000, 150000\r\n"
            "1, 20, 150000, 150000\r\n"
            "2, 20, 150000, 150000\r\n"
            "\r\n"
            "Stored raw measured times\r\n"
            "Averages (and times used for averaging) [MassIdx, Average, TOFs]\r\n"
            "0, 10300, 10300, 10300\r\n"
            "1, 20300, 20300, 20300\r\n"
            "2, 30300, 30300, 30300\r\n"
            "AIC; writing file with Calibration data for Tune Report\r\n"
            "Unfreeze\r\n");
}

TEST_F(TimeSpannedPeakTimes, TraceTheirProgress) {
  Measure();
  EXPECT_THAT(TextsOf(kName), ElementsAre("dPeakFindTimeWindow = 0.75", "1.2.3",
                                          "Saving varAveragedTimes[0, 2] to "
                                          "GetTimeSpannedCalibrantPeakTimes[0, 2]",
                                          "Successfully saved varAveragedTimes"));
  EXPECT_EQ(host.trace->lines.back(), "Exit " + kName + " 9");
}

TEST_F(TimeSpannedPeakTimes, LogTheNumberOfStepsUnrounded) {
  instrument.settings["Calibration/AIC_RF_HighValue"] = 27.0;
  Measure();
  EXPECT_THAT(Log(), StartsWith("NumSteps calculated to be 3.5; ReDim(3.5)\r\n"));
}

TEST_F(TimeSpannedPeakTimes, AreTheAveragesOfTheCollectedSpectra) {
  // Two of the survey, two of the walk, then two a mass.
  instrument.spectrum_shift_ns = {9.0, 9.0, 9.0, 9.0, 0.5, 1.0, 1.0, 2.0, 0.0, 0.25};
  times = Measure();
  ASSERT_TRUE(times.IsArray());
  EXPECT_EQ(AsDoubleArray(times), (BoundedArray<double>{10300.75, 20301.5, 30300.125}));
  EXPECT_EQ(data.measured_times(0, 0), 10300.5);
  EXPECT_EQ(data.measured_times(1, 0), 10301.0);
  EXPECT_EQ(data.measured_times(1, 1), 20302.0);
  EXPECT_EQ(data.measured_times(1, 2), 30300.25);
}

TEST_F(TimeSpannedPeakTimes, WriteTuneReportAndDataSet) {
  Measure();
  EXPECT_THAT(host.files.at(kTuneReport).bytes, StartsWith("10300, 20300, 30300\r\n"));
  EXPECT_THAT(host.files.at(kDataSet).bytes,
              EndsWith("20240229, 130515, 2, 1, 30300, 1150000\r\n"));
}

TEST_F(TimeSpannedPeakTimes, SurviveAReportAndADataSetThatCannotBeWritten) {
  journal.fail_operation = "Host.CreateFileSystem";
  EXPECT_TRUE(Measure().IsArray());
  EXPECT_EQ(host.files.count(kTuneReport), 0U);
  EXPECT_EQ(host.files.count(kDataSet), 0U);
}

TEST_F(TimeSpannedPeakTimes, CollectByMeasurementOnlyForExactlyYes) {
  for (const char* other : {"", "yes", "No", "1", "Yes "}) {
    instrument.flags["AIC_MinimizeImpactOfDriftOnCalibPointCollection"] = other;
    StartAfresh();
    Measure();
    EXPECT_THAT(RoutinesEntered(), Contains(kByMass)) << other;
    EXPECT_THAT(RoutinesEntered(), Not(Contains(kByMeasurement))) << other;
  }
  instrument.flags["AIC_MinimizeImpactOfDriftOnCalibPointCollection"] = "Yes";
  StartAfresh();
  Measure();
  EXPECT_THAT(RoutinesEntered(), Contains(kByMeasurement));
  EXPECT_THAT(RoutinesEntered(), Not(Contains(kByMass)));
}

struct Way {
  const char* name;
  std::int32_t setpoint_id;
  const char* by_measurement;
  const char* fast;
  const char* skip;
  double volts_found;
};

class TimeSpannedPeakTimesOfAWay : public TimeSpannedPeakTimes,
                                   public ::testing::WithParamInterface<Way> {};

// 250,000 counts at the entry of a search at 83, 200,000 at 80 V.
TEST_P(TimeSpannedPeakTimesOfAWay, AreTheSameInEveryWay) {
  const Way& way = GetParam();
  instrument.abundance_at = [](double, double volts) { return 2500.0 * volts; };
  instrument.searched_rf_value = [](double) { return 80.25; };
  instrument.setpoints[83] = 100.0;
  instrument.settings["Calibration/AIC_SetpointToUse"] = way.setpoint_id;
  instrument.flags["AIC_MinimizeImpactOfDriftOnCalibPointCollection"] = way.by_measurement;
  instrument.flags["AIC_RunFastVersion"] = way.fast;
  instrument.flags["AIC_SkipFinalLinearAbAdj"] = way.skip;
  times = Measure(way.setpoint_id);
  ASSERT_TRUE(times.IsArray()) << LastTrace();
  EXPECT_EQ(AsDoubleArray(times), (BoundedArray<double>{10300.0, 20300.0, 30300.0}));
  EXPECT_THAT(ChosenVoltages(), ::testing::Each(::testing::DoubleNear(way.volts_found, 1e-9)));
  EXPECT_EQ(RfValue(way.setpoint_id), way.setpoint_id == 83 ? 100.0 : 75.0);
  EXPECT_THAT(RoutinesEntered(),
              Contains(std::string(way.by_measurement) == "Yes" ? kByMeasurement : kByMass));
}

INSTANTIATE_TEST_SUITE_P(
    Ways, TimeSpannedPeakTimesOfAWay,
    ::testing::Values(Way{"RampByMass", 84, "No", "No", "No", 22.0},
                      Way{"RampByMeasurement", 84, "Yes", "No", "No", 22.0},
                      Way{"ParserByMass", 83, "No", "No", "No", 79.95},
                      Way{"ParserByMassSkipped", 83, "No", "No", "Yes", 80.25},
                      Way{"FirmwareByMass", 83, "No", "Yes", "No", 79.95},
                      Way{"FirmwareByMeasurement", 83, "Yes", "Yes", "No", 79.95},
                      Way{"FirmwareByMassSkipped", 83, "No", "Yes", "Yes", 80.25}),
    [](const auto& one) { return std::string(one.param.name); });

TEST_F(TimeSpannedPeakTimes, UsePlugValuesWithoutASurvey) {
  instrument.flags["EnableAICAltSPPlugValues"] = "Yes";
  instrument.settings["Calibration/AICAltSPPlugValueForMass2"] = 33.5;
  instrument.sample_masses = {100.0, 400.0, 900.0, 1600.0, 2500.0, 3600.0};
  data.expected_masses = Variant::DoubleArray(instrument.sample_masses);
  data.measured_times.ReDim({0, 1}, {0, 5});
  EXPECT_TRUE(Measure().IsArray());
  EXPECT_EQ(instrument.spectra_taken, 12);
  EXPECT_EQ(NumberOf("SetpointTable.SetSetpoint(84,5,33.5)"), 1U);
}

TEST_F(TimeSpannedPeakTimes, ReplaceAWindowOfMinusOneOnceForAllTheyCall) {
  window = -1.0;
  Measure();
  EXPECT_EQ(window, 0.5);
  EXPECT_EQ(NumberOf("CalibSettings.GetValue(PeakHandling"), 1U);
  EXPECT_EQ(NumberOf(SpectrumTaken("0.5").front()), 8U);
  EXPECT_EQ(TextsOf(kName).front(), "dPeakFindTimeWindow = 0.5");
}

TEST_F(TimeSpannedPeakTimes, RoundTheMaximumHalvesToEvenButLogItAsItIs) {
  instrument.settings["Calibration/AIC_TargetMaxAb"] = 150000.5;
  Measure();
  // The rounded maximum, 150000, is not above the readings: no step is eligible.
  EXPECT_THAT(Log(), HasSubstr("Abundance Threshold = 150000.5\r\n"));
  EXPECT_THAT(TextsOf("UseFirstSpectrumToFindTimesAndVoltages"),
              Not(Contains(StartsWith("Storing"))));
  instrument.settings["Calibration/AIC_TargetMaxAb"] = 150001.5;
  StartAfresh();
  Measure();
  EXPECT_THAT(TextsOf("UseFirstSpectrumToFindTimesAndVoltages"), Contains(StartsWith("Storing")));
}

TEST_F(TimeSpannedPeakTimes, EndBeforeTheSurveyAtAStepOfZero) {
  instrument.settings["Calibration/AIC_RF_Step"] = 0.0;
  EXPECT_TRUE(Measure().IsEmpty());
  EXPECT_THAT(TextsOf(kName).back(), "error[11] in " + kName + "(): Division by zero");
  EXPECT_THAT(RoutinesEntered(), ElementsAre("Entry " + kName + " 9"));
  EXPECT_EQ(Log(), "");
}

TEST_F(TimeSpannedPeakTimes, NeedMassesThatACalibrationHasStored) {
  data.expected_masses = {};
  EXPECT_TRUE(Measure().IsEmpty());
  EXPECT_EQ(LastTrace(), "error[13] in " + kName + "(): Type mismatch");
}

TEST_F(TimeSpannedPeakTimes, EndAtMeasuredTimesForFewerSpectra) {
  data.measured_times.ReDim({0, 0}, {0, 2});
  EXPECT_TRUE(Measure().IsEmpty());
  EXPECT_EQ(LastTrace(), "error[9] in " + kName + "(): Subscript out of range");
  EXPECT_EQ(data.measured_times(0, 2), 30300.0);
  EXPECT_EQ(RfValue(), 20.0) << "the setpoint is not put back";
}

// --- The display.

TEST_F(TimeSpannedPeakTimes, FreezeTheDisplayFromBeforeTheSurveyToTheEnd) {
  instrument.flags["ObfuscateCalibAlg"] = "1";
  std::vector<bool> live;
  instrument.on_spectrum = [&] { live.push_back(instrument.display_live); };
  Measure();
  EXPECT_THAT(live, Not(Contains(true)));
  EXPECT_EQ(live.size(), 10U);
  EXPECT_TRUE(instrument.display_live);
  EXPECT_THAT(journal.Only({"SpectrumDisplay."}),
              ElementsAre("SpectrumDisplay.SetDisplayUpdate(False)",
                          "SpectrumDisplay.SetDisplayUpdate(True)"));
}

TEST_F(TimeSpannedPeakTimes, FreezeNothingUnlessTheFlagIsExactly1) {
  for (const char* other : {"", "Yes", "1 ", "01", "3"}) {
    instrument.flags["ObfuscateCalibAlg"] = other;
    StartAfresh();
    Measure();
    EXPECT_EQ(NumberOf("SpectrumDisplay."), 0U) << other;
  }
  EXPECT_THAT(Log(), Not(HasSubstr("reeze")));
}

// The fifth spectrum of a survey shows the display and freezes it again; nothing unfreezes it.
TEST_F(TimeSpannedPeakTimes, LeaveTheDisplayFrozenAfterASuccessWithTheFlagAt2) {
  instrument.flags["ObfuscateCalibAlg"] = "2";
  instrument.settings["Calibration/AIC_RF_HighValue"] = 28.0;
  EXPECT_TRUE(Measure().IsArray());
  EXPECT_FALSE(instrument.display_live);
  EXPECT_THAT(Log(), HasSubstr("Unfreeze\r\nFreeze\r\n"));
}

TEST_F(TimeSpannedPeakTimes, EndAtADisplayThatIsNotThere) {
  instrument.flags["ObfuscateCalibAlg"] = "1";
  instrument.has_display = false;
  EXPECT_TRUE(Measure().IsEmpty());
  EXPECT_EQ(LastTrace(),
            "error[91] in " + kName + "(): Object variable or With block variable not set");
  EXPECT_EQ(instrument.spectra_taken, 0);
}

// --- What stays in place after a failure.

TEST_F(TimeSpannedPeakTimes, LeaveSetpointAndFrozenDisplayAfterAnAbort) {
  instrument.flags["ObfuscateCalibAlg"] = "1";
  instrument.on_spectrum = [&] {
    if (instrument.spectra_taken == 4) instrument.abort_requested = -1;
  };
  EXPECT_TRUE(Measure().IsEmpty());
  EXPECT_THAT(host.trace->Texts(),
              ::testing::IsSupersetOf(std::vector<std::string>{
                  "error[1] in CollectAdditionalPointsForPurposesOfAveraging_byMass(): User "
                  "aborted",
                  "error[1] in " + kName + "(): User aborted"}));
  EXPECT_EQ(RfValue(), 20.0);
  EXPECT_FALSE(instrument.display_live);
  EXPECT_EQ(host.files.at(kLogPath).open_streams, 1);
  EXPECT_EQ(data.peaks(0).Abundance, 150000) << "what was stored stays";
}

TEST_F(TimeSpannedPeakTimes, ReleaseTheDisplayThatAnEarlierFailureLeftFrozen) {
  instrument.flags["ObfuscateCalibAlg"] = "1";
  instrument.on_spectrum = [&] { instrument.abort_requested = -1; };
  EXPECT_TRUE(Measure().IsEmpty());
  EXPECT_FALSE(instrument.display_live);
  instrument.on_spectrum = [] {};
  instrument.abort_requested = 0;
  EXPECT_TRUE(Measure().IsArray());
  EXPECT_TRUE(instrument.display_live);
}

TEST_F(TimeSpannedPeakTimes, TakeTheSetpointThatAFailureLeftForTheValueAtEntry) {
  instrument.on_spectrum = [&] { instrument.abort_requested = -1; };
  EXPECT_TRUE(Measure().IsEmpty());
  instrument.on_spectrum = [] {};
  instrument.abort_requested = 0;
  EXPECT_TRUE(Measure().IsArray());
  EXPECT_EQ(RfValue(), 22.0);
}

// What the survey of all voltages, the averaging and the data set swallow costs nothing. Every
// other failure leaves no times and one line.
TEST_F(TimeSpannedPeakTimes, AreEmptyAndTracedOrWholeForEveryFailure) {
  Variant answer;
  int empty = 0;
  int whole = 0;
  fakes::FailEachCall(
      journal, [&] { StartAfresh(); }, [&] { answer = Measure(); },
      [&](const std::string&) {
        const auto texts = TextsOf(kName);
        const bool told =
            !texts.empty() && texts.back() == "error[4711] in " + kName + "(): Injected fault";
        EXPECT_EQ(answer.IsEmpty(), told);
        if (answer.IsArray()) {
          EXPECT_EQ(RfValue(), 75.0) << "put back";
        }
        EXPECT_EQ(CurrentModuleState().trace.call_stack.size(), 1U);
        ++(answer.IsEmpty() ? empty : whole);
      });
  EXPECT_GT(empty, 100);
  EXPECT_GT(whole, 30);
}

}  // namespace
}  // namespace tof
