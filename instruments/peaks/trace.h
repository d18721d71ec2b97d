// A piece of a spectrum on evenly spaced bins, as the peak finder works on it.
#pragma once

#include <cstddef>
#include <vector>

#include "instruments/spectra/spectrum.h"

namespace tof::peaks {

// Bin `i` lies at start_ns + i * bin_ns. Bins that the spectrum leaves out are 0.
struct Trace {
  double start_ns = 0.0;
  double bin_ns = 0.0;
  std::vector<double> intensity;

  double TimeOf(double bin) const { return start_ns + bin * bin_ns; }
  double BinOf(double time_ns) const { return (time_ns - start_ns) / bin_ns; }
};

// The bins of `spectrum` from start_ns to end_ns; empty when there are none. A bin that is off the
// grid is shared by its two neighbours, which keeps its centroid. Raises std::invalid_argument when
// the spectrum's bin width is not positive, its columns differ in length, or its times span more
// bins than a digitizer has (2^28).
Trace ExtractTrace(const spectra::Spectrum& spectrum, double start_ns, double end_ns);

}  // namespace tof::peaks
