#include "component/calibration/driver.h"

#include "component/automation/convert.h"
#include "tests/support/calibration_fixture.h"
#include "tests/support/call_list.h"

namespace tof {
namespace {

using fakes::CallList;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Pair;

const std::string kCalibrationLog = "CalibrationLog_20240229_130509.txt";

class Driver : public fakes::CalibrationFixture {
 protected:
  // Stored values instead of an estimate from peaks, for tests that look elsewhere.
  void SkipTheEstimate() {
    instrument.flags["SkipCalcLikelyABeforeCalibration"] = "Yes";
    instrument.flags["SkipCalcLikelyABeforeCalibration_LikelyA"] = "0.65";
    instrument.flags["SkipCalcLikelyABeforeCalibration_t0"] = "0.3";
  }

  // What the driver itself traced, without the lines of the routines it calls.
  std::vector<std::string> DriverTexts() const {
    const std::string begin = "calibrateTOFMassAxis 4: ";
    std::vector<std::string> texts;
    for (const std::string& line : host.trace->lines) {
      if (line.rfind(begin, 0) == 0) texts.push_back(line.substr(begin.size()));
    }
    return texts;
  }

  std::ptrdiff_t Traced(const std::string& text) const {
    const auto texts = DriverTexts();
    return std::count(texts.begin(), texts.end(), text);
  }

  std::vector<std::string> RoutinesEntered() const {
    std::vector<std::string> names;
    for (const std::string& line : host.trace->lines) {
      if (line.rfind("Entry ", 0) == 0) names.push_back(line.substr(6));
    }
    return names;
  }

  std::size_t Calls(const std::string& call) const { return journal.Only({call}).size(); }

