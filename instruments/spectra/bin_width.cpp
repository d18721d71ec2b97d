#include "instruments/spectra/bin_width.h"

#include <algorithm>
#include <cstddef>

namespace tof::spectra {

double DeduceBinWidthNs(const std::vector<double>& time_ns) {
  double smallest = time_ns[1] - time_ns[0];
  for (std::size_t i = 2; i < time_ns.size(); ++i) {
    smallest = std::min(smallest, time_ns[i] - time_ns[i - 1]);
  }
  double sum = 0.0;
  std::size_t count = 0;
  for (std::size_t i = 1; i < time_ns.size(); ++i) {
    const double gap = time_ns[i] - time_ns[i - 1];
    if (gap >= 1.5 * smallest) continue;
    sum += gap;
    ++count;
  }
  return sum / static_cast<double>(count);
}

}  // namespace tof::spectra
