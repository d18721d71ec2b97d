#include "instruments/masstime/mass_time_coefficients.h"

#include <string>
#include <vector>

#include "component/automation/error.h"
#include "instruments/masstime/fit.h"

namespace tof::masstime {

double MassTimeCoefficients::TimeToMass(double time_ns) {
  return masstime::TimeToMass(model_, time_ns);
}

double MassTimeCoefficients::MassToTime(double mass) {
  return masstime::MassToTime(model_, mass);
}

void MassTimeCoefficients::Calibrate(const BoundedArray<double>& masses,
                                     const BoundedArray<double>& times_ns) {
  const std::vector<double> mass_list(masses.begin(), masses.end());
  const std::vector<double> time_list(times_ns.begin(), times_ns.end());
  try {
    const Fit fit = FitWithFallback(
        {mass_list, time_list}, model_.window, static_cast<TermSet>(info_.PolyTermPowerUseFlag),
        static_cast<Weighting>(info_.TradWeighting), static_cast<Weighting>(info_.PolyWeighting));
    model_.coefficients = fit.coefficients;
    info_.PolyTermsFlags = static_cast<std::int32_t>(fit.terms);
  } catch (const FitError& error) {
    throw AutomationError(static_cast<std::int32_t>(RunTimeError::kInvalidCall),
                          std::string("Calibrate: ") + error.what());
  }
}

}  // namespace tof::masstime
