// Where a series steps rather than drifts.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace tof::drift {

// A step from one point to the next is a jump when it differs from the median step by more than
// `sigmas` robust standard deviations of the steps (1.4826 times the median absolute deviation),
// and by more than `smallest` in any case. The median step is the drift that goes on all the time,
// the deviation is the noise from run to run; neither heeds the jumps themselves. Fewer than
// kStepsForNoise steps don't tell the noise: there `smallest` alone decides.
struct JumpRule {
  double sigmas = 6.0;
  double smallest = 0.0;  // in the unit of the values
};
inline constexpr std::size_t kStepsForNoise = 5;

struct StepStatistics {
  double median = 0.0;
  double robust_deviation = 0.0;
  std::vector<std::size_t> jumps;  // index of the value behind each jump, ascending
};

StepStatistics FindJumps(std::span<const double> values, const JumpRule& rule);

}  // namespace tof::drift