  // The routine itself, for what the object does not show.
  std::shared_ptr<MassCalCoefficients> CalibrateWith(CalibrationState& state) {
    Instrument parts = Collaborators();
    return calibrateTOFMassAxis(parts, host, state,
                                {.nAvgSpectra = n_spectra,
                                 .varExpectedMasses = masses,
                                 .varAveragedMeasuredTimes = times,
                                 .bSuppressAbImmuneCalib = suppress_aic,
                                 .dTradWeighting = optional.dTradWeighting,
                                 .dPeakFindTimeWindow = optional.dPeakFindTimeWindow},
                                events);
  }
};

CallList LoggingCalls(int n_times) {
  return CallList()
      .Call("Host.Now")
      .Read(149)
      .Call("Host.DateTimeText")
      .Call("CalibLogFiles.OpenLogFile(CalibrationData,TXT)")
      .Read(149)
      .Call("TextStream.WriteLine(CalibrationData_1.TXT)")
      .Times(n_times, "MassCalCoefficients.TimeToMass")
      .Times(3, "AcqController.GetColumnStatistics")
      .Times(3, "TextStream.WriteLine(CalibrationData_1.TXT)")
      .Call("TextStream.Close(CalibrationData_1.TXT)")
      .Call("Create.InstrumentPaths")
      .Call("InstrumentPaths.GetBaseFolder")
      .Call("Host.CreateFileSystem")
      .Call("FileSystem.FileExists(TuneReportCalibData.txt)")
      .Call("FileSystem.OpenForAppending(TuneReportCalibData.txt)")
      .Times(2, "TextStream.WriteLine(TuneReportCalibData.txt)")
      .Call("TextStream.Close(TuneReportCalibData.txt)");
}

TEST_F(Driver, CalibratesAndPutsTheFittedCoefficientsInForce) {
  const auto coefficients = Calibrate();
  ASSERT_NE(coefficients, nullptr);
  EXPECT_THAT(events.events, IsEmpty());
  EXPECT_EQ(coefficients, instrument.in_force);
  EXPECT_NEAR(coefficients->GetCoefficientRecord()[0], instrument.true_a_per_ns, 1e-12);
  EXPECT_NEAR(coefficients->GetCoefficientRecord()[1], instrument.true_t0_ns, 1e-6);
}

TEST_F(Driver, CallsItsCollaboratorsInThisOrder) {
  host.trace->on = false;
  n_spectra = 1;
  masses = Variant::DoubleArray({118.0863, 322.0481});
  SkipTheEstimate();
  ASSERT_NE(Calibrate(), nullptr);

  CallList open_calibration_log = CallList()
                                      .Call("Host.CreateFileSystem")
                                      .Call("Create.InstrumentPaths")
                                      .Call("InstrumentPaths.GetBaseFolder")
                                      .Call("Host.Now")
                                      .Call("FileSystem.OpenForAppending(" + kCalibrationLog + ")")
                                      .Call("Create.AcqController")
                                      .Call("AcqController.ReadSetpoint(149)")
                                      .Call("Host.Now")
                                      .Call("Host.DateTimeText")
                                      .Call("TextStream.WriteLine(" + kCalibrationLog + ")");
  CallList decide = CallList()
                        .Flag("SkipTOFCalibrationDuringAutotunes")
                        .Call("DataDictionary.GetFlagKey")
                        .Flag("AICDisabled")
                        .Flag("AIC_AlwaysRunOnly")
                        .Call("SpecParser.ShouldAvoidAIC(10)")
                        .Call("AcqController.IsAbortRequested")
                        .Setting("PeakHandling/PeakFindWindowInPercentT")
                        .Flag("Enable1700mzTune");
  CallList likely_a = CallList()
                          .Read(69)
                          .Flag("SkipTOFCalibrationDuringAutotunes")
                          .Flag("SkipCalcLikelyABeforeCalibration")
                          .Flag("SkipCalcLikelyABeforeCalibration_LikelyA")
                          .Flag("SkipCalcLikelyABeforeCalibration_t0")
                          .Call("AcqController.SetLikelyAAndT0")
                          .Call("AcqController.IsAbortRequested");
  CallList prepare_fit = CallList()
                             .Call("MassCalCoefficients.GetBinWidth")
                             .Call("MassCalCoefficients.GetCalInfo")
                             .Call("DataDictionary.GetTimeValue")
                             .Read(119)
                             .Call("MassCalCoefficients.SetCalInfo")
                             .Call("AcqController.IsAbortRequested")
                             .Flag("TriggerError_caliblib_calibrateTOFMassAxis")
                             .Flag("UseCalibrationAlgInMTObj");
  CallList aic_line = CallList().Call("DataDictionary.GetFlagKey").Flag("AICDisabled");
  CallList acquire = CallList()
                         .Call("SpecParser.GetCalibrantPeakAttributes(0.5)")
                         .Call("AcqController.IsAbortRequested")
                         .Call("SpecParser.GetCalibrantPeakAttributes(0.5)")
                         .Call("AcqController.IsAbortRequested")
                         .Append(aic_line)
                         .Flag("TraceAICPeakAttributes")
                         .Append(aic_line)
                         .Flag("TraceAICPeakAttributes")
                         .Append(aic_line)
                         .Append(aic_line)
                         .Call("Host.CreateFileSystem")
                         .Call("Create.InstrumentPaths")
                         .Call("InstrumentPaths.GetBaseFolder")
                         .Call("FileSystem.CreateTextFile(TuneReportCalibData.txt)")
                         .Times(3, "TextStream.WriteLine(TuneReportCalibData.txt)")
                         .Call("TextStream.Close(TuneReportCalibData.txt)");
  const CallList dump = fakes::DumpCalls(kCalibrationLog);
  CallList expected = CallList()
                          .Append(fakes::StoreCalls())
                          .Append(decide)
                          .Append(likely_a)
                          .Call("AcqController.GetCurrentMassCalObject")
                          .Append(open_calibration_log)
                          .Append(dump)
                          .Append(prepare_fit)
                          .Append(acquire)
                          .Append(dump)
                          .Call("MassCalCoefficients.Calibrate")
                          .Append(dump)
                          .Append(fakes::VerifyCalls())
                          .Call("AcqController.SetCalibCoefficients")
                          .Flag("UseCalibrationAlgInMTObj")
                          .Append(LoggingCalls(2))
                          .Flag("Enable1700mzTune")
                          .Append(fakes::RestoreCalls("4", "True", "1", "11"));
  EXPECT_THAT(journal.entries(), ElementsAreArray(expected.calls()));
}

TEST_F(Driver, TracesItsProgressInThisOrder) {
  n_spectra = 1;
  masses = Variant::DoubleArray({118.0863, 322.0481});
  SkipTheEstimate();
  ASSERT_NE(Calibrate(), nullptr);
  EXPECT_THAT(
      DriverTexts(),
      ElementsAre("0.4", "bEnableAbImmuneCalib[False]", "0.5", "dPeakFindTimeWindow = 0.5",
                  "pLocalCopyOfCurrentMTCalcObjFromDD.BinWidth = 0.25",
                  "calInfo.PolyTermPowerUseFlag = 0", "1.1", "1.2", "1.3", "1.4", "1.5",
                  "AveragedMeasuredCalibrantTime[0]: 17018.080068699",
                  "AveragedMeasuredCalibrantTime[1]: 27908.7671522768", "1.6", "1.7",
                  "Calling Calibrate()", "Back from Calibrate()", "1.8",
                  "Calibrate() returned good looking coefficients.", "1.9", "8", "9", "11"));
}

TEST_F(Driver, EntersItsRoutinesInThisOrder) {
  SkipTheEstimate();
  ASSERT_NE(Calibrate(), nullptr);
  EXPECT_THAT(RoutinesEntered(),
              ElementsAre("calibrateTOFMassAxis 4", "StorePreAutotuneInstrumentState 9",
                          "EnsureProperInstrumentStateForCalibration 9",
                          "ApplyLikelyAAt0Coefficients 9", "CalculateLikelyAAndt0Values 2",
                          "TraceDumpCoefficients 1", "GetAveragedTimesForCalibration 9",
                          "InitializeTimesArray 9", "AverageThePeakAttributes 9",
                          "TraceDumpCoefficients 1", "TraceDumpCoefficients 1",
                          "WriteCalibrationLoggingInfo 9", "RestorePreAutotuneInstrumentState 9"));
}

TEST_F(Driver, CalibratesTwiceOnOneObjectIntoOneCalibrationLog) {
  ASSERT_NE(Calibrate(), nullptr);
  ASSERT_NE(Calibrate(), nullptr);
  EXPECT_THAT(events.events, IsEmpty());
  EXPECT_EQ(Calls("FileSystem.OpenForAppending(CalibrationLog"), 1U);
  EXPECT_EQ(Calls("CalibLogFiles.OpenLogFile(CalibrationData"), 2U);
}

// --- Whether to calibrate at all.

TEST_F(Driver, ReturnsNoneWithoutMeasuringOrRestoringWhenAutotunesSkipIt) {
  instrument.flags["SkipTOFCalibrationDuringAutotunes"] = "Yes";
  host.trace->on = false;
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, IsEmpty());
  EXPECT_THAT(journal.entries(), ElementsAreArray(CallList()
                                                      .Append(fakes::StoreCalls())
                                                      .Flag("SkipTOFCalibrationDuringAutotunes")
                                                      .calls()));
}

TEST_F(Driver, TracesTheEarlyReturn) {
  instrument.flags["SkipTOFCalibrationDuringAutotunes"] = "Yes";
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(DriverTexts(), ElementsAre("1", "2"));
  EXPECT_EQ(host.trace->lines.back(), "Exit calibrateTOFMassAxis 4");
}

TEST_F(Driver, StoresTheMassesBeforeTheEarlyReturn) {
  instrument.flags["SkipTOFCalibrationDuringAutotunes"] = "Yes";
  CalibrationState state;
  EXPECT_EQ(CalibrateWith(state), nullptr);
  EXPECT_EQ(state.data.expected_masses, masses);
  EXPECT_EQ(state.instrument_state.setpoint128, 11);
}

TEST_F(Driver, CalibratesByHandWhenAutotunesSkipIt) {
  instrument.flags["SkipTOFCalibrationDuringAutotunes"] = "Yes";
  optional.bThisIsAManualCalibration = true;
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_THAT(events.events, IsEmpty());
  EXPECT_EQ(DriverTexts().front(), "1");
  EXPECT_EQ(Traced("2"), 0);
  EXPECT_EQ(Calls("AcqController.SetLikelyAAndT0"), 0U);
}

TEST_F(Driver, TakesASkipFlagInLowerCaseAsNotSet) {
  instrument.flags["SkipTOFCalibrationDuringAutotunes"] = "yes";
  EXPECT_NE(Calibrate(), nullptr);
}

TEST_F(Driver, NeverReadsWhetherItIsAllowedToFail) {
  optional.bOKtoFail = true;
  instrument.bad_fits = {0.5, 0.5};
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_EQ(events.events.size(), 1U);
}

// --- The decision on AIC.

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
  EXPECT_THAT(Log(1),
              ::testing::StartsWith("===AIC 20240229 at 13:05:09===\r\nGainChannel = 1\r\n"));
}

