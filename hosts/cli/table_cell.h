// Numbers in the columns of a table.
#pragma once

#include <fmt/format.h>

#include <cmath>
#include <optional>
#include <string>

namespace tof::cli {

// `width` characters: the number with `digits` behind the point, or a dash for one that is not
// known or not finite.
inline std::string Cell(std::optional<double> value, int width, int digits) {
  if (!value || !std::isfinite(*value)) return fmt::format("{:>{}}", "-", width);
  return fmt::format("{:>{}.{}f}", *value, width, digits);
}

// The same, a plus sign included: for errors.
inline std::string SignedCell(std::optional<double> value, int width, int digits) {
  if (!value || !std::isfinite(*value)) return fmt::format("{:>{}}", "-", width);
  return fmt::format("{:>+{}.{}f}", *value, width, digits);
}

}  // namespace tof::cli
