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

// The values from 0 on with these steps between them.
std::vector<double> WithSteps(const std::vector<double>& steps) {
  std::vector<double> values{0.0};
  for (const double step : steps) values.push_back(values.back() + step);
  return values;
}

// 1.4826 is one over the deviation within which half of a normal distribution lies.
TEST(Jumps, TakeTheMiddleOfAnOddNumberOfSteps) {
  const StepStatistics steps = FindJumps(WithSteps({7.0, 20.0, 1.0, 4.0, 2.0}), {});
  EXPECT_DOUBLE_EQ(steps.median, 4.0);
  // Of the deviations 3, 16, 3, 0 and 2.
  EXPECT_DOUBLE_EQ(steps.robust_deviation, 1.4826 * 3.0);
}

TEST(Jumps, TakeTheMeanOfTheTwoMiddleOnesOfAnEvenNumberOfSteps) {
  const StepStatistics steps = FindJumps(WithSteps({11.0, 2.0, 20.0, 4.0, 1.0, 7.0}), {});
  EXPECT_DOUBLE_EQ(steps.median, 5.5);
  // Of the deviations 5.5, 3.5, 14.5, 1.5, 4.5 and 1.5.
  EXPECT_DOUBLE_EQ(steps.robust_deviation, 1.4826 * 4.0);
}

TEST(Jumps, TellNoNoiseFromFewerThanFiveSteps) {
  const std::vector<double> four_steps = WithSteps({11.0, 2.0, 20.0, 4.0});
  EXPECT_EQ(FindJumps(four_steps, {}).median, 0.0);
  EXPECT_EQ(FindJumps(four_steps, {}).robust_deviation, 0.0);
  EXPECT_THAT(FindJumps(four_steps, {6.0, 10.0}).jumps, ElementsAre(1, 3));
}

TEST(Jumps, AreStepsOfMoreThanTheLimit) {
  const std::vector<double> values = WithSteps({1.0, 1.0, 6.0, 1.0, 1.0, -4.0, 1.0});
  EXPECT_THAT(FindJumps(values, {6.0, 5.0}).jumps, IsEmpty());
  EXPECT_THAT(FindJumps(values, {6.0, 4.999}).jumps, ElementsAre(3, 6));
  EXPECT_THAT(FindJumps(std::vector<double>{0.0, 5.0}, {6.0, 5.0}).jumps, IsEmpty());
  EXPECT_THAT(FindJumps(std::vector<double>{0.0, 5.001}, {6.0, 5.0}).jumps, ElementsAre(1));
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
