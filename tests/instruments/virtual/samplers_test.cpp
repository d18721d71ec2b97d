#include "instruments/virtual/samplers.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>
#include <ostream>
#include <vector>

#include "tests/instruments/virtual/statistics.h"

namespace tof::virtual_instrument {
namespace {

double NormalCumulative(double x) {
  return 0.5 * std::erfc(-x / std::numbers::sqrt2);
}

TEST(NormalSampler, FillsEveryCellAsANormalDistributionDoes) {
  constexpr int kDraws = 4'000'000;
  constexpr double kCell = 0.05;
  constexpr std::size_t kCells = 200;  // -5 to 5
  std::vector<double> observed(kCells);
  Random random(11, 0);
  const NormalSampler normal;
  for (int i = 0; i < kDraws; ++i) {
    const double position = std::floor((normal(random) + 5.0) / kCell);
    if (position >= 0.0 && position < static_cast<double>(kCells)) {
      observed[static_cast<std::size_t>(position)] += 1.0;
    }
  }
  std::vector<double> expected(kCells);
  for (std::size_t i = 0; i < kCells; ++i) {
    const double left = -5.0 + kCell * static_cast<double>(i);
    expected[i] = kDraws * (NormalCumulative(left + kCell) - NormalCumulative(left));
  }
  ExpectChiSquareIsOrdinary(observed, expected);
}

TEST(NormalSampler, HasTheRightTailsOnBothSides) {
  constexpr int kDraws = 5'000'000;
  constexpr double kBeyondTheLowestLayer = 3.7;
  int above = 0;
  int below = 0;
  Random random(12, 0);
  const NormalSampler normal;
  for (int i = 0; i < kDraws; ++i) {
    const double value = normal(random);
    if (value > kBeyondTheLowestLayer) ++above;
    if (value < -kBeyondTheLowestLayer) ++below;
  }
  const double expected = kDraws * NormalCumulative(-kBeyondTheLowestLayer);  // about 540
  EXPECT_NEAR(above, expected, 4.0 * std::sqrt(expected));
  EXPECT_NEAR(below, expected, 4.0 * std::sqrt(expected));
}

struct BinomialCase {
  std::int64_t trials;
  double probability;
};

void PrintTo(const BinomialCase& row, std::ostream* out) {
  *out << row.trials << " trials of " << row.probability;
}

class BinomialSampler : public testing::TestWithParam<BinomialCase> {};

TEST_P(BinomialSampler, FollowsTheExactProbabilities) {
  constexpr int kDraws = 400'000;
  const auto [trials, probability] = GetParam();
  std::vector<double> observed(static_cast<std::size_t>(trials) + 1);
  Random random(13, 0);
  for (int i = 0; i < kDraws; ++i) {
    const std::int64_t successes = SampleBinomial(random, trials, probability);
    ASSERT_GE(successes, 0);
    ASSERT_LE(successes, trials);
    observed[static_cast<std::size_t>(successes)] += 1.0;
  }
  std::vector<double> expected;
  const auto n = static_cast<double>(trials);
  for (std::size_t i = 0; i < observed.size(); ++i) {
    const auto k = static_cast<double>(i);
    const double log_ways = std::lgamma(n + 1.0) - std::lgamma(k + 1.0) - std::lgamma(n - k + 1.0);
    expected.push_back(kDraws * std::exp(log_ways + k * std::log(probability) +
                                         (n - k) * std::log1p(-probability)));
  }
  ExpectChiSquareIsOrdinary(observed, expected);
}

// Both methods, both sides of one half, and the edge between the methods.
INSTANTIATE_TEST_SUITE_P(Cases, BinomialSampler,
                         testing::Values(BinomialCase{1, 0.3}, BinomialCase{19, 0.5},
                                         BinomialCase{10'000, 0.0002},
                                         BinomialCase{10'000, 0.00099},
                                         BinomialCase{10'000, 0.00101}, BinomialCase{20, 0.5},
                                         BinomialCase{100, 0.25}, BinomialCase{10'000, 0.3},
                                         BinomialCase{500, 0.9}, BinomialCase{12, 0.95}));

TEST(SampleBinomial, IsCertainAtTheEnds) {
  Random random(14, 0);
  EXPECT_EQ(SampleBinomial(random, 0, 0.5), 0);
  EXPECT_EQ(SampleBinomial(random, 100, 0.0), 0);
  EXPECT_EQ(SampleBinomial(random, 100, 1.0), 100);
  EXPECT_EQ(SampleBinomial(random, 100, std::numeric_limits<double>::quiet_NaN()), 0);
}

}  // namespace
}  // namespace tof::virtual_instrument
