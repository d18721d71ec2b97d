// Where a peak lies between the bins.
#pragma once

#include "instruments/peaks/trace.h"

namespace tof::peaks {

// What was compared; docs/peak_finder.md has the figures and the reasons for the default.
enum class CentroidMethod {
  kCentreOfGravity,     // of everything within 1.2 FWHM of the centroid
  kCentreAboveHalf,     // centre of gravity of the bins above half height
  kLogParabola,         // least-squares parabola through the logarithms of the upper bins
  kHalfHeightBisector,  // middle between the two half-height crossings
  kGaussianFit,         // least-squares Gaussian with free height, centre and width
  kMatchedFilter,       // where a Gaussian of the peak's width correlates best
};

// The centroid as a bin number with fraction. `apex` is a bin near the top, `fwhm_bins` the
// expected width, `baseline` what lies under the peak. NaN when there is no signal above the
// baseline or the method finds no centre within one FWHM of the apex.
double Centroid(const Trace& trace, std::size_t apex, double fwhm_bins, double baseline,
                CentroidMethod method);

}  // namespace tof::peaks
