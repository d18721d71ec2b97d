// What a piece of code raises, as a value that a table can hold.
#pragma once

#include <cstdint>

#include "component/automation/error.h"

namespace tof {

// The number of the automation error that `body` raises, 0 when it raises none.
template <class Body>
std::int32_t ErrorNumberOf(Body body) {
  try {
    body();
  } catch (const AutomationError& error) {
    return error.number();
  }
  return 0;
}

}  // namespace tof
