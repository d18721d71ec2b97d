#include "component/calibration/coefficient_verification.h"

#include <algorithm>
#include <cmath>

#include "component/automation/arithmetic.h"
#include "component/automation/convert.h"
#include "component/trace/guarded.h"

namespace tof {

bool CoefficientsArePlausible(const CoefficientRecord& coefficients,
                              const CoefficientLimits& limits) {
  // In the same units as the likely A, per us, and back: the rounding is part of the comparison.
  const double nominal_a = Multiply(limits.nominal_a, 1000) / 1000;
  const double a_tolerance =
      Multiply(Multiply(limits.allowed_a_fraction, limits.nominal_a), 1000) / 1000;
  const double t0_low_ns =
      Multiply(Multiply(limits.nominal_t0_us, Subtract(1, limits.allowed_t0_fraction)), 1000);
  const double t0_high_ns = Multiply(
      Add(Multiply(limits.nominal_t0_us, limits.allowed_t0_fraction), limits.nominal_t0_us), 1000);

  const bool a_holds = std::fabs(Subtract(coefficients[0], nominal_a)) < a_tolerance;
  const bool t0_above = t0_low_ns < coefficients[1];
  const bool t0_below = coefficients[1] < t0_high_ns;
  const bool terms_hold = std::all_of(coefficients.begin() + 2, coefficients.end(),
                                      [](double term) { return std::fabs(term) < 1.0; });
  return a_holds && t0_above && t0_below && terms_hold;
}

bool Calibration_VerifyCalibCoefficients(Instrument& instrument,
                                         const std::shared_ptr<MassCalCoefficients>& coefficients) {
  if (FlagIs(instrument, "Calibration_VerifyCalibCoefficients", "No")) return true;
  const CoefficientRecord record = Need(coefficients).GetCoefficientRecord();
  CoefficientLimits limits;
  limits.nominal_t0_us =
      TextToDouble(Flag(instrument, "Calibration_t0ToUseToStartLookingforA_usec"));
  limits.allowed_t0_fraction = CalibrationSetting(instrument, "Targett0PercentError");
  limits.nominal_a = instrument.acq_controller->GetCurrentA();
  limits.allowed_a_fraction =
      CalibrationSetting(instrument, "TargetAPercentError" + FpsSuffix(instrument));
  return CoefficientsArePlausible(record, limits);
}

void LoadDefaultCalibCoefficients(Instrument& instrument) {
  constexpr Routine kRoutine{
      .name = "LoadDefaultCalibCoefficients", .on_error = OnError::kRaise, .level = 4};
  Guarded(kRoutine, [&](TraceObj&) {
    auto coefficients = instrument.acq_controller->GetDefaultCalibCoefficients();
    if (coefficients == nullptr) coefficients = instrument.factory->CreateMassCalCoefficients();
    instrument.acq_controller->SetCalibCoefficients(coefficients);
  });
}

}  // namespace tof
