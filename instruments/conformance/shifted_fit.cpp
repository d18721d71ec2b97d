#include "instruments/conformance/shifted_fit.h"

#include "component/automation/number_text.h"
#include "instruments/conformance/attempt.h"

namespace tof::conformance {
namespace {

constexpr double kTenthOfAPpm = 1e-7;

}  // namespace

ExactCalibrants ShiftedCalibrants(Subject& subject) {
  constexpr std::int32_t kCount = 6;
  const auto in_force = CurrentCoefficients(subject);
  const CoefficientRecord record = Given("AcqController.current-coefficients-are-usable", [&] {
    const CoefficientRecord coefficients = in_force->GetCoefficientRecord();
    Require(coefficients[0] > 0.0, "", "");
    return coefficients;
  });
  const Window window = AcquisitionWindowOf(subject);

  ExactCalibrants calibrants;
  calibrants.a_per_ns = record[0] * (1.0 + 2e-4);
  calibrants.t0_ns = record[1] + 2.0;
  calibrants.masses.ReDim(0, kCount - 1);
  calibrants.times_ns.ReDim(0, kCount - 1);
  for (std::int32_t i = 0; i < kCount; ++i) {
    const double part = (i + 0.5) / kCount;
    const double time_ns = window.start_ns + part * (window.end_ns - window.start_ns);
    const double root = calibrants.a_per_ns * (time_ns - calibrants.t0_ns);
    calibrants.times_ns(i) = time_ns;
    calibrants.masses(i) = root * root;
  }
  return calibrants;
}

void FitAAndT0(MassCalCoefficients& coefficients, const ExactCalibrants& calibrants) {
  CalInfo info = coefficients.GetCalInfo();
  info.PolyTermPowerUseFlag = 0;
  coefficients.SetCalInfo(info);
  coefficients.Calibrate(calibrants.masses, calibrants.times_ns);
}

void RequireCalibrantsMet(MassCalCoefficients& coefficients, const ExactCalibrants& calibrants) {
  for (std::int32_t i = 0; i <= calibrants.masses.UBound(); ++i) {
    RequireNear("m/z at " + NumberText(calibrants.times_ns(i)) + " ns",
                coefficients.TimeToMass(calibrants.times_ns(i)), calibrants.masses(i),
                calibrants.masses(i) * kTenthOfAPpm);
  }
}

void RequireAAndT0InRecord(MassCalCoefficients& coefficients, const ExactCalibrants& calibrants) {
  constexpr double kRoundingNs = 1e-3;
  const CoefficientRecord record = coefficients.GetCoefficientRecord();
  RequireNear("A", record[0], calibrants.a_per_ns, calibrants.a_per_ns * kTenthOfAPpm);
  RequireNear("t0", record[1], calibrants.t0_ns, kRoundingNs);
}

std::shared_ptr<MassCalCoefficients> ShiftedCoefficients(Subject& subject) {
  const ExactCalibrants calibrants = ShiftedCalibrants(subject);
  auto coefficients = CurrentCoefficients(subject);
  Given("MassCalCoefficients.fit-follows-the-calibrants", [&] {
    FitAAndT0(*coefficients, calibrants);
    RequireCalibrantsMet(*coefficients, calibrants);
  });
  Given("MassCalCoefficients.record-holds-a-and-t0",
        [&] { RequireAAndT0InRecord(*coefficients, calibrants); });
  return coefficients;
}

}  // namespace tof::conformance
