// How much the mass error depends on the abundance of a peak, measured from a survey.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tof::report {

// A calibrant's flight time and abundance at one voltage of the survey.
struct AbundancePoint {
  std::size_t calibrant = 0;
  double time_ns = 0.0;
  double abundance = 0.0;  // positive
};

// The relative m/z error of a point, without its calibrant's own constant.
struct RelativeError {
  std::size_t calibrant = 0;
  double abundance = 0.0;
  double error_ppm = 0.0;
};

// The slope within a range of abundances.
struct AbundanceSlope {
  double from_abundance = 0.0;
  double to_abundance = 0.0;
  std::size_t points = 0;
  double ppm_per_decade = 0.0;
  double standard_uncertainty = 0.0;  // ppm per decade
  // The errors that the fitted curve has at the ends of the range; 0 at the lowest abundance of
  // all.
  double from_ppm = 0.0;
  double to_ppm = 0.0;
};

struct AbundanceEffect {
  std::string not_measured;  // why; empty: it was measured
  std::size_t points = 0;
  std::size_t calibrants = 0;
  std::vector<AbundanceSlope> slopes;  // from weak to strong
  std::vector<RelativeError> errors;   // scattered about the curve
};

// Fits, by least squares weighted with the abundance (the number of ions, up to a factor),
//
//   2 (t - T) / (T - t0) x 1E6 = f(log10 abundance) + a constant for each calibrant
//
// with T the calibrant's mean flight time and f a line with up to nine bends, about as many points
// between two as between any others. The left-hand side is the relative error of m/z, as m/z grows
// with the square of t - t0; the constants take up what the coefficients get wrong at a calibrant.
// The uncertainties are those of the slopes from the scatter about the curve, one standard
// deviation; each calibrant and each slope costs a degree of freedom.
AbundanceEffect AbundanceEffectOf(const std::vector<AbundancePoint>& points, std::size_t calibrants,
                                  std::optional<double> t0_ns);

}  // namespace tof::report
