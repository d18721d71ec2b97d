#include "instruments/description/known_keys.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tof::description {
namespace {

constexpr auto kCalibrationSettings = std::to_array<std::string_view>({
    "AICSettlingTime_sec",
    "AIC_LowQuadAMUStartValue",
    "AIC_LowQuadAMUStopValue",
    "AIC_RF_HighValue",
    "AIC_RF_LowValue",
    "AIC_RF_Step",
    "AIC_SearchSpeedUpFactor",
    "AIC_SetpointToUse",
    "AIC_TargetMaxAb",
    "AIC_TargetMinAb",
    "CalcLikelyA_NumPeaksSought",
    "TargetAPercentError",
    "TargetAPercentError_FPS",
    "Targett0PercentError",
    "UseThisPowerFlag",
});

// Followed by the configuration's name.
constexpr auto kTuneSettingPrefixes = std::to_array<std::string_view>({
    "SmallMoleculeCalib_CCdV_",
    "SmallMoleculeCalib_Fragmentor_",
    "SmallMoleculeCalib_HPRF_",
    "SmallMoleculeCalib_LPRF_",
});

constexpr std::string_view kScalarPrefix = "AIC_ScalarForMass";       // a mass index from 0
constexpr std::string_view kPlugPrefix = "AICAltSPPlugValueForMass";  // 1 to 10

constexpr auto kFlags = std::to_array<std::string_view>({
    "AICLoggingEnabled",
    "AIC_AlwaysRunOnly",
    "AIC_MinimizeImpactOfDriftOnCalibPointCollection",
    "AIC_RunFastVersion",
    "AIC_SkipFinalLinearAbAdj",
    "AIC_UseAbScalars",
    "CalcLikelyA_OverrideNumPeaksSought",
    "CalcLikelyA_PartitionSpec",
    "CalcLikelyA_PartitionSpec_PartitionMz",
    "Calibration_VerifyCalibCoefficients",
    "Calibration_t0ToUseToStartLookingforA_usec",
    "Enable1700mzTune",
    "EnableAICAltSPPlugValues",
    "ObfuscateCalibAlg",
    "SkipCalcLikelyABeforeCalibration",
    "SkipCalcLikelyABeforeCalibration_LikelyA",
    "SkipCalcLikelyABeforeCalibration_t0",
    "SkipTOFCalibrationDuringAutotunes",
    "TraceAICPeakAttributes",
    "TriggerError_caliblib_calibrateTOFMassAxis",
    "UseCalibrationAlgInMTObj",
});

template <std::size_t kCount>
bool Contains(const std::array<std::string_view, kCount>& keys, std::string_view key) {
  return std::find(keys.begin(), keys.end(), key) != keys.end();
}

// A number as it is appended to a key: digits, no leading zero.
bool IsIndex(std::string_view text) {
  if (text.empty() || (text.size() > 1 && text[0] == '0')) return false;
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool IsPlugNumber(std::string_view text) {
  return text == "10" || (text.size() == 1 && text[0] >= '1' && text[0] <= '9');
}

bool IsTuneSetting(std::string_view key) {
  return std::any_of(kTuneSettingPrefixes.begin(), kTuneSettingPrefixes.end(),
                     [key](std::string_view prefix) {
                       return key.starts_with(prefix) && key.size() > prefix.size();
                     });
}

}  // namespace

bool IsKnownSetting(std::string_view section, std::string_view key) {
  if (section == "PeakHandling") return key == "PeakFindWindowInPercentT";
  if (section != "Calibration") return false;
  if (key.starts_with(kScalarPrefix)) return IsIndex(key.substr(kScalarPrefix.size()));
  if (key.starts_with(kPlugPrefix)) return IsPlugNumber(key.substr(kPlugPrefix.size()));
  return Contains(kCalibrationSettings, key) || IsTuneSetting(key);
}

bool IsKnownFlag(std::string_view key) {
  return Contains(kFlags, key);
}

}  // namespace tof::description
