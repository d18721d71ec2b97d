#include "instruments/description/overrides.h"

#include <gtest/gtest.h>

#include "instruments/description/description_reader.h"
#include "tests/instruments/description/sample_description.h"
#include "tests/instruments/spectra/expect_input_error.h"

namespace tof::description {
namespace {

using spectra::InputErrorOf;

class Overrides : public testing::Test {
 protected:
  template <typename Override>
  std::string Refusal(Override change, const char* text) {
    return InputErrorOf([&] { change(description_, text); });
  }

  InstrumentDescription description_ = ParseDescription(kSampleDescription, "sample.xml");
};

TEST_F(Overrides, ReplaceAndAddSettings) {
  OverrideSetting(description_, "Calibration/AIC_TargetMinAb=5");
  OverrideSetting(description_, "Calibration/SmallMoleculeCalib_HPRF_cfg=-2e1");
  EXPECT_EQ(description_.settings["Calibration"]["AIC_TargetMinAb"], 5.0);
  EXPECT_EQ(description_.settings["Calibration"]["SmallMoleculeCalib_HPRF_cfg"], -20.0);
}

TEST_F(Overrides, RefuseWrongSettings) {
  EXPECT_EQ(Refusal(OverrideSetting, "Calibration/AIC_TargetMinAb"),
            "override \"Calibration/AIC_TargetMinAb\": found no \"=\", expected Section/Key=Value");
  EXPECT_EQ(Refusal(OverrideSetting, "AIC_TargetMinAb=5"),
            "override \"AIC_TargetMinAb=5\": found no \"/\", expected Section/Key=Value");
  EXPECT_EQ(Refusal(OverrideSetting, "Calibration/TargetMinAb=5"),
            "override \"Calibration/TargetMinAb=5\": found unknown setting "
            "\"Calibration/TargetMinAb\", expected a setting that a calibration reads");
  EXPECT_EQ(Refusal(OverrideSetting, "Calibration/AIC_TargetMinAb=5V"),
            "override \"Calibration/AIC_TargetMinAb=5V\": found \"5V\", expected a number");
  EXPECT_EQ(description_.settings["Calibration"]["AIC_TargetMinAb"], 1e5);
}

TEST_F(Overrides, SetFlagsToAnyText) {
  OverrideFlag(description_, "ObfuscateCalibAlg=a=b");
  OverrideFlag(description_, "AICLoggingEnabled=");
  OverrideFlag(description_, "AicIsOff=No");
  EXPECT_EQ(description_.flags["ObfuscateCalibAlg"], "a=b");
  EXPECT_EQ(description_.flags["AICLoggingEnabled"], "");
  EXPECT_EQ(description_.flags["AicIsOff"], "No");
}

TEST_F(Overrides, RefuseWrongFlags) {
  EXPECT_EQ(Refusal(OverrideFlag, "ObfuscateCalibAlg"),
            "override \"ObfuscateCalibAlg\": found no \"=\", expected Key=Value");
  EXPECT_EQ(Refusal(OverrideFlag, "Obfuscate=1"),
            "override \"Obfuscate=1\": found unknown flag \"Obfuscate\", expected a flag that a "
            "calibration reads");
}

TEST_F(Overrides, SetSetpointsInTheirType) {
  OverrideSetpoint(description_, "83=20");
  OverrideSetpoint(description_, "150=false");
  EXPECT_EQ(description_.setpoints[83].value, Variant(20.0));
  EXPECT_EQ(description_.setpoints[150].value, Variant(false));
}

TEST_F(Overrides, SetASetpointThroughItsOtherId) {
  description_.setpoint_aliases[84] = 83;
  OverrideSetpoint(description_, "84=20");
  EXPECT_EQ(description_.setpoints[83].value, Variant(20.0));
}

TEST_F(Overrides, RefuseWrongSetpoints) {
  EXPECT_EQ(Refusal(OverrideSetpoint, "83"), "override \"83\": found no \"=\", expected Id=Value");
  EXPECT_EQ(
      Refusal(OverrideSetpoint, "84=1"),
      "override \"84=1\": found unknown setpoint \"84\", expected the id of a setpoint of the "
      "description");
  EXPECT_EQ(
      Refusal(OverrideSetpoint, "rf=1"),
      "override \"rf=1\": found unknown setpoint \"rf\", expected the id of a setpoint of the "
      "description");
  EXPECT_EQ(Refusal(OverrideSetpoint, "149=1.5"),
            "override \"149=1.5\": found \"1.5\", expected a whole number of 16 bits");
}

TEST_F(Overrides, ReplaceTheCalibrantsThatTheSetpointSelects) {
  OverrideCalibrants(description_, {100.5, 200.5});
  EXPECT_EQ(CalibrantMasses(description_), (std::vector<double>{100.5, 200.5}));
}

TEST_F(Overrides, RefuseCalibrantsThatAreNoMasses) {
  const auto before = CalibrantMasses(description_);
  EXPECT_EQ(InputErrorOf([&] { OverrideCalibrants(description_, {}); }),
            "override of the calibrants: found no masses, expected one or more");
  EXPECT_EQ(
      InputErrorOf([&] {
        OverrideCalibrants(description_, {100.0, -1.0});
      }),
      "override of the calibrants: found the mass -1.000000, expected finite, positive masses");
  EXPECT_EQ(
      InputErrorOf([&] { OverrideCalibrants(description_, {0.0}); }),
      "override of the calibrants: found the mass 0.000000, expected finite, positive masses");
  EXPECT_EQ(CalibrantMasses(description_), before);
  OverrideCalibrants(description_, {0.25});
  EXPECT_EQ(CalibrantMasses(description_), std::vector<double>{0.25});
  description_.setpoints.erase(kCalibrantListSetpoint);
  EXPECT_NE(InputErrorOf([&] { OverrideCalibrants(description_, {100.0}); }).find("setpoint 117"),
            std::string::npos);
}

}  // namespace
}  // namespace tof::description
