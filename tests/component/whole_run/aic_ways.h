// The ways in which an abundance-immune calibration can work, on the fake instrument.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "component/automation/variant.h"
#include "tests/support/fake_instrument.h"

namespace tof::fakes {

struct Way {
  const char* name;
  bool traced;
  double setpoint;  // that AIC moves; 83 has the search per mass
  std::vector<std::pair<const char*, const char*>> flags;
};

inline void PrintTo(const Way& way, std::ostream* out) {
  *out << way.name;
}

inline const std::vector<Way> kWays = {
    {"RampByMass", false, 84.0, {}},
    {"RampByMassFrozenTraced", true, 84.0, {{"ObfuscateCalibAlg", "1"}}},
    {"RampByMeasurementShownTraced",
     true,
     84.0,
     {{"ObfuscateCalibAlg", "2"}, {"AIC_MinimizeImpactOfDriftOnCalibPointCollection", "Yes"}}},
    {"FirmwareSearchTraced", true, 83.0, {{"AIC_RunFastVersion", "Yes"}}},
    {"ParserSearch", false, 83.0, {}},
    {"ParserSearchWithoutAdjustmentTraced",
     true,
     83.0,
     {{"AIC_SkipFinalLinearAbAdj", "Yes"}, {"ObfuscateCalibAlg", "1"}}},
    {"PlugValues", false, 83.0, {{"EnableAICAltSPPlugValues", "Yes"}}},
};

// What the acquisition software moves while a spectrum is taken.
inline const std::vector<std::int32_t> kStoredState = {18, 150, 149, 128};
inline const Variant kMoved = Variant(std::int16_t{9});

inline constexpr double kSearchedVolts = 50.25;

// The estimate of the likely A is left out: it is the same without AIC.
inline void Arrange(const Way& way, FakeInstrument& instrument) {
  instrument.sample_masses = {118.0863, 622.029, 1521.9715};
  instrument.avoid_aic = false;
  instrument.flags[instrument.flag_key] = "No";
  instrument.flags["AICLoggingEnabled"] = "3000";
  instrument.flags["SkipCalcLikelyABeforeCalibration"] = "Yes";
  instrument.flags["SkipCalcLikelyABeforeCalibration_LikelyA"] = "0.65";
  instrument.flags["SkipCalcLikelyABeforeCalibration_t0"] = "0.3";
  for (const auto& [key, value] : way.flags) instrument.flags[key] = value;
  instrument.settings["Calibration/AIC_SetpointToUse"] = way.setpoint;
  instrument.settings["Calibration/AICSettlingTime_sec"] = 0.4;
  instrument.settings["Calibration/AIC_RF_LowValue"] = 20.0;
  instrument.settings["Calibration/AIC_RF_HighValue"] = 60.0;
  instrument.settings["Calibration/AIC_RF_Step"] = 20.0;
  if (instrument.flags.count("EnableAICAltSPPlugValues") != 0) {  // which takes six masses
    instrument.sample_masses = {118.0863, 322.0481, 622.029, 922.0098, 1221.9906, 1521.9715};
  }
  for (int k = 1; k <= 6; ++k) {
    instrument.settings["Calibration/AICAltSPPlugValueForMass" + std::to_string(k)] = 30.0 + k;
  }
  // The masses below 500 are above the band at the voltage at entry, the others inside.
  instrument.abundance_at = [](double mass, double volts) {
    return (mass < 500.0 ? 4000.0 : 2000.0) * volts;
  };
  // Above 50 V, the end of the band, so that the adjustment has steps to make.
  instrument.searched_rf_value = [](double) { return kSearchedVolts; };
  instrument.on_spectrum = [&instrument] {
    for (const std::int32_t id : kStoredState) instrument.setpoints[id] = kMoved;
  };
}

}  // namespace tof::fakes
