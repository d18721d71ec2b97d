// How wide the peaks of a spectrum are, taken from its strongest ones.
#pragma once

#include "instruments/peaks/trace.h"

namespace tof::peaks {

// FWHM in ns as a power of the flight time: the exponent is 1 for a constant resolving power, 0 for
// a constant width, and negative for a reflectron that focuses heavy ions better than light ones.
struct PeakWidthModel {
  double reference_time_ns = 1.0;
  double reference_fwhm_ns = 1.0;
  double exponent = 1.0;

  double FwhmAt(double time_ns) const;
};

// FWHM t / (2 R) at every flight time.
PeakWidthModel WidthFromResolvingPower(double resolving_power);

// Full width at half height of the peak whose highest bin is `apex`, above `baseline`, in bins;
// between the bins by straight lines. A missing flank ends at the trace's end.
double FullWidthAtHalfHeight(const Trace& trace, std::size_t apex, double baseline);

// Medians over the strongest maxima of sections of the trace. A trace without any gives a width of
// two bins.
PeakWidthModel EstimatePeakWidth(const Trace& trace);

}  // namespace tof::peaks
