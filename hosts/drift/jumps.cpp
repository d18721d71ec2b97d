#include "hosts/drift/jumps.h"

#include <algorithm>
#include <cmath>

namespace tof::drift {
namespace {

// Makes the deviations of a normal distribution standard ones.
constexpr double kNormalScale = 1.4826;

double MedianOf(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  if (values.size() % 2 == 1) return *middle;
  return 0.5 * (*middle + *std::max_element(values.begin(), middle));
}

}  // namespace

StepStatistics FindJumps(std::span<const double> values, const JumpRule& rule) {
  StepStatistics result;
  if (values.size() < 2) return result;
  if (values.size() > kStepsForNoise) {
    std::vector<double> scratch(values.size() - 1);
    for (std::size_t i = 1; i < values.size(); ++i) scratch[i - 1] = values[i] - values[i - 1];
    result.median = MedianOf(scratch);
    for (double& step : scratch) step = std::abs(step - result.median);
    result.robust_deviation = kNormalScale * MedianOf(scratch);
  }
  const double limit = std::max(rule.sigmas * result.robust_deviation, rule.smallest);
  for (std::size_t i = 1; i < values.size(); ++i) {
    if (std::abs(values[i] - values[i - 1] - result.median) > limit) result.jumps.push_back(i);
  }
  return result;
}

}  // namespace tof::drift
