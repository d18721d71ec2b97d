#include "hosts/cli/spectra_plan.h"

#include <cmath>
#include <limits>

#include "instruments/standin/instrument_access.h"

namespace tof::cli {
namespace {

using standin::CalibrationSettingOf;

// Searched for mass by mass; any other setpoint is ramped.
constexpr double kSearchedSetpoint = 83.0;

bool VoltagesAreGiven(const standin::InstrumentState& state) {
  const auto& flags = state.description.flags;
  const auto flag = flags.find("EnableAICAltSPPlugValues");
  return flag != flags.end() && flag->second == "Yes";
}

}  // namespace

// One more is taken first, and not used.
SpectraPlan TraditionalPlan(std::int16_t spectra_per_mass) {
  return {.spectra = spectra_per_mass + 1};
}

SpectraPlan AbundanceImmunePlan(const standin::InstrumentState& state, std::size_t masses,
                                std::int16_t spectra_per_mass) {
  SpectraPlan plan{.spectra = static_cast<std::int64_t>(masses) * spectra_per_mass};
  if (VoltagesAreGiven(state)) return plan;
  const double range = CalibrationSettingOf(state, "AIC_RF_HighValue") -
                       CalibrationSettingOf(state, "AIC_RF_LowValue");
  const double steps = std::nearbyint(range / CalibrationSettingOf(state, "AIC_RF_Step"));
  // A ramp that cannot be walked fails before its first spectrum.
  const bool walked = steps >= 0.0 && steps <= std::numeric_limits<std::int16_t>::max();
  if (CalibrationSettingOf(state, "AIC_SetpointToUse") == kSearchedSetpoint || !walked) {
    plan.or_more = true;
    return plan;
  }
  // The ramp is surveyed, then walked again to choose.
  plan.spectra += 2 * (static_cast<std::int64_t>(steps) + 1);
  return plan;
}

}  // namespace tof::cli
