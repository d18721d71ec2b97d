// How long a calibration settles, by the setting that its object read when it was created.
#include <algorithm>
#include <cstddef>

#include "tests/support/calibration_fixture.h"

namespace tof {
namespace {

struct SettlingCase {
  const char* name;
  bool has_configuration_object;
  double setting_sec;
  std::ptrdiff_t slices;
};

class SettlingOfARun : public fakes::CalibrationFixture,
                       public ::testing::WithParamInterface<SettlingCase> {
 protected:
  // A ramp of three voltages from 20 V.
  SettlingOfARun() {
    instrument.flags["AIC_AlwaysRunOnly"] = "Yes";
    instrument.settings["Calibration/AIC_RF_LowValue"] = 20.0;
    instrument.settings["Calibration/AIC_RF_HighValue"] = 24.0;
    instrument.settings["Calibration/AIC_RF_Step"] = 2.0;
  }
};

TEST_P(SettlingOfARun, TakesAsManySlicesAfterAVoltageAsTheSettingRounds) {
  instrument.has_display = GetParam().has_configuration_object;
  instrument.settings["Calibration/AICSettlingTime_sec"] = GetParam().setting_sec;
  ASSERT_NE(Calibrate(), nullptr);
  const auto calls =
      journal.Only({"SetpointTable.SetSetpoint(84,", "Host.Sleep(400)", "SpecParser.GetCal"});
  const auto first = std::find(calls.begin(), calls.end(), "SetpointTable.SetSetpoint(84,5,20)");
  ASSERT_NE(first, calls.end());
  const auto spectrum = std::find_if(first, calls.end(), [](const std::string& call) {
    return call.rfind("SpecParser.", 0) == 0;
  });
  EXPECT_EQ(std::count(first, spectrum, "Host.Sleep(400)"), GetParam().slices);
  EXPECT_EQ(host.slept_ms == 0, GetParam().slices == 0) << "in the whole of the run";
}

INSTANTIATE_TEST_SUITE_P(Cases, SettlingOfARun,
                         ::testing::Values(SettlingCase{"HalfToTheEvenBelow", true, 2.5, 2},
                                           SettlingCase{"HalfToTheEvenAbove", true, 3.5, 4},
                                           SettlingCase{"Zero", true, 0.0, 0},
                                           SettlingCase{"NoConfigurationObject", false, 3.5, 0}),
                         [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace tof
