#include "component/calibration/exchange_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "tests/component/calibration/plain_exchange_sort.h"

namespace tof {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

using Order = std::vector<std::size_t>;

Order PlainOrder(const std::vector<double>& keys) {
  Order rows(keys.size());
  std::iota(rows.begin(), rows.end(), std::size_t{0});
  PlainExchangeSort(rows, [&keys](std::size_t row) { return keys[row]; });
  return rows;
}

struct Case {
  std::string name;
  std::vector<double> keys;
  Order expected;
};

class ExchangeOrderRule : public testing::TestWithParam<Case> {};

// The expected orders are worked out by hand; that the plain sort gives them too ties the reference
// to the definition.
TEST_P(ExchangeOrderRule, GivesTheOrderWorkedOutByHand) {
  EXPECT_EQ(PlainOrder(GetParam().keys), GetParam().expected);
  EXPECT_EQ(ExchangeOrder(GetParam().keys), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Edges, ExchangeOrderRule,
    testing::Values(Case{"NoRows", {}, {}}, Case{"OneRow", {7.0}, {0}},
                    Case{"OneRowOfNaN", {kNaN}, {0}},
                    Case{"DistinctKeys", {3.0, 1.0, 2.0}, {1, 2, 0}},
                    Case{"AllEqualStay", {1.0, 1.0, 1.0}, {0, 1, 2}},
                    Case{"EqualsBeforeASmallerTurnOnce", {2.0, 2.0, 1.0}, {2, 1, 0}},
                    Case{"ThreeEqualsBeforeASmaller", {2.0, 2.0, 2.0, 1.0}, {3, 1, 2, 0}},
                    Case{"TwoSmallerTurnTwice", {2.0, 2.0, 2.0, 0.0, 1.0}, {3, 4, 2, 0, 1}},
                    Case{"EqualsAfterTheSmallerStay", {1.0, 2.0, 2.0}, {0, 1, 2}},
                    Case{"EqualsAroundASmaller", {2.0, 1.0, 2.0}, {1, 0, 2}},
                    Case{"EqualsJoinBehindTheTurnedOnes", {2.0, 2.0, 1.0, 2.0}, {2, 1, 0, 3}},
                    Case{"LateComersTurnWithTheRest", {2.0, 0.0, 2.0, 1.0}, {1, 3, 2, 0}},
                    Case{"ZerosOfBothSignsAreEqual", {0.0, -0.0, -1.0}, {2, 1, 0}},
                    Case{"InfinitiesAreEqualToThemselves",
                         {kInfinity, kInfinity, -kInfinity, -kInfinity},
                         {2, 3, 0, 1}},
                    Case{"NaNStaysAndTheRestSortsAroundIt", {2.0, kNaN, 1.0}, {2, 1, 0}},
                    Case{"NaNFirstAndLast", {kNaN, 2.0, 1.0, kNaN}, {0, 2, 1, 3}},
                    Case{"OnlyNaN", {kNaN, kNaN}, {0, 1}}),
    [](const auto& one) { return one.param.name; });

using Random = std::mt19937;

struct Pattern {
  std::string name;
  double (*key)(int row, int size, Random& random);
};

class ExchangeOrderProperty : public testing::TestWithParam<Pattern> {};

TEST_P(ExchangeOrderProperty, EqualsThePlainExchangeSort) {
  Random random(20240501);
  for (int size = 1; size <= 200; ++size) {
    for (int round = 0; round < 5; ++round) {
      std::vector<double> keys;
      for (int row = 0; row < size; ++row) keys.push_back(GetParam().key(row, size, random));
      ASSERT_EQ(ExchangeOrder(keys), PlainOrder(keys))
          << "size " << size << ", keys " << testing::PrintToString(keys);
    }
  }
}

double Whole(Random& random, int values) {
  return static_cast<double>(random() % static_cast<std::uint32_t>(values));
}

double Special(Random& random) {
  static const std::vector<double> values = {
      kNaN, kInfinity, -kInfinity, 0.0, -0.0, 1.0, -1.0, std::numeric_limits<double>::denorm_min()};
  return values[random() % values.size()];
}

INSTANTIATE_TEST_SUITE_P(
    Keys, ExchangeOrderProperty,
    testing::Values(
        Pattern{
            "Distinct",
            [](int, int, Random& random) { return 1.0 / (1.0 + static_cast<double>(random())); }},
        Pattern{"TwoValues", [](int, int, Random& random) { return Whole(random, 2); }},
        Pattern{"ThreeValues", [](int, int, Random& random) { return Whole(random, 3); }},
        Pattern{"TenValues", [](int, int, Random& random) { return Whole(random, 10); }},
        Pattern{"AboutTwoOfEach",
                [](int, int size, Random& random) { return Whole(random, size / 2 + 1); }},
        Pattern{"Ascending", [](int row, int, Random&) -> double { return row; }},
        Pattern{"Descending", [](int row, int, Random&) -> double { return -row; }},
        Pattern{"DescendingStairs", [](int row, int, Random&) -> double { return -(row / 7); }},
        Pattern{"AscendingStairs", [](int row, int, Random&) -> double { return row / 7; }},
        Pattern{"EqualsThenSmallerOnes",
                [](int row, int size, Random& random) {
                  return row < size / 2 ? 5.0 : Whole(random, 6);
                }},
        Pattern{"EqualsBetweenSmallerOnes",
                [](int row, int, Random&) -> double { return row % 3 == 0 ? 2 : -row; }},
        Pattern{"SawTooth", [](int row, int, Random&) -> double { return row % 11; }},
        Pattern{"OrganPipe",
                [](int row, int size, Random&) -> double { return std::min(row, size - 1 - row); }},
        Pattern{"ZerosAtTheEnd",
                [](int row, int size, Random& random) {
                  return row > size / 3 ? 0.0 : Whole(random, 9) + 1.0;
                }},
        Pattern{
            "SomeNaN",
            [](int, int, Random& random) { return random() % 5 == 0 ? kNaN : Whole(random, 8); }},
        Pattern{
            "MostlyNaN",
            [](int, int, Random& random) { return random() % 5 != 0 ? kNaN : Whole(random, 3); }},
        Pattern{"SpecialValues", [](int, int, Random& random) { return Special(random); }}),
    [](const auto& one) { return one.param.name; });

// Every table of up to seven rows of the keys 0, 1, 2 and NaN.
TEST(ExchangeOrder, EqualsThePlainExchangeSortForEverySmallTable) {
  const std::vector<double> values = {0.0, 1.0, 2.0, kNaN};
  for (std::size_t size = 1, tables = 4; size <= 7; ++size, tables *= 4) {
    std::vector<double> keys(size);
    for (std::size_t table = 0; table < tables; ++table) {
      std::size_t digits = table;
      for (double& key : keys) {
        key = values[digits % values.size()];
        digits /= values.size();
      }
      ASSERT_EQ(ExchangeOrder(keys), PlainOrder(keys)) << testing::PrintToString(keys);
    }
  }
}

// One large table of each kind: turns of the queue far above its length.
TEST(ExchangeOrder, EqualsThePlainExchangeSortForLargeTables) {
  Random random(7);
  for (const int values : {3, 50, 1000, 4000}) {
    std::vector<double> keys(4000);
    for (double& key : keys) key = Whole(random, values);
    ASSERT_EQ(ExchangeOrder(keys), PlainOrder(keys)) << values << " values";
  }
}

}  // namespace
}  // namespace tof
