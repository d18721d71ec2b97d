#include "instruments/virtual/drift.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <vector>

#include "tests/instruments/virtual/statistics.h"

namespace tof::virtual_instrument {
namespace {

TEST(FlightPathDrift, SteadyPartIsPpmPerMinute) {
  FlightPathDrift drift({0.2, 0.0}, Random(1, 0));
  EXPECT_EQ(drift.ppm(), 0.0);
  drift.AdvanceTo(90.0);
  EXPECT_NEAR(drift.ppm(), 0.3, 1e-12);
}

// The variance of a walk grows with time, however many steps the time was cut into.
TEST(FlightPathDrift, WalkHasItsVarianceForFewAndForManySteps) {
  constexpr int kWalks = 4000;
  for (const int steps : {1, 50}) {
    std::vector<double> ends;
    for (int walk = 0; walk < kWalks; ++walk) {
      FlightPathDrift drift({0.2, 0.05}, Random(static_cast<std::uint64_t>(walk), 0));
      for (int step = 1; step <= steps; ++step) drift.AdvanceTo(1800.0 * step / steps);
      ends.push_back(drift.ppm());
    }
    const Moments moments = MomentsOf(ends);
    const double variance = 0.05 * 0.05 * 30.0;
    EXPECT_NEAR(moments.mean, 6.0, 4.0 * std::sqrt(variance / kWalks)) << steps;
    EXPECT_NEAR(moments.variance / variance, 1.0, 4.0 * std::sqrt(2.0 / kWalks)) << steps;
  }
}

TEST(FlightPathDrift, RefusesToGoBack) {
  FlightPathDrift drift({0.2, 0.05}, Random(1, 0));
  drift.AdvanceTo(60.0);
  const double before = drift.ppm();
  try {
    drift.AdvanceTo(59.0);
    FAIL() << "went back";
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(), "virtual instrument: time 59 s, expected a time not before 60 s");
  }
  EXPECT_THROW(drift.AdvanceTo(std::numeric_limits<double>::quiet_NaN()), std::invalid_argument);
  EXPECT_THROW(drift.AdvanceTo(std::numeric_limits<double>::infinity()), std::invalid_argument);
  EXPECT_EQ(drift.ppm(), before);
  EXPECT_EQ(drift.now_sec(), 60.0);
  EXPECT_NO_THROW(drift.AdvanceTo(60.0));
  EXPECT_EQ(drift.ppm(), before);
}

TEST(SourceFlicker, CommonFactorHasItsSpreadMeanAndMemory) {
  constexpr int kSpectra = 100'000;
  SourceFlicker flicker({0.02, 0.8, 0.005}, Random(2, 0));
  std::vector<double> factors;
  for (int i = 0; i < kSpectra; ++i) factors.push_back(flicker.NextCommonFactor());
  const Moments moments = MomentsOf(factors);
  // Nine times fewer independent values than values: (1 + 0.8) / (1 - 0.8).
  EXPECT_NEAR(moments.mean, 1.0, 4.0 * 0.02 * std::sqrt(9.0 / kSpectra));
  EXPECT_NEAR(std::sqrt(moments.variance), 0.02, 0.0005);
  double products = 0.0;
  for (std::size_t i = 1; i < factors.size(); ++i) {
    products += (factors[i] - moments.mean) * (factors[i - 1] - moments.mean);
  }
  EXPECT_NEAR(products / (kSpectra - 1) / moments.variance, 0.8, 0.01);
}

// A log-normal factor of spread 1 has exp(0.5) times its median for a mean; the scale makes up for
// it.
TEST(SourceFlicker, FactorsHaveMeanOneAndTheirSpreadWhateverItIs) {
  constexpr int kDraws = 200'000;
  SourceFlicker flicker({1.0, 0.0, 0.5}, Random(4, 0));
  std::vector<double> common;
  std::vector<double> own;
  for (int i = 0; i < kDraws; ++i) {
    common.push_back(flicker.NextCommonFactor());
    own.push_back(flicker.NextOwnFactor());
  }
  const Moments of_common = MomentsOf(common);
  const Moments of_own = MomentsOf(own);
  EXPECT_NEAR(of_common.mean, 1.0, 4.0 * std::sqrt((std::exp(1.0) - 1.0) / kDraws));
  EXPECT_NEAR(of_common.variance, std::exp(1.0) - 1.0, 0.15);
  EXPECT_NEAR(of_own.mean, 1.0, 4.0 * std::sqrt((std::exp(0.25) - 1.0) / kDraws));
  EXPECT_NEAR(of_own.variance, std::exp(0.25) - 1.0, 0.02);
}

TEST(SourceFlicker, OwnFactorsRememberNothing) {
  constexpr int kDraws = 100'000;
  SourceFlicker flicker({0.02, 0.8, 0.005}, Random(3, 0));
  std::vector<double> factors;
  for (int i = 0; i < kDraws; ++i) factors.push_back(flicker.NextOwnFactor());
  const Moments moments = MomentsOf(factors);
  EXPECT_NEAR(moments.mean, 1.0, 4.0 * 0.005 / std::sqrt(kDraws));
  EXPECT_NEAR(std::sqrt(moments.variance), 0.005, 0.0001);
  double products = 0.0;
  for (std::size_t i = 1; i < factors.size(); ++i) {
    products += (factors[i] - moments.mean) * (factors[i - 1] - moments.mean);
  }
  EXPECT_NEAR(products / (kDraws - 1) / moments.variance, 0.0, 0.02);
}

}  // namespace
}  // namespace tof::virtual_instrument
