#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>

#include "component/automation/number_text.h"
#include "instruments/conformance/attempt.h"
#include "instruments/conformance/checks.h"
#include "instruments/conformance/shifted_fit.h"
#include "instruments/conformance/subject.h"

namespace tof::conformance {
namespace {

constexpr double kTenthOfAPpm = 1e-7;

void BinWidthIsPositive(Subject& subject) {
  const double width_ns = CurrentCoefficients(subject)->GetBinWidth();
  Require(std::isfinite(width_ns) && width_ns > 0.0, "ns above 0", NumberText(width_ns));
}

void RecordIsCarriedThrough(Subject& subject) {
  std::array<std::byte, sizeof(CalInfo)> bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::byte>(i + 1);
  const auto written = std::bit_cast<CalInfo>(bytes);
  const auto coefficients = CurrentCoefficients(subject);
  const CalInfo as_found = coefficients->GetCalInfo();
  decltype(bytes) found{};
  ThenPutBack(
      [&] {
        coefficients->SetCalInfo(written);
        found = std::bit_cast<decltype(bytes)>(coefficients->GetCalInfo());
      },
      [&] { coefficients->SetCalInfo(as_found); });
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    Require(found[i] == bytes[i],
            "byte " + std::to_string(i) + " of 48 as it was written, " +
                std::to_string(std::to_integer<int>(bytes[i])),
            std::to_string(std::to_integer<int>(found[i])));
  }
}

void TimeAndMassAreInverse(Subject& subject) {
  const auto coefficients = CurrentCoefficients(subject);
  for (const double mass : CalibrantsOf(subject)) {
    RequireNear("m/z at the flight time of m/z " + NumberText(mass),
                coefficients->TimeToMass(coefficients->MassToTime(mass)), mass,
                mass * kTenthOfAPpm);
  }
}

void MassGrowsWithTime(Subject& subject) {
  constexpr int kSteps = 100;
  const Window window = AcquisitionWindowOf(subject);
  const auto coefficients = CurrentCoefficients(subject);
  double last = 0.0;
  for (int i = 1; i <= kSteps; ++i) {
    const double time_ns = window.start_ns + (window.end_ns - window.start_ns) * i / kSteps;
    const double mass = coefficients->TimeToMass(time_ns);
    Require(mass > last, "more than m/z " + NumberText(last) + " at " + NumberText(time_ns) + " ns",
            NumberText(mass));
    last = mass;
  }
}

void FitFollowsTheCalibrants(Subject& subject) {
  const ExactCalibrants calibrants = ShiftedCalibrants(subject);
  const auto coefficients = CurrentCoefficients(subject);
  FitAAndT0(*coefficients, calibrants);
  RequireCalibrantsMet(*coefficients, calibrants);
}

void RecordHoldsAAndT0(Subject& subject) {
  const ExactCalibrants calibrants = ShiftedCalibrants(subject);
  const auto coefficients = CurrentCoefficients(subject);
  Given("MassCalCoefficients.fit-follows-the-calibrants", [&] {
    FitAAndT0(*coefficients, calibrants);
    RequireCalibrantsMet(*coefficients, calibrants);
  });
  RequireAAndT0InRecord(*coefficients, calibrants);
}

// Of a fit that has to be refused.
struct Refusal {
  std::optional<RaisedError> error;
  bool coefficients_are_untouched = false;
};

Refusal Attempt(Subject& subject, const BoundedArray<double>& masses,
                const BoundedArray<double>& times_ns) {
  const auto coefficients = CurrentCoefficients(subject);
  const CoefficientRecord before = coefficients->GetCoefficientRecord();
  Refusal refusal;
  refusal.error = ErrorRaisedBy([&] { coefficients->Calibrate(masses, times_ns); });
  refusal.coefficients_are_untouched = coefficients->GetCoefficientRecord() == before;
  return refusal;
}

Refusal AttemptWithALostPeak(Subject& subject) {
  ExactCalibrants calibrants = ShiftedCalibrants(subject);
  calibrants.times_ns(1) = std::numeric_limits<double>::quiet_NaN();
  return Attempt(subject, calibrants.masses, calibrants.times_ns);
}

void LostPeakIsRefused(Subject& subject) {
  Require(AttemptWithALostPeak(subject).error.has_value(), "an error for a flight time that is NaN",
          "none");
}

void SinglePointIsRefused(Subject& subject) {
  const ExactCalibrants calibrants = ShiftedCalibrants(subject);
  const Refusal refusal = Attempt(subject, BoundedArray<double>{calibrants.masses(0)},
                                  BoundedArray<double>{calibrants.times_ns(0)});
  Require(refusal.error.has_value(), "an error for one calibrant", "none");
}

void RefusedFitChangesNothing(Subject& subject) {
  const Refusal refusal = AttemptWithALostPeak(subject);
  if (!refusal.error) throw NotApplicable("nothing was refused, which another check is about");
  Require(refusal.coefficients_are_untouched, "the coefficients as before the fit", "others");
}

void ErrorsCarryNumberAndText(Subject& subject) {
  RequireNumberAndText(AttemptWithALostPeak(subject).error);
}

constexpr std::array kChecks{
    Check{"MassCalCoefficients", "bin-width-is-positive",
          "The width of a digitiser bin, in ns, goes into the trace: a number above 0.",
          BinWidthIsPositive},
    Check{"MassCalCoefficients", "information-record-is-carried-through",
          "Of the 48 bytes that travel with the coefficients, the calibrator changes the time, the "
          "setpoint and the power-use flag; every other byte comes back as it was.",
          RecordIsCarriedThrough},
    Check{"MassCalCoefficients", "time-and-mass-are-inverse",
          "Where a mass is sought is worked out from its mass, what was found from its time: the "
          "two conversions undo each other, to a tenth of a ppm.",
          TimeAndMassAreInverse},
    Check{
        "MassCalCoefficients", "mass-grows-with-time",
        "Over the whole acquisition a later peak is a heavier one; otherwise masses can't be told "
        "apart by their flight times.",
        MassGrowsWithTime},
    Check{"MassCalCoefficients", "fit-follows-the-calibrants",
          "Calibrate changes the object's own coefficients: from times that follow A and t0 "
          "exactly, it gives the masses back to a tenth of a ppm.",
          FitFollowsTheCalibrants},
    Check{"MassCalCoefficients", "record-holds-a-and-t0",
          "The result is judged by the first two of the eight coefficients: A in square-root mass "
          "per ns, t0 in ns.",
          RecordHoldsAAndT0},
    Check{
        "MassCalCoefficients", "lost-peak-is-refused",
        "The average time of a mass that was not found is NaN: fitting it is an error, which ends "
        "the calibration instead of shifting it.",
        LostPeakIsRefused},
    Check{"MassCalCoefficients", "single-point-is-refused",
          "One calibrant does not determine A and t0: an error.", SinglePointIsRefused},
    Check{"MassCalCoefficients", "refused-fit-changes-nothing",
          "A fit that raised an error has left the coefficients as they were.",
          RefusedFitChangesNothing},
    Check{"MassCalCoefficients", "errors-carry-number-and-text", kErrorsReachTheUser,
          ErrorsCarryNumberAndText},
};

}  // namespace

std::span<const Check> MassCalCoefficientsChecks() {
  return kChecks;
}

}  // namespace tof::conformance