TEST_F(DriverWithAic, OpensTheAicLogBehindTheDecisionAndBeforeTheAbortTest) {
  host.trace->on = false;
  Calibrate();
  const auto& calls = journal.entries();
  const auto first = std::find(calls.begin(), calls.end(), "SpecParser.ShouldAvoidAIC(10)");
  const CallList expected = CallList()
                                .Read(18)
                                .Read(149)
                                .Setting("Calibration/AIC_SetpointToUse")
                                .Flag("AICLoggingEnabled")
                                .Read(149)
                                .Call("Host.Now")
                                .Call("Host.DateTimeText")
                                .Call("CalibLogFiles.OpenLogFile(AIC,TXT)")
                                .Call("AcqController.IsAbortRequested");
  ASSERT_NE(first, calls.end());
  EXPECT_THAT(std::vector<std::string>(
                  first + 1, first + 1 + static_cast<std::ptrdiff_t>(expected.calls().size())),
              ElementsAreArray(expected.calls()));
}

TEST_F(DriverWithAic, OpensNoAicLogUnlessTheFlagIs3000) {
  instrument.flags["AICLoggingEnabled"] = "Yes";
  Calibrate();
  EXPECT_EQ(Calls("CalibLogFiles.OpenLogFile(AIC"), 0U);
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
  EXPECT_EQ(Calls("TextStream.Close"), 0U);
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

TEST_F(Driver, LeavesTheGainChannelAloneWithoutAic) {
  instrument.setpoints[18] = std::int16_t{2};
  instrument.setpoints[149] = std::int16_t{3};
  Calibrate();
  EXPECT_THAT(journal.Only({"SetpointTable.SetSetpoint(149"}),
              ElementsAre("SetpointTable.SetSetpoint(149,2,3)"));
}

// --- Arguments that come back.

struct WindowCase {
  const char* name;
  double given;
  bool has_setting;
  double from_parser;
  double returned;
};

class PeakFindWindow : public Driver, public ::testing::WithParamInterface<WindowCase> {};

TEST_P(PeakFindWindow, ComesBackAsTheValueUsed) {
  optional.dPeakFindTimeWindow = GetParam().given;
  if (!GetParam().has_setting) instrument.settings.erase("PeakHandling/PeakFindWindowInPercentT");
  instrument.peak_find_width_from_parser = GetParam().from_parser;
  ASSERT_NE(Calibrate(), nullptr);
  EXPECT_EQ(optional.dPeakFindTimeWindow, GetParam().returned);
  const std::string call =
      "SpecParser.GetCalibrantPeakAttributes(" + ToText(Variant(GetParam().returned)) + ")";
  EXPECT_EQ(Calls(call), 4U);  // one that is not stored and three that are
}

INSTANTIATE_TEST_SUITE_P(
    Cases, PeakFindWindow,
    ::testing::Values(WindowCase{"FromTheSettings", -1.0, true, 0.0, 0.5},
                      WindowCase{"TenWithoutASetting", -1.0, false, 0.0, 10.0},
                      WindowCase{"TheParsersWithoutASetting", -1.0, false, 7.0, 7.0},
                      WindowCase{"TheSettingBeforeTheParsers", -1.0, true, 7.0, 0.5},
                      WindowCase{"GivenByTheCaller", 0.25, true, 7.0, 0.25},
                      WindowCase{"AnotherNegativeOneAsGiven", -2.0, true, 0.0, -2.0}),
    [](const auto& one) { return std::string(one.param.name); });

TEST_F(Driver, ReturnsTheAveragedTimesIndexedFromZero) {
  instrument.spectrum_shift_ns = {5.0, 1.0, 2.0, 3.0};
  Variant::Array shifted(5, 8);
  shifted(5) = Variant(118.0863);
  shifted(6) = Variant("322.0481");
  shifted(7) = Variant(std::int32_t{622});
  shifted(8) = Variant(922.0098);
  masses = shifted;
  ASSERT_NE(Calibrate(), nullptr);
  const auto& averaged = AsDoubleArray(times);
  EXPECT_EQ(averaged.LBound(), 0);
  ASSERT_EQ(averaged.UBound(), 3);
  EXPECT_DOUBLE_EQ(averaged(0), instrument.TrueTime(118.0863) + 2.0);
  EXPECT_DOUBLE_EQ(averaged(2), instrument.TrueTime(622.0) + 2.0);
}

TEST_F(Driver, EmptiesTheAveragedTimesWhenTheAcquisitionFails) {
  times = Variant(1.0);
  journal.fail_operation = "SpecParser.GetCalibrantPeakAttributes";
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_TRUE(times.IsEmpty());
  EXPECT_THAT(events.events, ElementsAre(Pair(13, "Type mismatch")));
}

TEST_F(Driver, LeavesTheAveragedTimesAloneWhenItDoesNotGetToThem) {
  times = Variant(1.0);
  journal.fail_operation = "SpecParser.ShouldAvoidAIC";
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_EQ(times, Variant(1.0));
}

TEST_F(Driver, AsksForAnAbortOnceMoreOnlyWhenThereAreNoTimes) {
  ASSERT_NE(Calibrate(), nullptr);
  const std::size_t polls = Calls("AcqController.IsAbortRequested");
  EXPECT_EQ(polls, 9U);  // step by step: start, likely A, fit, two a spectrum
  journal.Clear();
  journal.fail_operation = "SpecParser.GetCalibrantPeakAttributes";
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_EQ(Calls("AcqController.IsAbortRequested"), 4U);
}

// --- The calibration information record.

struct WeightingCase {
  const char* name;
  double weighting;
  int power_flag;
  int flag_afterwards;
};

class TradWeighting : public Driver, public ::testing::WithParamInterface<WeightingCase> {};

TEST_P(TradWeighting, ChoosesThePowerUseFlagOfTheFit) {
  optional.dTradWeighting = GetParam().weighting;
  ASSERT_NE(Calibrate(), nullptr);
  EXPECT_EQ(Traced("calInfo.PolyTermPowerUseFlag = " + std::to_string(GetParam().power_flag)), 1);
  EXPECT_EQ(instrument.in_force->info.PolyTermPowerUseFlag, GetParam().flag_afterwards);
  EXPECT_EQ(Calls("CalibSettings.GetValue(Calibration/UseThisPowerFlag"),
            GetParam().power_flag == 0 ? 0U : 1U);
}

INSTANTIATE_TEST_SUITE_P(Cases, TradWeighting,
                         ::testing::Values(WeightingCase{"NotGiven", -1.0, 0, 0},
                                           WeightingCase{"Zero", 0.0, 5, 0},
                                           WeightingCase{"One", 1.0, 5, 0},
                                           WeightingCase{"AHalf", 0.5, 0, 0}),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(Driver, KeepsThePowerUseFlagWhenTheOldAlgorithmIsChosen) {
  optional.dTradWeighting = 1.0;
  instrument.flags["UseCalibrationAlgInMTObj"] = "No";
  ASSERT_NE(Calibrate(), nullptr);
  EXPECT_EQ(instrument.in_force->info.PolyTermPowerUseFlag, 5);
}

TEST_F(Driver, RoundsThePowerUseFlagHalvesToEven) {
  optional.dTradWeighting = 0.0;
  instrument.settings["Calibration/UseThisPowerFlag"] = 2.5;
  ASSERT_NE(Calibrate(), nullptr);
  EXPECT_EQ(Traced("calInfo.PolyTermPowerUseFlag = 2"), 1);
}

TEST_F(Driver, RefusesAPowerUseFlagBeyond32Bits) {
  optional.dTradWeighting = 0.0;
  instrument.settings["Calibration/UseThisPowerFlag"] = 3e9;
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(Pair(6, "Overflow")));
}

TEST_F(Driver, WritesTimeAndSetpointIntoTheRecordAndCarriesTheRestThrough) {
  CalInfo before;
  before.unused0.fill(std::byte{0xA5});
  before.PolyTermPowerUseFlag = 63;
  before.PolyTermsFlags = 0x1F;
  before.TradWeighting = 2;
  before.PolyWeighting = 3;
  before.unused36.fill(std::byte{0x5A});
  instrument.in_force->info = before;
  ASSERT_NE(Calibrate(), nullptr);
  CalInfo expected = before;
  expected.time_ns = 1234.5e9;
  expected.setpoint119 = 7;
  expected.PolyTermPowerUseFlag = 0;
  EXPECT_EQ(instrument.in_force->info, expected);
}

// --- Retry, faults and aborts.

TEST_F(Driver, TriesOnceMoreAfterABadFit) {
  instrument.bad_fits = {0.5};
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_THAT(events.events, IsEmpty());
  EXPECT_EQ(Traced("Calibrate() returned bad coefficients.  Re-attempting calibration"), 1);
  EXPECT_EQ(Traced("Calibrate() returned good looking coefficients."), 1);
  EXPECT_EQ(Traced("0.4"), 1);
  EXPECT_EQ(Traced("1.1"), 2);
  EXPECT_EQ(Calls("AcqController.SetLikelyAAndT0"), 2U);
  EXPECT_EQ(Calls("AcqController.GetCurrentMassCalObject"), 2U);
  EXPECT_EQ(Calls("SpecParser.GetCalibrantPeakAttributes"), 8U);
  EXPECT_EQ(Calls("AcqController.SetCalibCoefficients"), 1U);
}

TEST_F(Driver, TwoBadFitsLoadTheDefaultsAndRaiseTheEvent) {
  instrument.bad_fits = {0.5, 0.5};
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events,
              ElementsAre(Pair(-1, "Calibration failed: bad coefficients returned.")));
  EXPECT_EQ(instrument.in_force, instrument.defaults);
  const auto texts = DriverTexts();
  ASSERT_GE(texts.size(), 4U);
  EXPECT_THAT(
      std::vector<std::string>(texts.end() - 4, texts.end()),
      ElementsAre(
          "1.8", "Calibrate() returned bad coefficients twice.  Reporting error...",
          "Loading default calib coefficients because alg seems to have chosen really bad ones.",
          "error[-1] in calibrateTOFMassAxis(): Calibration failed: bad coefficients returned."));
}

