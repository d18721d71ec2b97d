#include "component/automation/arithmetic.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>

#include "tests/component/error_number_of.h"

namespace tof {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kSmallest = std::numeric_limits<double>::denorm_min();

struct Case {
  std::string name;
  std::function<double()> compute;
  double expected;  // NaN: the result is not a number
  std::int32_t error = 0;
};

class Arithmetic : public testing::TestWithParam<Case> {};

TEST_P(Arithmetic, GivesTheResultOrTheError) {
  double result = 0.0;
  EXPECT_EQ(ErrorNumberOf([&] { result = GetParam().compute(); }), GetParam().error);
  if (GetParam().error != 0) return;
  if (std::isnan(GetParam().expected)) {
    EXPECT_TRUE(std::isnan(result)) << result;
  } else {
    EXPECT_EQ(result, GetParam().expected);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Division, Arithmetic,
    testing::Values(Case{"Exact", [] { return Divide(7.0, 2.0); }, 3.5},
                    Case{"ByZero", [] { return Divide(7.0, 0.0); }, 0.0, 11},
                    Case{"ByNegativeZero", [] { return Divide(7.0, -0.0); }, 0.0, 11},
                    Case{"ZeroByZero", [] { return Divide(0.0, 0.0); }, 0.0, 6},
                    Case{"NegativeZeroByZero", [] { return Divide(-0.0, 0.0); }, 0.0, 6},
                    Case{"InfinityByZero", [] { return Divide(kInfinity, 0.0); }, 0.0, 11},
                    Case{"NaNByZero", [] { return Divide(kNaN, 0.0); }, 0.0, 11},
                    Case{"NaNByNumber", [] { return Divide(kNaN, 2.0); }, kNaN},
                    Case{"NumberByNaN", [] { return Divide(2.0, kNaN); }, kNaN},
                    Case{"QuotientTooLarge", [] { return Divide(kLargest, 0.5); }, 0.0, 6},
                    Case{"QuotientTooSmall", [] { return Divide(kSmallest, 4.0); }, 0.0},
                    Case{"NumberByInfinity", [] { return Divide(2.0, kInfinity); }, 0.0},
                    Case{"InfinityByInfinity", [] { return Divide(kInfinity, kInfinity); }, 0.0, 6},
                    Case{"InfinityByNumber", [] { return Divide(kInfinity, 2.0); }, kInfinity}),
    [](const auto& one) { return one.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Multiplication, Arithmetic,
    testing::Values(Case{"Exact", [] { return Multiply(3.0, 0.5); }, 1.5},
                    Case{"Largest", [] { return Multiply(kLargest, 1.0); }, kLargest},
                    Case{"ProductTooLarge", [] { return Multiply(kLargest, 2.0); }, 0.0, 6},
                    Case{"ProductTooNegative", [] { return Multiply(-kLargest, 2.0); }, 0.0, 6},
                    Case{"ProductTooSmall", [] { return Multiply(kSmallest, 0.25); }, 0.0},
                    Case{"WithInfinity", [] { return Multiply(kInfinity, 2.0); }, kInfinity},
                    Case{"ZeroTimesInfinity", [] { return Multiply(0.0, kInfinity); }, 0.0, 6},
                    Case{"InfinityTimesZero", [] { return Multiply(kInfinity, 0.0); }, 0.0, 6},
                    Case{"ZeroTimesNaN", [] { return Multiply(0.0, kNaN); }, kNaN},
                    Case{"WithNaN", [] { return Multiply(kNaN, 2.0); }, kNaN}),
    [](const auto& one) { return one.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Sum, Arithmetic,
    testing::Values(Case{"Exact", [] { return Add(3.0, 0.5); }, 3.5},
                    Case{"TooLarge", [] { return Add(kLargest, kLargest); }, 0.0, 6},
                    Case{"TooNegative", [] { return Add(-kLargest, -kLargest); }, 0.0, 6},
                    Case{"LargestAndALittle", [] { return Add(kLargest, 1.0); }, kLargest},
                    Case{"OfInfinities", [] { return Add(kInfinity, kInfinity); }, kInfinity},
                    Case{"OfOppositeInfinities", [] { return Add(kInfinity, -kInfinity); }, 0.0, 6},
                    Case{"NaNFirst", [] { return Add(kNaN, 1.0); }, kNaN},
                    Case{"NaNSecond", [] { return Add(kInfinity, kNaN); }, kNaN}),
    [](const auto& one) { return one.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Difference, Arithmetic,
    testing::Values(Case{"Exact", [] { return Subtract(3.0, 0.5); }, 2.5},
                    Case{"TooLarge", [] { return Subtract(kLargest, -kLargest); }, 0.0, 6},
                    Case{"TooNegative", [] { return Subtract(-kLargest, kLargest); }, 0.0, 6},
                    Case{"OfInfinities", [] { return Subtract(kInfinity, kInfinity); }, 0.0, 6},
                    Case{"FromInfinity", [] { return Subtract(kInfinity, 1.0); }, kInfinity},
                    Case{"NaNFirst", [] { return Subtract(kNaN, 1.0); }, kNaN},
                    Case{"NaNSecond", [] { return Subtract(1.0, kNaN); }, kNaN}),
    [](const auto& one) { return one.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Root, Arithmetic,
    testing::Values(Case{"Exact", [] { return SquareRoot(2.25); }, 1.5},
                    Case{"OfZero", [] { return SquareRoot(0.0); }, 0.0},
                    Case{"OfNegativeZero", [] { return SquareRoot(-0.0); }, 0.0},
                    Case{"OfTheSmallestNegative", [] { return SquareRoot(-kSmallest); }, 0.0, 5},
                    Case{"OfNegativeInfinity", [] { return SquareRoot(-kInfinity); }, 0.0, 5},
                    Case{"OfInfinity", [] { return SquareRoot(kInfinity); }, kInfinity},
                    Case{"OfNaN", [] { return SquareRoot(kNaN); }, kNaN}),
    [](const auto& one) { return one.param.name; });

}  // namespace
}  // namespace tof
