// Where a peak lies between the bins.
#pragma once

#include "instruments/peaks/trace.h"

namespace tof::peaks {

// docs/peak_finder.md compares them on real and simulated spectra.
enum class CentroidMethod {
  kCentreOfGravity,  // of everything within 1.2 FWHM: the statistical limit for counted ions
  kEdges,            // between the two edges: for peaks whose shape changes with mass or abundance
  kLogParabola,      // least-squares parabola through the logarithms of the upper bins
  kGaussianFit,      // least-squares Gaussian with free height, centre and width
  kMatchedFilter,    // where a Gaussian of the peak's width correlates best
};

// Of kEdges: the flight times at which the peak rises and falls through the heights from `low` to
// `high` (parts of the peak's height), averaged, and from these the time at `position`: 0 is the
// leading edge, 1 the trailing one, 0.5 the middle.
struct EdgeTiming {
  double low = 0.3;
  double high = 0.9;
  double position = 0.5;
};

struct CentroidOptions {
  CentroidMethod method = CentroidMethod::kCentreOfGravity;
  EdgeTiming edges;
};

// The centroid as a bin number with fraction. `apex` is a bin near the top, `fwhm_bins` the
// expected width, `baseline` what lies under the peak. NaN when there is no signal above the
// baseline or the method finds no centre within 1.5 FWHM and a bin of the apex.
double Centroid(const Trace& trace, std::size_t apex, double fwhm_bins, double baseline,
                const CentroidOptions& options);

}  // namespace tof::peaks
