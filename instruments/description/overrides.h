// Changes to a description that a user asks for beside its file.
#pragma once

#include <string_view>
#include <vector>

#include "instruments/description/instrument_description.h"

namespace tof::description {

// Each takes one change as text and makes it, with the checks that the file's own values undergo:
// known keys, strict numbers, the type of the setpoint. Raises an InputError, changing nothing.
void OverrideSetting(InstrumentDescription& description,
                     std::string_view text);                                   // Section/Key=Value
void OverrideFlag(InstrumentDescription& description, std::string_view text);  // Key=Value
void OverrideSetpoint(InstrumentDescription& description, std::string_view text);  // Id=Value

// Puts masses (m/z) in place of the calibrant list that the present value of setpoint 117 selects.
// Raises an InputError, changing nothing, for none, for one that is not finite and positive, and
// when there is no setpoint 117.
void OverrideCalibrants(InstrumentDescription& description, std::vector<double> masses);

}  // namespace tof::description
