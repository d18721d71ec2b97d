#include "instruments/description/instrument_description.h"

#include "component/automation/convert.h"

namespace tof::description {
std::int32_t OwnSetpointId(const InstrumentDescription& description, std::int32_t id) {
  const auto alias = description.setpoint_aliases.find(id);
  return alias == description.setpoint_aliases.end() ? id : alias->second;
}

std::vector<double> CalibrantMasses(const InstrumentDescription& description) {
  const auto selector = description.setpoints.find(kCalibrantListSetpoint);
  if (selector == description.setpoints.end()) return {};
  const auto list = description.calibrants.find(ToInt32(selector->second.value));
  return list == description.calibrants.end() ? std::vector<double>() : list->second;
}

}  // namespace tof::description
