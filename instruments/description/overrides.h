// Changes to a description that a user asks for beside its file.
#pragma once

#include <string_view>

#include "instruments/description/instrument_description.h"

namespace tof::description {

// Each takes one change as text and makes it, with the checks that the file's own values undergo:
// known keys, strict numbers, the type of the setpoint. Raises an InputError, changing nothing.
void OverrideSetting(InstrumentDescription& description,
                     std::string_view text);                                   // Section/Key=Value
void OverrideFlag(InstrumentDescription& description, std::string_view text);  // Key=Value
void OverrideSetpoint(InstrumentDescription& description, std::string_view text);  // Id=Value

}  // namespace tof::description
