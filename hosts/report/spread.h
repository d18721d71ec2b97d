// How far the measurements of a calibrant's flight time lie apart.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "hosts/report/report_page.h"

namespace tof::report {

struct Spread {
  std::size_t measurements = 0;  // with a peak
  std::optional<double> mean_ns;
  std::optional<double> deviation_ns;  // of a sample; none for fewer than two measurements
  // Slope of the flight time over the instrument time, or over the measurements where no time was
  // recorded, in ppm of the flight time from the first measurement to the last.
  std::optional<double> drift_ppm;
};

Spread SpreadOf(const std::vector<Measurement>& measurements);

// A drift that all calibrants share: the slope of their deviations from their own means over the
// instrument time.
struct Drift {
  double ppm_per_minute = 0.0;        // of the flight time
  double standard_uncertainty = 0.0;  // from the scatter, ppm per minute
  double first_seconds = 0.0;
  double last_seconds = 0.0;
  // Whether the calibrants were measured side by side, so that one line shows the drift of all.
  bool is_one_line = false;
};

// None when too little was measured, or without instrument times.
std::optional<Drift> DriftOf(const std::vector<Calibrant>& calibrants);

// Deviation of a flight time from the mean, ppm.
double DeviationPpm(double time_ns, double mean_ns);

}  // namespace tof::report
