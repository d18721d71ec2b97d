// Where the m/z of a written spectrum come from.
#pragma once

#include <string>
#include <vector>

#include "hosts/apply/applied_calibration.h"

namespace tof::apply {

// Goes in front of everything else that is said, and marks a spectrum that has its m/z already.
inline constexpr const char* kProvenanceTitle = "tofcal apply: flight times turned into m/z";

struct Fact {
  std::string name;
  std::string value;  // one line
};

// Which calibration, when, by which program, formula, terms and coefficients. `now`: as text.
std::vector<Fact> ProvenanceOf(const AppliedCalibration& calibration, const std::string& version,
                               const std::string& now);

}  // namespace tof::apply