TEST_F(Driver, LoadsTheDefaultsTwiceWhenTheyDoNotVerifyEither) {
  instrument.bad_fits = {0.5, 0.5};
  instrument.defaults->record[1] = 451.0;  // above 0.3 us and 50 per cent
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_EQ(Calls("AcqController.GetDefaultCalibCoefficients"), 2U);
  EXPECT_EQ(Calls("AcqController.SetCalibCoefficients"), 2U);
  EXPECT_EQ(Traced("Loading default calib coefficients because alg seems to have chosen really bad "
                   "ones."),
            2);
  EXPECT_EQ(instrument.in_force, instrument.defaults);
  EXPECT_EQ(events.events.size(), 1U);
}

TEST_F(Driver, PutsEmptyCoefficientsInForceWhenThereAreNoDefaults) {
  instrument.bad_fits = {0.5, 0.5};
  instrument.defaults = nullptr;
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_EQ(Calls("Create.MassCalCoefficients"), 2U);
  EXPECT_EQ(instrument.in_force->record, CoefficientRecord{});
}

TEST_F(Driver, ReportsTwoBadFitsInThisOrderOfCalls) {
  host.trace->on = false;
  instrument.bad_fits = {0.5, 0.5};
  Calibrate();
  const CallList expected = CallList()
                                .Append(fakes::VerifyCalls())
                                .Call("AcqController.GetDefaultCalibCoefficients")
                                .Call("AcqController.SetCalibCoefficients")
                                .Flag("Enable1700mzTune")
                                .Append(fakes::RestoreCalls("4", "True", "1", "11"))
                                .Call("AcqController.GetCurrentMassCalObject")
                                .Append(fakes::VerifyCalls());
  const auto& calls = journal.entries();
  const auto n = static_cast<std::ptrdiff_t>(expected.calls().size());
  EXPECT_THAT(std::vector<std::string>(calls.end() - n, calls.end()),
              ElementsAreArray(expected.calls()));
}

