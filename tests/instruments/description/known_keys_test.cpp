#include "instruments/description/known_keys.h"

#include <gtest/gtest.h>

namespace tof::description {
namespace {

TEST(KnownKeys, HoldTheSettingsOfTheirSection) {
  EXPECT_TRUE(IsKnownSetting("Calibration", "AICSettlingTime_sec"));
  EXPECT_TRUE(IsKnownSetting("Calibration", "TargetAPercentError_FPS"));
  EXPECT_TRUE(IsKnownSetting("PeakHandling", "PeakFindWindowInPercentT"));
  EXPECT_FALSE(IsKnownSetting("Calibration", "PeakFindWindowInPercentT"));
  EXPECT_FALSE(IsKnownSetting("calibration", "AICSettlingTime_sec"));
  EXPECT_FALSE(IsKnownSetting("Calibration", ""));
}

TEST(KnownKeys, HoldOneScalarPerMassIndexFromZero) {
  EXPECT_TRUE(IsKnownSetting("Calibration", "AIC_ScalarForMass0"));
  EXPECT_TRUE(IsKnownSetting("Calibration", "AIC_ScalarForMass28"));
  EXPECT_FALSE(IsKnownSetting("Calibration", "AIC_ScalarForMass"));
  EXPECT_FALSE(IsKnownSetting("Calibration", "AIC_ScalarForMass01"));
  EXPECT_FALSE(IsKnownSetting("Calibration", "AIC_ScalarForMassX"));
  // The neighbours of the digits.
  EXPECT_FALSE(IsKnownSetting("Calibration", "AIC_ScalarForMass:"));
  EXPECT_FALSE(IsKnownSetting("Calibration", "AIC_ScalarForMass/"));
  EXPECT_TRUE(IsKnownSetting("Calibration", "AIC_ScalarForMass9"));
}

TEST(KnownKeys, HoldTenPlugValuesFromOne) {
  EXPECT_TRUE(IsKnownSetting("Calibration", "AICAltSPPlugValueForMass1"));
  EXPECT_TRUE(IsKnownSetting("Calibration", "AICAltSPPlugValueForMass10"));
  EXPECT_FALSE(IsKnownSetting("Calibration", "AICAltSPPlugValueForMass0"));
  EXPECT_FALSE(IsKnownSetting("Calibration", "AICAltSPPlugValueForMass11"));
  EXPECT_TRUE(IsKnownSetting("Calibration", "AICAltSPPlugValueForMass9"));
  EXPECT_FALSE(IsKnownSetting("Calibration", "AICAltSPPlugValueForMass:"));
}

TEST(KnownKeys, HoldTuneSettingsOfAnyConfiguration) {
  EXPECT_TRUE(IsKnownSetting("Calibration", "SmallMoleculeCalib_HPRF_dual source"));
  EXPECT_FALSE(IsKnownSetting("Calibration", "SmallMoleculeCalib_HPRF_"));
  EXPECT_FALSE(IsKnownSetting("Calibration", "SmallMoleculeCalib_RF_x"));
}

TEST(KnownKeys, TellFlagsFromSettings) {
  EXPECT_TRUE(IsKnownFlag("Calibration_t0ToUseToStartLookingforA_usec"));
  EXPECT_TRUE(IsKnownFlag("Calibration_VerifyCalibCoefficients"));
  EXPECT_FALSE(IsKnownFlag("TargetAPercentError"));
  EXPECT_FALSE(IsKnownFlag(""));
}

}  // namespace
}  // namespace tof::description
