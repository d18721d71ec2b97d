#include "instruments/standin/instrument_state.h"

#include <string>

#include "component/automation/error.h"

namespace tof::standin {

CalInfo CalInfoOf(const description::InstrumentDescription& description) {
  CalInfo info;
  info.TradWeighting = static_cast<std::int32_t>(description.trad_weighting);
  info.PolyWeighting = static_cast<std::int32_t>(description.poly_weighting);
  return info;
}

masstime::AcquisitionWindow WindowOf(const InstrumentState& state) {
  constexpr double kNsPerUs = 1000.0;
  const description::Acquisition& acquisition = state.description.acquisition;
  return {acquisition.start_us * kNsPerUs, acquisition.end_us * kNsPerUs};
}

Calibration StartingCalibration(const InstrumentState& state) {
  Calibration calibration = state.in_force;
  if (state.starting) {
    calibration.coefficients = {state.starting->a_per_ns, state.starting->t0_ns};
  }
  return calibration;
}

const description::Setpoint& SetpointOf(const InstrumentState& state, std::int32_t id) {
  const auto setpoint = state.setpoints.find(OwnSetpointId(state.description, id));
  if (setpoint == state.setpoints.end()) {
    throw AutomationError(static_cast<std::int32_t>(RunTimeError::kInvalidCall),
                          "The instrument has no setpoint " + std::to_string(id));
  }
  return setpoint->second;
}

}  // namespace tof::standin
