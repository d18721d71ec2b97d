#include "instruments/peaks/isotopes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace tof::peaks {
namespace {

constexpr double kCarbon13Step = 1.0033548;  // u, mass of carbon-13 minus that of carbon-12

// Largest height of a peak over the one an isotope before it, at `mass`. A carbon chain (14.016 u
// per carbon, 1.08 % carbon-13) has 7.7e-4 per u; half as much again and a constant allow for
// noise and for small ions with other elements.
double LargestIsotopeRatio(double mass) {
  return 0.25 + 1.5 * 7.7e-4 * mass;
}

// How far from the expected distance an isotope may lie: what a calibration that is 2 % off in A
// (4 % in the spacing) can do, and something for the centroids.
double Tolerance(double spacing_ns, double fwhm_ns) {
  return std::min(0.25 * spacing_ns, 0.06 * spacing_ns + 0.5 * fwhm_ns);
}

constexpr std::ptrdiff_t kNone = -1;

// Index of the peak of which peaks[index] is the next isotope, or kNone.
std::ptrdiff_t PeakBefore(std::span<const Peak> peaks, std::size_t index,
                          const masstime::MassTimeModel& calibration, const PeakWidthModel& width) {
  const Peak& peak = peaks[index];
  const double spacing_ns = IsotopeSpacing(calibration, peak.time_ns);
  const double fwhm_ns = width.FwhmAt(peak.time_ns);
  if (!(spacing_ns > 1.2 * fwhm_ns)) return kNone;
  const double tolerance_ns = Tolerance(spacing_ns, fwhm_ns);
  const double expected_ns = peak.time_ns - spacing_ns;
  const double mass = masstime::TimeToMass(calibration, expected_ns);
  const double least_height = peak.height / LargestIsotopeRatio(mass);

  std::ptrdiff_t best = kNone;
  for (std::size_t i = index; i-- > 0 && peaks[i].time_ns >= expected_ns - tolerance_ns;) {
    if (peaks[i].time_ns > expected_ns + tolerance_ns || peaks[i].height < least_height) continue;
    const auto candidate = static_cast<std::ptrdiff_t>(i);
    if (best == kNone || peaks[i].height > peaks[static_cast<std::size_t>(best)].height) {
      best = candidate;
    }
  }
  return best;
}

}  // namespace

double IsotopeSpacing(const masstime::MassTimeModel& calibration, double time_ns) {
  const double root_mass = masstime::SqrtMass(calibration, time_ns);
  const double a = calibration.coefficients[masstime::kA];
  if (!(root_mass > 0.0) || !(a > 0.0)) return 0.0;
  return (std::sqrt(root_mass * root_mass + kCarbon13Step) - root_mass) / a;
}

std::vector<Cluster> GroupIsotopes(std::span<const Peak> peaks,
                                   const masstime::MassTimeModel& calibration,
                                   const PeakWidthModel& width) {
  std::vector<Cluster> clusters;
  std::vector<std::size_t> cluster_of(peaks.size());
  for (std::size_t i = 0; i < peaks.size(); ++i) {
    const std::ptrdiff_t before = PeakBefore(peaks, i, calibration, width);
    if (before == kNone) {
      cluster_of[i] = clusters.size();
      clusters.push_back({peaks[i], 0.0});
    } else {
      cluster_of[i] = cluster_of[static_cast<std::size_t>(before)];
    }
    clusters[cluster_of[i]].abundance += peaks[i].abundance;
  }
  return clusters;
}

}  // namespace tof::peaks
