// A spectrum as a digitizer delivers it: intensities over flight time.
#pragma once

#include <vector>

namespace tof::spectra {

// `time_ns`: bin positions in nanoseconds, strictly ascending; bins without a signal may be left
// out, so neighbours may lie further apart than `bin_width_ns`. `intensity`: same length, finite,
// in the detector's own units (ion counts times gain, mV, ...). `bin_width_ns`: the digitizer's
// bin.
struct Spectrum {
  std::vector<double> time_ns;
  std::vector<double> intensity;
  double bin_width_ns = 0.0;
};

}  // namespace tof::spectra
