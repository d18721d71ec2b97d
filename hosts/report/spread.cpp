#include "hosts/report/spread.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tof::report {
namespace {

constexpr double kPpm = 1e6;
constexpr double kSecondsPerMinute = 60.0;
constexpr double kSideBySide = 0.2;  // of the whole time

struct Line {
  double sum_xx = 0.0;
  double sum_xy = 0.0;
  double first = 0.0;
  double last = 0.0;
};

double AbscissaOf(const Measurement& measurement) {
  return measurement.at_seconds.value_or(measurement.number);
}

// A measurement against the means of its calibrant.
struct Centred {
  double seconds = 0.0;
  double ppm = 0.0;
};

struct MeanMoment {
  double seconds = 0.0;
  double count = 0.0;
};

MeanMoment MeanMomentOf(const Calibrant& calibrant) {
  MeanMoment mean;
  for (const Measurement& one : calibrant.measurements) {
    if (!one.time_ns || !one.at_seconds) continue;
    mean.seconds += *one.at_seconds;
    mean.count += 1.0;
  }
  if (mean.count > 0.0) mean.seconds /= mean.count;
  return mean;
}

// The slope through the origin of what has been centred.
void FitSlope(const std::vector<Centred>& points, double freedom, Drift& drift) {
  double sum_xx = 0.0;
  double sum_xy = 0.0;
  double sum_yy = 0.0;
  for (const Centred& point : points) {
    sum_xx += point.seconds * point.seconds;
    sum_xy += point.seconds * point.ppm;
    sum_yy += point.ppm * point.ppm;
  }
  const double slope = sum_xy / sum_xx;
  const double scatter = std::max(0.0, sum_yy - slope * sum_xy) / freedom;
  drift.ppm_per_minute = slope * kSecondsPerMinute;
  drift.standard_uncertainty = std::sqrt(scatter / sum_xx) * kSecondsPerMinute;
}

}  // namespace

std::optional<Drift> DriftOf(const std::vector<Calibrant>& calibrants) {
  std::vector<Centred> points;
  Drift drift{.first_seconds = std::numeric_limits<double>::infinity(),
              .last_seconds = -std::numeric_limits<double>::infinity()};
  double earliest_mean = drift.first_seconds;
  double latest_mean = drift.last_seconds;
  double constants = 0.0;
  for (const Calibrant& calibrant : calibrants) {
    const Spread spread = SpreadOf(calibrant.measurements);
    const MeanMoment mean = MeanMomentOf(calibrant);
    if (!spread.mean_ns || mean.count < 2.0) continue;
    constants += 1.0;
    earliest_mean = std::min(earliest_mean, mean.seconds);
    latest_mean = std::max(latest_mean, mean.seconds);
    for (const Measurement& one : calibrant.measurements) {
      if (!one.time_ns || !one.at_seconds) continue;
      drift.first_seconds = std::min(drift.first_seconds, *one.at_seconds);
      drift.last_seconds = std::max(drift.last_seconds, *one.at_seconds);
      points.push_back(
          {*one.at_seconds - mean.seconds, DeviationPpm(*one.time_ns, *spread.mean_ns)});
    }
  }
  const double freedom = static_cast<double>(points.size()) - constants - 1.0;
  const double seconds = drift.last_seconds - drift.first_seconds;
  if (freedom < 1.0 || seconds <= 0.0) return std::nullopt;
  FitSlope(points, freedom, drift);
  drift.is_one_line = latest_mean - earliest_mean < seconds * kSideBySide;
  if (!std::isfinite(drift.ppm_per_minute)) return std::nullopt;
  return drift;
}

double DeviationPpm(double time_ns, double mean_ns) {
  return (time_ns - mean_ns) / mean_ns * kPpm;
}

Spread SpreadOf(const std::vector<Measurement>& measurements) {
  Spread spread;
  double sum_ns = 0.0;
  double sum_x = 0.0;
  for (const Measurement& measurement : measurements) {
    if (!measurement.time_ns) continue;
    ++spread.measurements;
    sum_ns += *measurement.time_ns;
    sum_x += AbscissaOf(measurement);
  }
  if (spread.measurements == 0) return spread;
  const auto count = static_cast<double>(spread.measurements);
  const double mean_ns = sum_ns / count;
  const double mean_x = sum_x / count;
  spread.mean_ns = mean_ns;
  if (spread.measurements < 2) return spread;

  Line line;
  double sum_of_squares = 0.0;
  bool is_first = true;
  for (const Measurement& measurement : measurements) {
    if (!measurement.time_ns) continue;
    const double x = AbscissaOf(measurement);
    const double deviation_ns = *measurement.time_ns - mean_ns;
    sum_of_squares += deviation_ns * deviation_ns;
    line.sum_xx += (x - mean_x) * (x - mean_x);
    line.sum_xy += (x - mean_x) * deviation_ns;
    if (is_first) line.first = x;
    line.last = x;
    is_first = false;
  }
  spread.deviation_ns = std::sqrt(sum_of_squares / (count - 1.0));
  if (line.sum_xx > 0.0) {
    spread.drift_ppm = line.sum_xy / line.sum_xx * (line.last - line.first) / mean_ns * kPpm;
  }
  return spread;
}

}  // namespace tof::report
