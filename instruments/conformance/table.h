// The suite's results for people.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "instruments/conformance/suite.h"

namespace tof::conformance {

std::size_t NumberOf(Outcome outcome, const std::vector<CheckResult>& results);

// The instrument's name, a line per check, with the details of those that did not pass, and the
// sums.
std::string TableOf(const std::string& instrument, const std::vector<CheckResult>& results);

}  // namespace tof::conformance
