// Where calibrants really arrive when the calibration in force is off.
#pragma once

#include <span>
#include <vector>

#include "instruments/peaks/isotopes.h"

namespace tof::peaks {

// A calibrant as the calibration in force expects it.
struct Expected {
  double time_ns = 0.0;
  double window_ns = 0.0;  // how far to either side it may lie
};

// Expected flight time to real flight time, both in ns: real = expected + correction, a polynomial
// of the expected time scaled to -1..1 by `middle_ns` and `half_width_ns`.
struct Alignment {
  double middle_ns = 0.0;
  double half_width_ns = 1.0;
  std::vector<double> correction_ns;  // by power; none: the times are taken as expected
  std::size_t matched = 0;            // calibrants that have a cluster where it says
  double spread = 0.0;                // their median distance from it, as a part of the flight time

  double Correct(double expected_ns) const;
};

// The alignment under which the most calibrants meet the first isotope of a cluster. An error of A
// stretches the times and one of t0 shifts them, so any two pairings of a calibrant with a cluster
// make a proposal; wrong ones do not fit the others. The calibration in force is kept unless a
// proposal matches clearly more; the winner is refined by least squares, with a curvature when
// there are calibrants enough. `clusters` in ascending time.
Alignment AlignTimes(std::span<const Expected> expected, std::span<const Cluster> clusters,
                     const PeakWidthModel& width);

}  // namespace tof::peaks
