// What the virtual instrument's physics is, and how it hangs on the setpoints.
#pragma once

#include <cstdint>

#include "instruments/virtual/parameters.h"

namespace tof::description {

struct VirtualDescription {
  virtual_instrument::Parameters parameters;
  std::uint64_t seed = 1;
  std::int32_t rf_setpoint = 0;     // the setpoint that is the ion guide's RF voltage
  double setpoint_write_sec = 0.0;  // how long a write takes
};

}  // namespace tof::description
