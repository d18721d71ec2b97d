// Instruments with one fault each, by the check that has to notice it.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/instruments/conformance/decorated_instrument.h"
#include "tests/support/journal.h"

namespace tof::conformance {

struct BrokenInstrument {
  std::string check;  // the only one that fails
  std::function<void(Wrappers&, fakes::Journal&)> spoil;
};

inline void PrintTo(const BrokenInstrument& row, std::ostream* out) {
  *out << row.check;
}

// One or more for each check there is.
std::vector<BrokenInstrument> BrokenInstruments();

}  // namespace tof::conformance
