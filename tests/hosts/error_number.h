// The number of the automation error that a call raises.
#pragma once

#include <cstdint>

#include "component/automation/error.h"

namespace tof::testing {

// 0 when nothing is raised.
template <class Body>
std::int32_t ErrorNumberOf(Body body) {
  try {
    body();
  } catch (const AutomationError& error) {
    return error.number();
  }
  return 0;
}

}  // namespace tof::testing
