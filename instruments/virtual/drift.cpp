#include "instruments/virtual/drift.h"

#include <fmt/format.h>

#include <cmath>
#include <stdexcept>

namespace tof::virtual_instrument {
namespace {

// Log-normal with mean 1 from a standard normal number.
double LogNormalFactor(double sd, double standard_normal) {
  return std::exp(sd * standard_normal - 0.5 * sd * sd);
}

}  // namespace

void FlightPathDrift::AdvanceTo(double now_sec) {
  if (!std::isfinite(now_sec) || now_sec < now_sec_) {
    throw std::invalid_argument(fmt::format(
        "virtual instrument: time {} s, expected a time not before {} s", now_sec, now_sec_));
  }
  const double elapsed_min = (now_sec - now_sec_) / 60.0;
  walk_ppm_ += parameters_.random_walk_ppm_per_sqrt_min * std::sqrt(elapsed_min) * normal_(random_);
  now_sec_ = now_sec;
}

double FlightPathDrift::ppm() const {
  return parameters_.rate_ppm_per_min * now_sec_ / 60.0 + walk_ppm_;
}

SourceFlicker::SourceFlicker(const FlickerParameters& parameters, Random random)
    : parameters_(parameters), random_(random), common_state_(normal_(random_)) {}

double SourceFlicker::NextCommonFactor() {
  const double correlation = parameters_.common_correlation;
  common_state_ =
      correlation * common_state_ + std::sqrt(1.0 - correlation * correlation) * normal_(random_);
  return LogNormalFactor(parameters_.common_sd, common_state_);
}

double SourceFlicker::NextOwnFactor() {
  return LogNormalFactor(parameters_.own_sd, normal_(random_));
}

}  // namespace tof::virtual_instrument
