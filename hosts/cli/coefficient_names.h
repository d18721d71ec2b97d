// Coefficients by name.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "instruments/masstime/mass_time_model.h"

namespace tof::cli {

// Of the coefficients record, in its order.
inline constexpr std::array<const char*, 8> kCoefficientNames{"A", "t0", "C", "D",
                                                              "E", "F",  "G", "H"};

// Those of a fit with `terms`: "A" and "t0" always.
inline std::vector<std::string> NamesOfFitted(masstime::TermSet terms) {
  std::vector<std::string> names{kCoefficientNames[masstime::kA], kCoefficientNames[masstime::kT0]};
  for (std::size_t term = 0; term < masstime::kTermCount; ++term) {
    if ((terms >> term & 1U) == 0) continue;
    names.emplace_back(kCoefficientNames[masstime::kFirstTerm + term]);
  }
  return names;
}

}  // namespace tof::cli