TEST_F(Driver, RaisesTheDebugErrorOnItsFlag) {
  instrument.flags["TriggerError_caliblib_calibrateTOFMassAxis"] = "Yes";
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(Pair(-666, "Debug Error Raised")));
  const auto texts = DriverTexts();
  ASSERT_GE(texts.size(), 2U);
  EXPECT_EQ(texts[texts.size() - 2], "1.2");
  EXPECT_EQ(texts.back(), "error[-666] in calibrateTOFMassAxis(): Debug Error Raised");
  EXPECT_EQ(Calls("SpecParser.GetCalibrantPeakAttributes"), 0U);
}

TEST_F(Driver, SaysThatTheOldAlgorithmIsGoneAndGoesOn) {
  instrument.flags["UseCalibrationAlgInMTObj"] = "yes";
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_EQ(Traced("ERROR:  the option to run the old calibration wrapper has been disabled."), 1);
  EXPECT_EQ(Calls("CalibLogFiles.OpenLogFile"), 0U);
  EXPECT_EQ(DriverTexts().back(), "11");
}

TEST_F(Driver, StopsBeforeAnythingIsAppliedWhenAnAbortIsAskedFor) {
  instrument.abort_requested = 1;
  instrument.flags["Enable1700mzTune"] = "Yes";
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(Pair(1, "User aborted")));
  EXPECT_EQ(Calls("AcqController.IsAbortRequested"), 1U);
  EXPECT_EQ(Calls("AcqController.GetConfigurationName"), 0U);
  EXPECT_EQ(DriverTexts().back(), "error[1] in calibrateTOFMassAxis(): User aborted");
}

