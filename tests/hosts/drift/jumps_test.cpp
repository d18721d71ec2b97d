#include "hosts/drift/jumps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tof::drift {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Steps of +-1 around a drift of `slope` per point.
std::vector<double> Noisy(std::size_t count, double slope) {
  std::vector<double> values;
  for (std::size_t i = 0; i < count; ++i) {
    values.push_back(slope * static_cast<double>(i) + (i % 4 < 2 ? 0.0 : 1.0));
  }
  return values;
}

TEST(Jumps, FindsAStepAmongNoise) {
  std::vector<double> values = Noisy(40, 0.0);
  for (std::size_t i = 20; i < 40; ++i) values[i] += 30.0;
  EXPECT_THAT(FindJumps(values, {6.0, 5.0}).jumps, ElementsAre(20));
}

TEST(Jumps, FindsBothSidesOfASinglePoint) {
  std::vector<double> values = Noisy(40, 0.0);
  values[10] -= 30.0;
  EXPECT_THAT(FindJumps(values, {6.0, 5.0}).jumps, ElementsAre(10, 11));
}

TEST(Jumps, TakesASteadyDriftForNone) {
  const StepStatistics steps = FindJumps(Noisy(41, 20.0), {6.0, 5.0});
  EXPECT_THAT(steps.jumps, IsEmpty());
  EXPECT_EQ(steps.median, 20.0);
}

TEST(Jumps, HeedsTheNoise) {
  std::vector<double> values;
  for (int i = 0; i < 40; ++i) values.push_back(i * i * 7 % 23);
  const StepStatistics steps = FindJumps(values, {6.0, 5.0});
  EXPECT_THAT(steps.jumps, IsEmpty());
  EXPECT_GT(steps.robust_deviation, 4.0);
}

TEST(Jumps, HeedsTheSmallestInAQuietSeries) {
  std::vector<double> values(20, 1.0);
  for (std::size_t i = 10; i < 20; ++i) values[i] += 4.0;
  EXPECT_THAT(FindJumps(values, {6.0, 5.0}).jumps, IsEmpty());
  EXPECT_THAT(FindJumps(values, {6.0, 3.0}).jumps, ElementsAre(10));
}

TEST(Jumps, DecidesByTheSmallestAloneAmongFewPoints) {
  EXPECT_THAT(FindJumps(std::vector<double>{0.0, 40.0, 41.0}, {6.0, 5.0}).jumps, ElementsAre(1));
  EXPECT_THAT(FindJumps(std::vector<double>{3.0}, {6.0, 5.0}).jumps, IsEmpty());
  EXPECT_THAT(FindJumps(std::vector<double>{}, {6.0, 5.0}).jumps, IsEmpty());
}

}  // namespace
}  // namespace tof::drift
