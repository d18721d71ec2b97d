// What the tests of the virtual instrument's chance have in common.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <span>

namespace tof::virtual_instrument {

struct Moments {
  double mean = 0.0;
  double variance = 0.0;  // with n - 1
};

inline Moments MomentsOf(std::span<const double> values) {
  Moments moments;
  for (const double value : values) moments.mean += value;
  moments.mean /= static_cast<double>(values.size());
  for (const double value : values) {
    moments.variance += (value - moments.mean) * (value - moments.mean);
  }
  moments.variance /= static_cast<double>(values.size()) - 1.0;
  return moments;
}

// Pearson's test on all cells of which at least ten are expected: five standard deviations above
// its mean the statistic is taken for a wrong distribution, and so it is five below for a too even
// one.
inline void ExpectChiSquareIsOrdinary(std::span<const double> observed,
                                      std::span<const double> expected) {
  double chi_square = 0.0;
  double cells = 0.0;
  for (std::size_t i = 0; i < observed.size(); ++i) {
    if (expected[i] < 10.0) continue;
    chi_square += (observed[i] - expected[i]) * (observed[i] - expected[i]) / expected[i];
    cells += 1.0;
  }
  ASSERT_GT(cells, 1.0);
  EXPECT_LT(chi_square, cells + 5.0 * std::sqrt(2.0 * cells));
  EXPECT_GT(chi_square, cells - 5.0 * std::sqrt(2.0 * cells));
}

}  // namespace tof::virtual_instrument