TEST_F(Driver, StopsBetweenLikelyAAndMeasurementWhenAnAbortIsAskedFor) {
  journal.abort_operation = "MassCalCoefficients.SetCalInfo";
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(Pair(1, "User aborted")));
  EXPECT_EQ(Traced("1.1"), 1);
  EXPECT_EQ(Traced("1.2"), 0);
  EXPECT_EQ(Calls("AcqController.IsAbortRequested"), 3U);
}

TEST_F(Driver, HearsOfAnAbortThatTheAcquisitionKeptToItself) {
  journal.abort_operation = "SpecParser.GetCalibrantPeakAttributes";
  journal.request_abort = [this] {
    if (instrument.spectra_taken == 1) instrument.abort_requested = -1;
  };
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(Pair(1, "User aborted")));
  EXPECT_TRUE(times.IsEmpty());
  EXPECT_THAT(host.trace->lines, Contains("GetAveragedTimesForCalibration 9: error[1] in "
                                          "GetAveragedTimesForCalibration(): User Aborted."));
  EXPECT_THAT(DriverTexts(), Contains("error[1] in calibrateTOFMassAxis(): User aborted"));
}

struct BadArguments {
  const char* name;
  std::int16_t n_spectra;
  Variant masses;
  std::int32_t number;
  const char* description;
};

class ArgumentError : public Driver, public ::testing::WithParamInterface<BadArguments> {};

TEST_P(ArgumentError, IsReportedByTheEvent) {
  n_spectra = GetParam().n_spectra;
  masses = GetParam().masses;
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(Pair(GetParam().number, GetParam().description)));
}

const Variant kFourMasses = Variant::DoubleArray({118.0863, 322.0481, 622.029, 922.0098});

INSTANTIATE_TEST_SUITE_P(
    Cases, ArgumentError,
    ::testing::Values(
        BadArguments{"NoSpectra", 0, kFourMasses, 9, "Subscript out of range"},
        BadArguments{"MinusOneSpectra", -1, kFourMasses, 9, "Subscript out of range"},
        BadArguments{"FewestSpectra", -32768, kFourMasses, 9, "Subscript out of range"},
        BadArguments{"NoArray", 3, Variant(118.0), 13, "Type mismatch"},
        BadArguments{"MissingMasses", 3, Variant(Variant::Missing{}), 13, "Type mismatch"},
        BadArguments{"NoMasses", 3, Variant(BoundedArray<double>(0, -1, IfEmpty::kIsAllowed)), -822,
                     "Failed to find a Likely A and t0 value"},
        BadArguments{"TextAsMass", 3,
                     Variant(Variant::Array({Variant(118.0), Variant("about 322")})), 13,
                     "Type mismatch"}),
    [](const auto& one) { return std::string(one.param.name); });

// --- The failure path.

TEST_F(Driver, TakesTheStepsOfTheFailurePathInThisOrder) {
  host.trace->on = false;
  instrument.in_force->record[1] = 451.0;  // does not verify: the defaults are loaded
  journal.fail_operation = "SpecParser.ShouldAvoidAIC";
  EXPECT_EQ(Calibrate(), nullptr);
  const auto& calls = journal.entries();
  const auto fault = std::find(calls.begin(), calls.end(), "SpecParser.ShouldAvoidAIC(10)");
  const CallList expected = CallList()
                                .Flag("Enable1700mzTune")
                                .Append(fakes::RestoreCalls("4", "True", "1", "11"))
                                .Call("AcqController.GetCurrentMassCalObject")
                                .Append(fakes::VerifyCalls())
                                .Call("Host.CreateFileSystem")
                                .Call("Create.InstrumentPaths")
                                .Call("InstrumentPaths.GetBaseFolder")
                                .Call("Host.Now")
                                .Call("FileSystem.OpenForAppending(" + kCalibrationLog + ")")
                                .Call("Create.AcqController")
                                .Call("AcqController.ReadSetpoint(149)")
                                .Call("Host.Now")
                                .Call("Host.DateTimeText")
                                .Call("TextStream.WriteLine(" + kCalibrationLog + ")")
                                .Append(fakes::DumpCalls(kCalibrationLog))
                                .Call("AcqController.GetDefaultCalibCoefficients")
                                .Call("AcqController.SetCalibCoefficients");
  ASSERT_NE(fault, calls.end());
  EXPECT_THAT(std::vector<std::string>(fault + 1, calls.end()), ElementsAreArray(expected.calls()));
  EXPECT_EQ(instrument.in_force, instrument.defaults);
}

