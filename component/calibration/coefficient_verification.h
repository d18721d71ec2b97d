// Whether fitted coefficients are plausible, and the coefficients to fall back on.
#pragma once

#include "component/calibrator/instrument.h"

namespace tof {

// What a plausible fit must stay within.
struct CoefficientLimits {
  double nominal_a = 0.0;           // A of the coefficients in force, square-root mass per ns
  double allowed_a_fraction = 0.0;  // "TargetAPercentError", a fraction
  double nominal_t0_us = 0.0;
  double allowed_t0_fraction = 0.0;  // "Targett0PercentError", a fraction
};

// Nine strict tests, all of which must hold; a NaN fails the test it meets. For a negative nominal
// t0 only a negative fraction leaves an interval between the two t0 bounds; for a negative nominal
// A nothing passes. Both follow from the comparisons and are kept. A limit beyond the doubles is
// error 6.
bool CoefficientsArePlausible(const CoefficientRecord& coefficients,
                              const CoefficientLimits& limits);

// Reads the limits from the instrument and applies them; True without reading anything when the
// flag "Calibration_VerifyCalibCoefficients" is "No".
bool Calibration_VerifyCalibCoefficients(Instrument& instrument,
                                         const std::shared_ptr<MassCalCoefficients>& coefficients);

// Puts the instrument's default coefficients in force, or empty ones when it has none.
void LoadDefaultCalibCoefficients(Instrument& instrument);

}  // namespace tof
