#include <array>
#include <cmath>

#include "component/automation/number_text.h"
#include "instruments/conformance/attempt.h"
#include "instruments/conformance/checks.h"
#include "instruments/conformance/subject.h"

namespace tof::conformance {
namespace {

void MissingSettingLeavesTheVariable(Subject& subject) {
  constexpr double kPreset = 12345.5;
  for (const char* const section : {"Calibration", "ConformanceCheck_NoSuchSection"}) {
    double value = kPreset;
    subject.parts.calib_settings->GetValue(section, "ConformanceCheck_NoSuchKey", 0, value);
    RequireNear(std::string("variable behind a missing key of section ") + section, value, kPreset,
                0.0);
  }
}

void RequireNotZero(Subject& subject, const std::string& key) {
  const double value = CalibrationSetting(subject.parts, key);
  Require(std::isfinite(value) && value != 0.0, "Calibration/" + key + " other than 0",
          NumberText(value));
}

void LimitsOfAGoodFitAreThere(Subject& subject) {
  if (FlagIs(subject.parts, "Calibration_VerifyCalibCoefficients", "No")) {
    throw NotApplicable("the flag Calibration_VerifyCalibCoefficients is \"No\"");
  }
  const std::string suffix = Given("SetpointTable.has-the-setpoints-of-every-calibration",
                                   [&] { return FpsSuffix(subject.parts); });
  RequireNotZero(subject, "TargetAPercentError" + suffix);
  RequireNotZero(subject, "Targett0PercentError");
}

void AbundanceBandIsAnInterval(Subject& subject) {
  RequireAbundanceImmuneCalibration(subject);
  const double minimum = CalibrationSetting(subject.parts, "AIC_TargetMinAb");
  const double maximum = CalibrationSetting(subject.parts, "AIC_TargetMaxAb");
  Require(minimum > 0.0 && minimum < maximum && std::isfinite(maximum),
          "AIC_TargetMinAb above 0, AIC_TargetMaxAb above that",
          NumberText(minimum) + " and " + NumberText(maximum));
}

void RfRangeCanBeWalked(Subject& subject) {
  RequireAbundanceImmuneCalibration(subject);
  const double low = CalibrationSetting(subject.parts, "AIC_RF_LowValue");
  const double high = CalibrationSetting(subject.parts, "AIC_RF_HighValue");
  const double step = CalibrationSetting(subject.parts, "AIC_RF_Step");
  Require(low < high && step > 0.0 && std::isfinite((high - low) / step),
          "AIC_RF_LowValue below AIC_RF_HighValue, AIC_RF_Step above 0",
          NumberText(low) + ", " + NumberText(high) + " and " + NumberText(step));
}

constexpr std::array kChecks{
    Check{"CalibSettings", "missing-setting-leaves-the-variable",
          "A default is what the variable held before a setting was read: one that the instrument "
          "does not have, or its section, leaves the variable alone and is no error.",
          MissingSettingLeavesTheVariable},
    Check{"CalibSettings", "limits-of-a-good-fit-are-there",
          "New coefficients may be off by TargetAPercentError (with _FPS where setpoint 162 is "
          "true) and Targett0PercentError: with a limit of 0 none ever passes.",
          LimitsOfAGoodFitAreThere},
    Check{"CalibSettings", "abundance-band-is-an-interval",
          "Abundance-immune calibration brings each calibrant between AIC_TargetMinAb and "
          "AIC_TargetMaxAb: the second is the greater.",
          AbundanceBandIsAnInterval},
    Check{"CalibSettings", "rf-range-can-be-walked",
          "The voltage is walked from AIC_RF_HighValue down to AIC_RF_LowValue in steps of "
          "AIC_RF_Step, which therefore is above 0.",
          RfRangeCanBeWalked},
};

}  // namespace

std::span<const Check> CalibSettingsChecks() {
  return kChecks;
}

}  // namespace tof::conformance
