// Calibrants on a known curve.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "instruments/masstime/fit.h"

namespace tof::masstime {

struct SimulatedCalibrants {
  std::vector<double> masses;
  std::vector<double> times_ns;
  Calibrants Get() const { return {masses, times_ns}; }
};

// `count` masses from 90 to 1800 u, evenly spaced in flight time, with normal time errors.
inline SimulatedCalibrants Simulate(const MassTimeModel& model, std::size_t count,
                                    double time_error_ppm = 0.0, std::uint64_t seed = 1) {
  std::mt19937_64 random(seed);
  std::normal_distribution<double> error(0.0, 1.0);
  SimulatedCalibrants calibrants;
  for (std::size_t i = 0; i < count; ++i) {
    const double root = std::sqrt(90.0) + (std::sqrt(1800.0) - std::sqrt(90.0)) *
                                              static_cast<double>(i) /
                                              static_cast<double>(count - 1);
    calibrants.masses.push_back(root * root);
    const double time_ns = MassToTime(model, root * root);
    calibrants.times_ns.push_back(time_ns * (1.0 + 1e-6 * time_error_ppm * error(random)));
  }
  return calibrants;
}

}  // namespace tof::masstime
