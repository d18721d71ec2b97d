#include "instruments/virtual/detector.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "instruments/virtual/samplers.h"

namespace tof::virtual_instrument {
namespace {

// A Gaussian is cut here; 2e-9 of its ions lie beyond, none in a million spectra of ten peaks.
constexpr double kPeakReachSigmas = 6.0;

double NormalCumulative(double x) {
  return 0.5 * std::erfc(-x / std::numbers::sqrt2);
}

// Chance that at least one ion of a Poisson mean arrives.
double AtLeastOne(double mean_ions) {
  return -std::expm1(-mean_ions);
}

}  // namespace

void AddGaussianPeak(const TimeBins& bins, double center_ns, double sigma_ns, double ions,
                     std::span<double> ions_per_pulse) {
  if (!(sigma_ns > 0.0) || !std::isfinite(sigma_ns)) return;
  const double reach_ns = kPeakReachSigmas * sigma_ns;
  const auto bin_at = [&](double time_ns) {
    const double position = std::floor((time_ns - bins.start_ns) / bins.width_ns);
    return static_cast<std::size_t>(std::clamp(position, 0.0, static_cast<double>(bins.count)));
  };
  const std::size_t begin = bin_at(center_ns - reach_ns);
  const std::size_t end = bin_at(center_ns + reach_ns + bins.width_ns);
  const auto cumulative_at = [&](std::size_t edge) {
    const double edge_ns = bins.start_ns + static_cast<double>(edge) * bins.width_ns;
    return NormalCumulative((edge_ns - center_ns) / sigma_ns);
  };
  double left = cumulative_at(begin);
  for (std::size_t j = begin; j < end; ++j) {
    const double right = cumulative_at(j + 1);
    ions_per_pulse[j] += ions * (right - left);
    left = right;
  }
}

void DrawRecordedIons(std::span<const double> ions_per_pulse, std::int64_t pulses,
                      std::size_t dead_bins, Random& random,
                      std::span<std::int64_t> recorded_ions) {
  std::int64_t live_pulses = pulses;
  for (std::size_t j = 0; j < ions_per_pulse.size(); ++j) {
    if (j > dead_bins) live_pulses += recorded_ions[j - dead_bins - 1];
    recorded_ions[j] = 0;
    if (ions_per_pulse[j] <= 0.0) continue;
    recorded_ions[j] = SampleBinomial(random, live_pulses, AtLeastOne(ions_per_pulse[j]));
    live_pulses -= recorded_ions[j];
  }
}

std::vector<double> ExpectedRecordedIons(std::span<const double> ions_per_pulse,
                                         std::size_t dead_bins) {
  std::vector<double> recorded(ions_per_pulse.size());
  double live_fraction = 1.0;
  for (std::size_t j = 0; j < ions_per_pulse.size(); ++j) {
    if (j > dead_bins) live_fraction += recorded[j - dead_bins - 1];
    recorded[j] = live_fraction * AtLeastOne(ions_per_pulse[j]);
    live_fraction -= recorded[j];
  }
  return recorded;
}

}  // namespace tof::virtual_instrument
