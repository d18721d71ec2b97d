// The digitizer's bin, deduced from the bins that were recorded.
#pragma once

#include <vector>

namespace tof::spectra {

// The mean of the gaps that are less than 1.5 times the smallest one. Bins that were left out make
// gaps of several bins, which don't count; the mean takes out the rounding of times that were
// written with few digits. For a list of picked peaks, which has no bins, it is the distance of its
// closest peaks. `time_ns`: at least two, strictly ascending. Result in ns, above 0.
double DeduceBinWidthNs(const std::vector<double>& time_ns);

}  // namespace tof::spectra