TEST_F(Driver, RaisesTheEventEvenWhenEveryCallOfTheFailurePathFails) {
  Create();
  journal.fail_from = 0;
  journal.fail_count = fakes::Journal::kNever;
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(Pair(4711, "Injected fault")));
}

TEST_F(Driver, LoadsTheDefaultsWhenTheCheckOfTheCurrentCoefficientsFails) {
  instrument.flags["TriggerError_caliblib_calibrateTOFMassAxis"] = "Yes";
  journal.fail_operation = "AcqController.GetCurrentA";
  SkipTheEstimate();
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(Pair(-666, "Debug Error Raised")));
  EXPECT_EQ(instrument.in_force, instrument.defaults);
}

TEST_F(Driver, LoadsTheDefaultsWhenThereAreNoCurrentCoefficientsToCheck) {
  journal.fail_operation = "AcqController.GetCurrentMassCalObject";
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(Pair(4711, "Injected fault")));
  EXPECT_EQ(instrument.in_force, instrument.defaults);
}

TEST_F(Driver, LoadsTheDefaultsWhenNoLineCanBeTraced) {
  instrument.in_force->record[1] = 451.0;
  journal.fail_operation = "Trace.TracePrint";
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(Pair(4711, "Injected fault")));
  EXPECT_EQ(instrument.in_force, instrument.defaults);
}

TEST_F(Driver, RestoresTheInstrumentWhenTheTuneSetpointsCannotBeRestored) {
  instrument.flags["Enable1700mzTune"] = "Yes";
  instrument.flags["TriggerError_caliblib_calibrateTOFMassAxis"] = "Yes";
  journal.fail_operation = "SetpointTable.SetSetpoint(190,5,200)";
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(journal.Only({"SetpointTable.SetSetpoint(18,"}),
              ElementsAre("SetpointTable.SetSetpoint(18,2,4)"));
  EXPECT_THAT(events.events, ElementsAre(Pair(-666, "Debug Error Raised")));
}

TEST_F(Driver, WritesTheZerosOfANewObjectIntoTuneSetpointsThatWereNeverApplied) {
  instrument.flags["Enable1700mzTune"] = "Yes";
  journal.fail_operation = "SpecParser.ShouldAvoidAIC";
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_EQ(instrument.setpoints.at(190), Variant(0.0));
  EXPECT_EQ(instrument.setpoints.at(191), Variant(0.0));
  EXPECT_EQ(instrument.setpoints.at(85), Variant(0.0));
  EXPECT_EQ(instrument.setpoints.at(101), Variant(175.0));  // not this mode's
}

TEST_F(Driver, RestoresZerosAfterAStoreThatFailedOnANewObject) {
  journal.fail_operation = "SetpointTable.GetSetpoint(128)";
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_THAT(events.events, IsEmpty());
  EXPECT_EQ(instrument.setpoints.at(18), Variant(std::int16_t{0}));
  EXPECT_EQ(instrument.setpoints.at(150), Variant(false));
  EXPECT_EQ(instrument.setpoints.at(149), Variant(std::int16_t{0}));
  EXPECT_EQ(instrument.setpoints.at(128), Variant(std::int16_t{0}));
}

TEST_F(Driver, RestoresStaleValuesAfterALaterStoreThatFailed) {
  ASSERT_NE(Calibrate(), nullptr);
  instrument.setpoints[18] = std::int16_t{8};
  instrument.setpoints[128] = std::int16_t{12};
  journal.fail_operation = "SetpointTable.GetSetpoint(18)";
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_EQ(instrument.setpoints.at(18), Variant(std::int16_t{4}));    // of the first run
  EXPECT_EQ(instrument.setpoints.at(128), Variant(std::int16_t{12}));  // read before the fault
}

// --- What a log costs.

TEST_F(Driver, FailsWhenTheCalibrationLogCannotBeOpened) {
  journal.fail_operation = "FileSystem.OpenForAppending(CalibrationLog";
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(Pair(4711, "Injected fault")));
}

TEST_F(Driver, FailsWithTheNewCoefficientsInForceWhenTheDataLogCannotBeWritten) {
  const auto before = instrument.in_force;
  journal.fail_operation = "CalibLogFiles.OpenLogFile(CalibrationData";
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(Pair(4711, "Injected fault")));
  EXPECT_NE(instrument.in_force, before);
  EXPECT_NEAR(instrument.in_force->record[0], instrument.true_a_per_ns, 1e-12);
}

