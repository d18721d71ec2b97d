#include "tests/component/calibration/driver_fixture.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::Driver;
using fakes::FlagRead;
using fakes::InOrder;
using fakes::kCalibrationLog;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::Pair;

TEST_F(Driver, TriesOnceMoreAfterABadFit) {
  instrument.bad_fits = {0.5};
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_THAT(events.events, IsEmpty());
  EXPECT_EQ(Traced("Calibrate() returned bad coefficients.  Re-attempting calibration"), 1);
  EXPECT_EQ(Traced("Calibrate() returned good looking coefficients."), 1);
  EXPECT_EQ(Traced("0.4"), 1);
  EXPECT_EQ(Traced("1.1"), 2);
  EXPECT_EQ(NumberOf("AcqController.SetLikelyAAndT0"), 2U);
  EXPECT_EQ(NumberOf("AcqController.GetCurrentMassCalObject"), 2U);
  EXPECT_EQ(NumberOf("SpecParser.GetCalibrantPeakAttributes"), 8U);
  EXPECT_EQ(NumberOf("AcqController.SetCalibCoefficients"), 1U);
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
  EXPECT_EQ(NumberOf("AcqController.GetDefaultCalibCoefficients"), 2U);
  EXPECT_EQ(NumberOf("AcqController.SetCalibCoefficients"), 2U);
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
  EXPECT_EQ(NumberOf("Create.MassCalCoefficients"), 2U);
  EXPECT_EQ(instrument.in_force->record, CoefficientRecord{});
}

TEST_F(Driver, ReportsTwoBadFitsInThisOrderOfCalls) {
  host.trace->on = false;
  instrument.bad_fits = {0.5, 0.5};
  Calibrate();
  const Calls expected =
      InOrder({fakes::CoefficientsVerified(), Calls{"AcqController.GetDefaultCalibCoefficients"},
               Calls{"AcqController.SetCalibCoefficients"}, FlagRead("Enable1700mzTune"),
               fakes::InstrumentStateRestored("4", "True", "1", "11"),
               Calls{"AcqController.GetCurrentMassCalObject"}, fakes::CoefficientsVerified()});
  const auto& calls = journal.entries();
  const auto n = static_cast<std::ptrdiff_t>(expected.size());
  EXPECT_THAT(std::vector<std::string>(calls.end() - n, calls.end()), ElementsAreArray(expected));
}

TEST_F(Driver, RaisesTheDebugErrorOnItsFlag) {
  instrument.flags["TriggerError_caliblib_calibrateTOFMassAxis"] = "Yes";
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(Pair(-666, "Debug Error Raised")));
  const auto texts = DriverTexts();
  ASSERT_GE(texts.size(), 2U);
  EXPECT_EQ(texts[texts.size() - 2], "1.2");
  EXPECT_EQ(texts.back(), "error[-666] in calibrateTOFMassAxis(): Debug Error Raised");
  EXPECT_EQ(NumberOf("SpecParser.GetCalibrantPeakAttributes"), 0U);
}

TEST_F(Driver, SaysThatTheOldAlgorithmIsGoneAndGoesOn) {
  instrument.flags["UseCalibrationAlgInMTObj"] = "yes";
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_EQ(Traced("ERROR:  the option to run the old calibration wrapper has been disabled."), 1);
  EXPECT_EQ(NumberOf("CalibLogFiles.OpenLogFile"), 0U);
  EXPECT_EQ(DriverTexts().back(), "11");
}

TEST_F(Driver, StopsBeforeAnythingIsAppliedWhenAnAbortIsAskedFor) {
  instrument.abort_requested = 1;
  instrument.flags["Enable1700mzTune"] = "Yes";
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(Pair(1, "User aborted")));
  EXPECT_EQ(NumberOf("AcqController.IsAbortRequested"), 1U);
  EXPECT_EQ(NumberOf("AcqController.GetConfigurationName"), 0U);
  EXPECT_EQ(DriverTexts().back(), "error[1] in calibrateTOFMassAxis(): User aborted");
}

TEST_F(Driver, StopsBetweenLikelyAAndMeasurementWhenAnAbortIsAskedFor) {
  journal.abort_operation = "MassCalCoefficients.SetCalInfo";
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(Pair(1, "User aborted")));
  EXPECT_EQ(Traced("1.1"), 1);
  EXPECT_EQ(Traced("1.2"), 0);
  EXPECT_EQ(NumberOf("AcqController.IsAbortRequested"), 3U);
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

TEST_F(Driver, TakesTheStepsOfTheFailurePathInThisOrder) {
  host.trace->on = false;
  instrument.in_force->record[1] = 451.0;  // does not verify: the defaults are loaded
  journal.fail_operation = "SpecParser.ShouldAvoidAIC";
  EXPECT_EQ(Calibrate(), nullptr);
  const auto& calls = journal.entries();
  const auto fault = std::find(calls.begin(), calls.end(), "SpecParser.ShouldAvoidAIC(10)");
  const Calls expected = InOrder(
      {FlagRead("Enable1700mzTune"), fakes::InstrumentStateRestored("4", "True", "1", "11"),
       Calls{"AcqController.GetCurrentMassCalObject"}, fakes::CoefficientsVerified(),
       fakes::CalibrationLogOpened(kCalibrationLog), fakes::CoefficientsDumped(kCalibrationLog),
       Calls{"AcqController.GetDefaultCalibCoefficients"},
       Calls{"AcqController.SetCalibCoefficients"}});
  ASSERT_NE(fault, calls.end());
  EXPECT_THAT(std::vector<std::string>(fault + 1, calls.end()), ElementsAreArray(expected));
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

}  // namespace
}  // namespace tof
