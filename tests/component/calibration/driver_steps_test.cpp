// What the driver hands on, and what it has prepared when the measurement begins.
#include "component/automation/convert.h"
#include "tests/component/calibration/driver_fixture.h"

namespace tof {
namespace {

using fakes::Driver;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Pair;

TEST_F(Driver, AsksWhetherAicIsToBeAvoidedForItsMassesIndexedFromZero) {
  masses = Variant::Array({Variant(118.0863), Variant("322.0481"), Variant(622)}, 5);
  SkipTheEstimate();
  ASSERT_NE(Calibrate(), nullptr);
  EXPECT_EQ(instrument.masses_of_the_aic_question,
            Variant(Variant::DoubleArray({118.0863, 322.0481, 622.0})));
}

TEST_F(Driver, TracesTheWindowThatTheCallerGave) {
  optional.dPeakFindTimeWindow = 0.25;
  ASSERT_NE(Calibrate(), nullptr);
  EXPECT_EQ(Traced("dPeakFindTimeWindow = 0.25"), 1);
  EXPECT_EQ(NumberOf("CalibSettings.GetValue(PeakHandling/PeakFindWindowInPercentT"), 0U);
}

TEST_F(Driver, HasRoomForTimesAndAveragesWhenTheMeasurementBegins) {
  CalibrationState state;
  state.data.measured_times.ReDim({0, 0}, {0, 0});
  times = Variant("of an earlier run");
  int looked = 0;
  instrument.on_spectrum = [&] {
    ++looked;
    EXPECT_EQ(state.data.measured_times.LBound(1), 0);
    EXPECT_EQ(state.data.measured_times.UBound(1), 2);
    EXPECT_EQ(state.data.measured_times.LBound(2), 0);
    EXPECT_EQ(state.data.measured_times.UBound(2), 5);
    EXPECT_EQ(times, Variant(Variant::Array(0, 5)));
  };
  ASSERT_NE(CalibrateWith(state), nullptr);
  EXPECT_EQ(looked, 4);
}

TEST_F(Driver, ClearsTheTimesOfAnEarlierRunOfTheSameSize) {
  CalibrationState state;
  ASSERT_NE(CalibrateWith(state), nullptr);
  instrument.on_spectrum = [&] { EXPECT_EQ(state.data.measured_times(2, 5), 0.0); };
  n_spectra = 3;
  ASSERT_NE(CalibrateWith(state), nullptr);
}

struct SpectraCase {
  const char* name;
  std::int16_t n_spectra;
};

class TooFewSpectra : public Driver, public ::testing::WithParamInterface<SpectraCase> {};

TEST_P(TooFewSpectra, AreRefusedBeforeAnyIsTaken) {
  n_spectra = GetParam().n_spectra;
  times = Variant("as passed");
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_EQ(instrument.spectra_taken, 0);
  EXPECT_EQ(times, Variant("as passed"));
  EXPECT_EQ(Traced("1.4"), 1);
  EXPECT_EQ(Traced("1.5"), 0);
}

INSTANTIATE_TEST_SUITE_P(Cases, TooFewSpectra,
                         ::testing::Values(SpectraCase{"None", 0}, SpectraCase{"MinusOne", -1},
                                           SpectraCase{"Fewest", -32768}),
                         [](const auto& one) { return std::string(one.param.name); });

// --- The unit of the dumps.

class DumpOfTheDriver : public Driver {
 protected:
  const std::string& Log() {
    return host.files.at("D:\\Data\\Logfiles\\" + fakes::kCalibrationLog).bytes;
  }
  std::ptrdiff_t Dumped(const std::string& line) const {
    const auto texts = host.trace->Texts();
    return std::count(texts.begin(), texts.end(), line);
  }
};

TEST_F(DumpOfTheDriver, IsInNanosecondsBeforeAndAfterTheFit) {
  ASSERT_NE(Calibrate(), nullptr);
  EXPECT_EQ(Dumped("Mass coefficients are in nsecs"), 3);
  EXPECT_THAT(Log(), Not(HasSubstr("usecs")));
}

TEST_F(DumpOfTheDriver, IsInNanosecondsAfterAFailure) {
  instrument.in_force->record[1] = 451.0;  // does not verify
  journal.fail_operation = "SpecParser.ShouldAvoidAIC";
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_EQ(Dumped("Mass coefficients are in nsecs"), 1);
  EXPECT_THAT(Log(), HasSubstr("Mass coefficients are in nsecs\r\n"));
  EXPECT_THAT(Log(), Not(HasSubstr("usecs")));
}

// --- A failure while there is no current coefficients object.

class WithoutACurrentObject : public DumpOfTheDriver {
 protected:
  WithoutACurrentObject() { instrument.has_mass_cal_object = false; }
};

TEST_F(WithoutACurrentObject, NothingIsLoadedOrDumpedWhenTheCheckIsSwitchedOff) {
  instrument.flags["Calibration_VerifyCalibCoefficients"] = "No";
  const auto before = instrument.in_force;
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events,
              ElementsAre(Pair(91, "Object variable or With block variable not set")));
  EXPECT_EQ(instrument.in_force, before);
  EXPECT_EQ(NumberOf("AcqController.GetDefaultCalibCoefficients"), 0U);
  EXPECT_EQ(NumberOf("Trace.Entry(TraceDumpCoefficients"), 1U) << "the one that failed";
}

TEST_F(WithoutACurrentObject, TheDefaultsAreLoadedByACheckThatFails) {
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events,
              ElementsAre(Pair(91, "Object variable or With block variable not set")));
  EXPECT_EQ(instrument.in_force, instrument.defaults);
  EXPECT_EQ(NumberOf("Trace.Entry(TraceDumpCoefficients"), 2U);
  EXPECT_THAT(Log(), Not(HasSubstr("Mass coefficients")));
}

// --- The restores at the end.

TEST_F(Driver, RestoresTheTuneSetpointsBeforeTheInstrumentState) {
  instrument.flags["Enable1700mzTune"] = "Yes";
  ASSERT_NE(Calibrate(), nullptr);
  EXPECT_THAT(
      journal.Only({"SetpointTable.SetSetpoint"}),
      ElementsAre("SetpointTable.SetSetpoint(190,5,0)", "SetpointTable.SetSetpoint(191,5,0)",
                  "SetpointTable.SetSetpoint(85,5,0)", "SetpointTable.SetSetpoint(190,5,200)",
                  "SetpointTable.SetSetpoint(191,5,90)", "SetpointTable.SetSetpoint(85,5,1.5)",
                  "SetpointTable.SetSetpoint(18,2,4)", "SetpointTable.SetSetpoint(150,11,True)",
                  "SetpointTable.SetSetpoint(149,2,1)", "SetpointTable.SetSetpoint(128,2,11)"));
  EXPECT_THAT(events.events, IsEmpty());
}

}  // namespace
}  // namespace tof