TEST_F(Driver, SucceedsWithoutATuneReport) {
  journal.fail_operation = "FileSystem.CreateTextFile(TuneReport";
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_THAT(events.events, IsEmpty());
}

TEST_F(Driver, SucceedsWithoutTheTraceComponent) {
  host.trace = nullptr;
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_THAT(events.events, IsEmpty());
}

// --- What is averaged when the fit is done.

TEST_F(Driver, PutsTheMeanRawTimeWhereTheAssignedMassWas) {
  instrument.spectrum_shift_ns = {9.0, 1.0, 2.0, 6.0};
  CalibrationState state;
  ASSERT_NE(CalibrateWith(state), nullptr);
  const double mean = instrument.TrueTime(322.0481) + 3.0;
  EXPECT_DOUBLE_EQ(state.data.peaks(1).AveragedAttribs(1).time, mean);
  EXPECT_DOUBLE_EQ(state.data.peaks(1).AveragedAttribs(0).time, mean);
}

TEST_F(Driver, KeepsTheAssignedMassWhenTheOldAlgorithmIsChosen) {
  instrument.flags["UseCalibrationAlgInMTObj"] = "No";
  CalibrationState state;
  ASSERT_NE(CalibrateWith(state), nullptr);
  EXPECT_NEAR(state.data.peaks(1).AveragedAttribs(1).time, 322.0481, 1.0);
}

// --- The recalibration behind a restore.

class RestoreThatRecalibrates : public Driver {
 protected:
  void RestoreAndRecalibrate(CalibrationState& state) {
    Instrument parts = Collaborators();
    RestoreInstrumentState(parts, host, state, events, true);
  }
};

TEST_F(RestoreThatRecalibrates, MeasuresTheMassesAndSpectraOfTheLastRunAgain) {
  CalibrationState state;
  n_spectra = 5;
  masses = Variant::DoubleArray({118.0863, 322.0481, 622.029, 922.0098});
  ASSERT_NE(CalibrateWith(state), nullptr);
  RestoreAndRecalibrate(state);
  EXPECT_THAT(events.events, IsEmpty());
  EXPECT_EQ(Calls("SpecParser.GetCalibrantPeakAttributes(0.5)"), 6U);
  EXPECT_EQ(Calls("AcqController.GetCalibrantMasses"), 0U);
  EXPECT_EQ(state.data.expected_masses, masses);
  EXPECT_EQ(Calls("AcqController.SetCalibCoefficients"), 1U);
}

TEST_F(RestoreThatRecalibrates, TakesTheInstrumentsMassesAndOneSpectrumOnANewObject) {
  CalibrationState state;
  host.trace->on = false;
  RestoreAndRecalibrate(state);
  EXPECT_THAT(events.events, IsEmpty());
  const CallList expected = CallList()
                                .Append(fakes::RestoreCalls("0", "False", "0", "0"))
                                .Read(117)
                                .Call("DataDictionary.GetModeName")
                                .Call("AcqController.GetConfigurationName")
                                .Call("AcqController.GetCalibrantMasses(3,MS,Standard)")
                                .Append(fakes::StoreCalls())
                                .Flag("SkipTOFCalibrationDuringAutotunes");
  const auto& calls = journal.entries();
  ASSERT_GT(calls.size(), expected.calls().size());
  EXPECT_THAT(std::vector<std::string>(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(
                                                                          expected.calls().size())),
              ElementsAreArray(expected.calls()));
  EXPECT_EQ(Calls("SpecParser.GetCalibrantPeakAttributes(0.5)"), 2U);
  EXPECT_EQ(AsDoubleArray(state.data.expected_masses).UBound(), 5);
}

TEST_F(RestoreThatRecalibrates, StoresTheStateAnewAndRestoresIt) {
  CalibrationState state;
  state.instrument_state.sample_rate = 9;
  RestoreAndRecalibrate(state);
  EXPECT_EQ(state.instrument_state.sample_rate, 9);  // written, then read back by the inner store
  EXPECT_THAT(journal.Only({"SetpointTable.SetSetpoint(18,", "SetpointTable.GetSetpoint(18)"}),
              ElementsAre("SetpointTable.SetSetpoint(18,2,9)", "SetpointTable.GetSetpoint(18)",
                          "SetpointTable.SetSetpoint(18,2,9)"));
}

TEST_F(RestoreThatRecalibrates, ReportsItsOwnFailureByTheEvent) {
  CalibrationState state;
  instrument.flags["TriggerError_caliblib_calibrateTOFMassAxis"] = "Yes";
  RestoreAndRecalibrate(state);
  EXPECT_THAT(events.events, ElementsAre(Pair(-666, "Debug Error Raised")));
}

TEST_F(RestoreThatRecalibrates, IsNotReachedWhenARestoreWriteFails) {
  CalibrationState state;
  journal.fail_operation = "SetpointTable.SetSetpoint(128";
  RestoreAndRecalibrate(state);
  EXPECT_EQ(Calls("AcqController.GetCalibrantMasses"), 0U);
  EXPECT_THAT(events.events, IsEmpty());
}

}  // namespace
}  // namespace tof
