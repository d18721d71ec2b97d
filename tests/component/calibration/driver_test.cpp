#include "component/automation/convert.h"
#include "tests/component/calibration/driver_fixture.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::Driver;
using fakes::FlagRead;
using fakes::InOrder;
using fakes::kCalibrationLog;
using fakes::LineWritten;
using fakes::Repeated;
using fakes::SetpointRead;
using fakes::SettingRead;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::Pair;

Calls LoggingCalls(int n_times) {
  return InOrder({Calls{"Host.Now"}, SetpointRead(149), Calls{"Host.DateTimeText"},
                  Calls{"CalibLogFiles.OpenLogFile(CalibrationData,TXT)"}, SetpointRead(149),
                  LineWritten("CalibrationData_1.TXT"),
                  Repeated(n_times, Calls{"MassCalCoefficients.TimeToMass"}),
                  Repeated(3, Calls{"AcqController.GetColumnStatistics"}),
                  Repeated(3, LineWritten("CalibrationData_1.TXT")),
                  Calls{"TextStream.Close(CalibrationData_1.TXT)"}, Calls{"Create.InstrumentPaths"},
                  Calls{"InstrumentPaths.GetBaseFolder"}, Calls{"Host.CreateFileSystem"},
                  Calls{"FileSystem.FileExists(TuneReportCalibData.txt)"},
                  Calls{"FileSystem.OpenForAppending(TuneReportCalibData.txt)"},
                  Repeated(2, LineWritten("TuneReportCalibData.txt")),
                  Calls{"TextStream.Close(TuneReportCalibData.txt)"}});
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

  const Calls open_calibration_log = fakes::CalibrationLogOpened(kCalibrationLog);
  const Calls decide =
      InOrder({FlagRead("SkipTOFCalibrationDuringAutotunes"), Calls{"DataDictionary.GetFlagKey"},
               FlagRead("AICDisabled"), FlagRead("AIC_AlwaysRunOnly"),
               Calls{"SpecParser.ShouldAvoidAIC(10)"}, Calls{"AcqController.IsAbortRequested"},
               SettingRead("PeakHandling/PeakFindWindowInPercentT"), FlagRead("Enable1700mzTune")});
  const Calls likely_a =
      InOrder({SetpointRead(69), FlagRead("SkipTOFCalibrationDuringAutotunes"),
               FlagRead("SkipCalcLikelyABeforeCalibration"),
               FlagRead("SkipCalcLikelyABeforeCalibration_LikelyA"),
               FlagRead("SkipCalcLikelyABeforeCalibration_t0"),
               Calls{"AcqController.SetLikelyAAndT0"}, Calls{"AcqController.IsAbortRequested"}});
  const Calls prepare_fit =
      InOrder({Calls{"MassCalCoefficients.GetBinWidth"}, Calls{"MassCalCoefficients.GetCalInfo"},
               Calls{"DataDictionary.GetTimeValue"}, SetpointRead(119),
               Calls{"MassCalCoefficients.SetCalInfo"}, Calls{"AcqController.IsAbortRequested"},
               FlagRead("TriggerError_caliblib_calibrateTOFMassAxis"),
               FlagRead("UseCalibrationAlgInMTObj")});
  const Calls aic_line = InOrder({Calls{"DataDictionary.GetFlagKey"}, FlagRead("AICDisabled")});
  const Calls acquire = InOrder(
      {Calls{"SpecParser.GetCalibrantPeakAttributes(0.5)"}, Calls{"AcqController.IsAbortRequested"},
       Calls{"SpecParser.GetCalibrantPeakAttributes(0.5)"}, Calls{"AcqController.IsAbortRequested"},
       aic_line, FlagRead("TraceAICPeakAttributes"), aic_line, FlagRead("TraceAICPeakAttributes"),
       aic_line, aic_line, Calls{"Host.CreateFileSystem"}, Calls{"Create.InstrumentPaths"},
       Calls{"InstrumentPaths.GetBaseFolder"},
       Calls{"FileSystem.CreateTextFile(TuneReportCalibData.txt)"},
       Repeated(3, LineWritten("TuneReportCalibData.txt")),
       Calls{"TextStream.Close(TuneReportCalibData.txt)"}});
  const Calls dump = fakes::CoefficientsDumped(kCalibrationLog);
  const Calls expected =
      InOrder({fakes::InstrumentStateStored(), decide, likely_a,
               Calls{"AcqController.GetCurrentMassCalObject"}, open_calibration_log, dump,
               prepare_fit, acquire, dump, Calls{"MassCalCoefficients.Calibrate"}, dump,
               fakes::CoefficientsVerified(), Calls{"AcqController.SetCalibCoefficients"},
               FlagRead("UseCalibrationAlgInMTObj"), LoggingCalls(2), FlagRead("Enable1700mzTune"),
               fakes::InstrumentStateRestored("4", "True", "1", "11")});
  EXPECT_THAT(journal.entries(), ElementsAreArray(expected));
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
  EXPECT_EQ(NumberOf("FileSystem.OpenForAppending(CalibrationLog"), 1U);
  EXPECT_EQ(NumberOf("CalibLogFiles.OpenLogFile(CalibrationData"), 2U);
}

TEST_F(Driver, ReturnsNoneWithoutMeasuringOrRestoringWhenAutotunesSkipIt) {
  instrument.flags["SkipTOFCalibrationDuringAutotunes"] = "Yes";
  host.trace->on = false;
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, IsEmpty());
  EXPECT_THAT(journal.entries(),
              ElementsAreArray(InOrder({fakes::InstrumentStateStored(),
                                        FlagRead("SkipTOFCalibrationDuringAutotunes")})));
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
  EXPECT_EQ(NumberOf("AcqController.SetLikelyAAndT0"), 0U);
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
  EXPECT_EQ(NumberOf(call), 4U);  // one that is not stored and three that are
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
  const std::size_t polls = NumberOf("AcqController.IsAbortRequested");
  EXPECT_EQ(polls, 9U);  // step by step: start, likely A, fit, two a spectrum
  journal.Clear();
  journal.fail_operation = "SpecParser.GetCalibrantPeakAttributes";
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_EQ(NumberOf("AcqController.IsAbortRequested"), 4U);
}

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
  EXPECT_EQ(NumberOf("CalibSettings.GetValue(Calibration/UseThisPowerFlag"),
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

}  // namespace
}  // namespace tof
