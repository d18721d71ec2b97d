#include "instruments/description/overrides.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "component/automation/convert.h"
#include "instruments/description/known_keys.h"
#include "instruments/description/setpoint_value.h"
#include "instruments/spectra/input_error.h"
#include "instruments/spectra/input_file.h"

namespace tof::description {
namespace {

using spectra::InputError;
using spectra::Quoted;

[[noreturn]] void Fail(std::string_view text, const std::string& found,
                       const std::string& expected) {
  throw InputError({"override " + Quoted(text)}, found, expected);
}

struct NameAndValue {
  std::string_view name;
  std::string_view value;
};

NameAndValue Split(std::string_view text, const char* form) {
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos) Fail(text, "no \"=\"", form);
  return {text.substr(0, equals), text.substr(equals + 1)};
}

}  // namespace

void OverrideSetting(InstrumentDescription& description, std::string_view text) {
  const auto [name, value_text] = Split(text, "Section/Key=Value");
  const std::size_t slash = name.find('/');
  if (slash == std::string_view::npos) Fail(text, "no \"/\"", "Section/Key=Value");
  const std::string_view section = name.substr(0, slash);
  const std::string_view key = name.substr(slash + 1);
  if (!IsKnownSetting(section, key)) {
    Fail(text, "unknown setting " + Quoted(name), "a setting that a calibration reads");
  }
  const std::optional<double> value = spectra::ParseDouble(value_text);
  if (!value) Fail(text, Quoted(value_text), "a number");
  description.settings[std::string(section)][std::string(key)] = *value;
}

void OverrideFlag(InstrumentDescription& description, std::string_view text) {
  const auto [key, value] = Split(text, "Key=Value");
  if (!IsKnownFlag(key) && key != description.aic_flag_key) {
    Fail(text, "unknown flag " + Quoted(key), "a flag that a calibration reads");
  }
  description.flags[std::string(key)] = value;
}

void OverrideSetpoint(InstrumentDescription& description, std::string_view text) {
  const auto [id_text, value_text] = Split(text, "Id=Value");
  const std::optional<std::int32_t> id = spectra::ParseInt32(id_text);
  const auto setpoint = id ? description.setpoints.find(OwnSetpointId(description, *id))
                           : description.setpoints.end();
  if (setpoint == description.setpoints.end()) {
    Fail(text, "unknown setpoint " + Quoted(id_text), "the id of a setpoint of the description");
  }
  const std::optional<Variant> value = ParseSetpointValue(setpoint->second.type, value_text);
  if (!value) Fail(text, Quoted(value_text), ExpectedValue(setpoint->second.type));
  setpoint->second.value = *value;
}

void OverrideCalibrants(InstrumentDescription& description, std::vector<double> masses) {
  const spectra::InputPlace place{"override of the calibrants"};
  if (masses.empty()) throw InputError(place, "no masses", "one or more");
  for (const double mass : masses) {
    if (std::isfinite(mass) && mass > 0.0) continue;
    throw InputError(place, "the mass " + std::to_string(mass), "finite, positive masses");
  }
  const auto selector = description.setpoints.find(kCalibrantListSetpoint);
  if (selector == description.setpoints.end()) {
    throw InputError(place, "no setpoint 117 in " + Quoted(description.name),
                     "one that selects the calibrant list");
  }
  description.calibrants[ToInt32(selector->second.value)] = std::move(masses);
}

}  // namespace tof::description
