// Setpoint types and values as text.
#pragma once

#include <optional>
#include <string_view>

#include "component/automation/variant.h"
#include "component/calibrator/collaborators.h"

namespace tof::description {

// "int16", "int32", "double" or "boolean".
std::optional<ValueType> ParseValueType(std::string_view text);

// The value of that type that the whole of `text` is: a number in its range, or "true" or "false".
std::optional<Variant> ParseSetpointValue(ValueType type, std::string_view text);

// What ParseSetpointValue accepts, for messages.
const char* ExpectedValue(ValueType type);

}  // namespace tof::description
