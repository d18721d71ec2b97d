#include "component/automation/convert.h"
#include "tests/component/calibration/driver_fixture.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::Driver;
using fakes::FlagRead;
using fakes::InOrder;
using fakes::SetpointRead;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::Pair;

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
  EXPECT_EQ(NumberOf("SpecParser.GetCalibrantPeakAttributes(0.5)"), 6U);
  EXPECT_EQ(NumberOf("AcqController.GetCalibrantMasses"), 0U);
  EXPECT_EQ(state.data.expected_masses, masses);
  EXPECT_EQ(NumberOf("AcqController.SetCalibCoefficients"), 1U);
}

TEST_F(RestoreThatRecalibrates, TakesTheInstrumentsMassesAndOneSpectrumOnANewObject) {
  CalibrationState state;
  host.trace->on = false;
  RestoreAndRecalibrate(state);
  EXPECT_THAT(events.events, IsEmpty());
  const Calls expected =
      InOrder({fakes::InstrumentStateRestored("0", "False", "0", "0"), SetpointRead(117),
               Calls{"DataDictionary.GetModeName"}, Calls{"AcqController.GetConfigurationName"},
               Calls{"AcqController.GetCalibrantMasses(3,MS,Standard)"},
               fakes::InstrumentStateStored(), FlagRead("SkipTOFCalibrationDuringAutotunes")});
  const auto& calls = journal.entries();
  ASSERT_GT(calls.size(), expected.size());
  EXPECT_THAT(std::vector<std::string>(
                  calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(expected.size())),
              ElementsAreArray(expected));
  EXPECT_EQ(NumberOf("SpecParser.GetCalibrantPeakAttributes(0.5)"), 2U);
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
  EXPECT_EQ(NumberOf("AcqController.GetCalibrantMasses"), 0U);
  EXPECT_THAT(events.events, IsEmpty());
}

}  // namespace
}  // namespace tof
