// Which candidates the two passes accept, and what the last test makes of their mean.
#include <cmath>
#include <numeric>

#include "component/automation/number_text.h"
#include "tests/component/calibration/likely_a_fixture.h"

namespace tof {
namespace {

using fakes::GivenCandidates;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

// Of the candidates 1 q^i: |A - mean of A and the two behind| is this fraction of A, for all.
double StepFor(double fraction) {
  return (std::sqrt(9.0 + 12.0 * fraction) - 1.0) / 2.0;
}

std::vector<double> Geometric(double first, double step, int count) {
  std::vector<double> candidates;
  for (int i = 0; i < count; ++i) candidates.push_back(first * std::pow(step, i));
  return candidates;
}

// Gaps of about a tenth and more, too wide for the loosened pass, up to 13 rows.
std::vector<double> WithTail(std::vector<double> candidates) {
  while (candidates.size() < 13) candidates.push_back(candidates.back() * 1.1);
  return candidates;
}

// Of rows 1 to 10.
double MeanOfTen(const std::vector<double>& rows) {
  return std::accumulate(rows.begin() + 1, rows.begin() + 11, 0.0) / 10.0;
}

class FirstPassOverCandidates : public GivenCandidates {
 protected:
  // On either side of 1: outside, on, and inside the tolerance of a quarter.
  const std::vector<double> candidates_ = {0.5, 0.75, 0.8, 1.0, 1.2, 1.25, 1.5, 2.0};
};

TEST_F(FirstPassOverCandidates, AcceptsThoseStrictlyWithinTheToleranceOnEitherSide) {
  AInForce(1.0);
  Allow(0.25);
  EXPECT_TRUE(Estimate(candidates_));
  EXPECT_THAT(FirstPass(), UnorderedElementsAre("[ ] 0.75", "[x] 0.8", "[x] 1", "[x] 1.2",
                                                "[ ] 1.25", "[ ] 1.5", "[ ] 2"));
  EXPECT_FALSE(WasLoosened());
  EXPECT_DOUBLE_EQ(likely_a, 1.0);
}

TEST_F(FirstPassOverCandidates, TakesANegativeToleranceWithoutItsSign) {
  AInForce(1.0);
  Allow(-0.25);
  EXPECT_FALSE(Estimate(candidates_)) << "twice the tolerance keeps its sign in the last test";
  EXPECT_THAT(FirstPass(), UnorderedElementsAre("[ ] 0.75", "[x] 0.8", "[x] 1", "[x] 1.2",
                                                "[ ] 1.25", "[ ] 1.5", "[ ] 2"));
  EXPECT_FALSE(WasLoosened());
}

TEST_F(FirstPassOverCandidates, TakesTheToleranceOfANegativeTargetWithoutItsSign) {
  AInForce(-1.0);
  Allow(1.5);
  EXPECT_TRUE(Estimate({0.2, 0.25, 0.3, 0.4, 0.6}));
  EXPECT_THAT(FirstPass(), UnorderedElementsAre("[x] 0.25", "[x] 0.3", "[x] 0.4", "[ ] 0.6"));
  EXPECT_FALSE(WasLoosened());
}

class LoosenedPassOverCandidates : public GivenCandidates {};

TEST_F(LoosenedPassOverCandidates, ReadsRowsOneToTenOfALongTableAndAveragesTheirA) {
  const std::vector<double> rows = Geometric(1.0, 1.01, 20);
  AInForce(2.0 * MeanOfTen(rows));
  Allow(0.3);
  EXPECT_TRUE(Estimate(rows));
  std::vector<std::string> expected;
  for (std::size_t i = 1; i <= 10; ++i) expected.push_back("[x] " + NumberText(rows[i]));
  EXPECT_THAT(LoosenedPass(), ElementsAreArray(expected));
  EXPECT_DOUBLE_EQ(likely_a, MeanOfTen(rows));
}

TEST_F(LoosenedPassOverCandidates, NeedsTheThirteenthRow) {
  const std::vector<double> rows = Geometric(1.0, 1.01, 13);
  AInForce(2.0 * MeanOfTen(rows));
  Allow(0.3);
  EXPECT_TRUE(Estimate(rows));
  EXPECT_FALSE(Estimate(Geometric(1.0, 1.01, 12)));
  EXPECT_EQ(host.trace->Texts().back(), "CalculateLIkelyAAndt0Values.Error[9]");
  EXPECT_THAT(host.message_boxes, ElementsAre("Error"));
}

TEST_F(LoosenedPassOverCandidates, ComparesWithOneAndAHalfTimesTheTolerance) {
  Allow(0.02);
  const std::vector<double> near = Geometric(1.0, StepFor(1.45 * 0.02), 14);
  AInForce(MeanOfTen(near));
  EXPECT_TRUE(Estimate(near));
  EXPECT_THAT(LoosenedPass(), ::testing::Each(::testing::StartsWith("[x]")));
  EXPECT_DOUBLE_EQ(likely_a, MeanOfTen(near)) << "without what the first pass had accepted";
  EXPECT_THAT(FirstPass(), ::testing::Contains(::testing::StartsWith("[x]")));

  const std::vector<double> far = Geometric(1.0, StepFor(1.55 * 0.02), 14);
  AInForce(MeanOfTen(far));
  EXPECT_FALSE(Estimate(far));
  EXPECT_THAT(LoosenedPass(), ::testing::Each(::testing::StartsWith("[]")));
  EXPECT_THAT(host.message_boxes, IsEmpty());
}

TEST_F(LoosenedPassOverCandidates, RejectsARowExactlyOnTheTolerance) {
  // Mean of 1, 1.25 and 1.875: 1.375, which is 0.25 x 1.5 above 1.
  AInForce(1.0);
  Allow(0.25);
  EXPECT_FALSE(
      Estimate({0.9, 1.0, 1.25, 1.875, 3.0, 6.0, 12.0, 24.0, 48.0, 96.0, 192.0, 384.0, 768.0}));
  ASSERT_EQ(LoosenedPass().size(), 10U);
  EXPECT_EQ(LoosenedPass().front(), "[] 1");
}

TEST_F(LoosenedPassOverCandidates, TakesANegativeToleranceWithoutItsSign) {
  // A negative target as well, or the last test would refuse every mean.
  const std::vector<double> rows = Geometric(1.0, StepFor(0.029), 14);
  AInForce(-1.0);
  Allow(-0.02);
  EXPECT_TRUE(Estimate(rows));
  EXPECT_THAT(LoosenedPass(), ::testing::Each(::testing::StartsWith("[x]")));
  EXPECT_DOUBLE_EQ(likely_a, MeanOfTen(rows));
}

TEST_F(LoosenedPassOverCandidates, StartsItsCountAnewAndNeedsThreeOfItsOwn) {
  Allow(0.02);
  // Rows 3 and 4 are near the target, rows 1 and 2 near the two behind them.
  AInForce(1.0255);
  EXPECT_FALSE(Estimate(WithTail({1.0, 1.001, 1.003, 1.006, 1.01, 1.11})));
  EXPECT_THAT(FirstPass(), ::testing::IsSupersetOf({"[x] 1.006", "[x] 1.01"}));
  EXPECT_THAT(LoosenedPass(), ::testing::IsSupersetOf({"[x] 1.001", "[x] 1.003", "[] 1.006"}));
  EXPECT_THAT(host.message_boxes, IsEmpty());
}

TEST_F(LoosenedPassOverCandidates, IsContentWithThree) {
  Allow(0.02);
  AInForce(1.034);
  EXPECT_TRUE(Estimate(WithTail({1.0, 1.001, 1.003, 1.006, 1.01, 1.015, 1.125})));
  EXPECT_DOUBLE_EQ(likely_a, (1.001 + 1.003 + 1.006) / 3.0);
}

TEST_F(LoosenedPassOverCandidates, DecidesAloneWhenThereIsASinglePeak) {
  std::vector<double> calibrants;
  const std::vector<double> rows = Geometric(1.0, 1.01, 13);
  for (const double a : rows) calibrants.push_back(3600.0 * a * a);
  masses = Variant::DoubleArray(calibrants);
  AInForce(1.05);
  Allow(0.3);
  EXPECT_TRUE(EstimateFrom({PeaksOf({1.0}), PeaksOf({1.0, 1.1, 1.2})}));
  EXPECT_THAT(FirstPass(), IsEmpty());
  EXPECT_DOUBLE_EQ(likely_a, MeanOfTen(rows));
}

struct LastTestCase {
  const char* name;
  double target_a;
  double tolerance;
  bool found;
};

class LastTest : public GivenCandidates, public ::testing::WithParamInterface<LastTestCase> {};

TEST_P(LastTest, AllowsTheMeanTwiceTheTolerance) {
  AInForce(GetParam().target_a);
  Allow(GetParam().tolerance);
  EXPECT_EQ(Estimate(std::vector<double>(13, 1.0)), GetParam().found);
  EXPECT_TRUE(WasLoosened());
  EXPECT_EQ(likely_a, 1.0);
  EXPECT_THAT(host.message_boxes, IsEmpty());
}

// The distance loses its sign, the target it is divided by keeps its own.
INSTANTIATE_TEST_SUITE_P(
    Cases, LastTest,
    ::testing::Values(LastTestCase{"ExactlyTwiceBelowTheTarget", 2.0, 0.25, true},
                      LastTestCase{"FartherBelowTheTarget", 2.002, 0.25, false},
                      LastTestCase{"ExactlyTwiceAboveTheTarget", 0.5, 0.5, true},
                      LastTestCase{"FartherAboveTheTarget", 0.499, 0.5, false},
                      LastTestCase{"AnyDistanceFromANegativeTarget", -1.0, 0.02, true}),
    [](const auto& one) { return std::string(one.param.name); });

TEST_F(GivenCandidates, EndWithADivisionByZeroForATargetOfZero) {
  AInForce(0.0);
  EXPECT_FALSE(Estimate(std::vector<double>(13, 1.0)));
  EXPECT_EQ(host.trace->Texts().back(), "CalculateLIkelyAAndt0Values.Error[11]");
  EXPECT_THAT(host.message_boxes, ElementsAre("Error"));
}

}  // namespace
}  // namespace tof
