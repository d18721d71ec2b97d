#include "component/automation/bounded_array.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "tests/component/error_number_of.h"

namespace tof {
namespace {

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

struct ExtentCase {
  std::string name;
  std::int32_t lower;
  std::int32_t upper;
  IfEmpty if_empty;
  std::size_t extent;
  std::int32_t error = 0;
};

class Extent : public testing::TestWithParam<ExtentCase> {};

TEST_P(Extent, IsTheNumberOfElementsOrError9) {
  const ExtentCase& one = GetParam();
  std::size_t extent = 0;
  EXPECT_EQ(ErrorNumberOf([&] { extent = ExtentOf(one.lower, one.upper, one.if_empty); }),
            one.error);
  EXPECT_EQ(extent, one.extent);
}

INSTANTIATE_TEST_SUITE_P(
    Bounds, Extent,
    testing::Values(
        ExtentCase{"OneElement", 0, 0, IfEmpty::kIsAnError, 1},
        ExtentCase{"FromOne", 1, 5, IfEmpty::kIsAnError, 5},
        ExtentCase{"FromNegative", -5, 5, IfEmpty::kIsAnError, 11},
        ExtentCase{"OneBelowIsAnError", 0, -1, IfEmpty::kIsAnError, 0, 9},
        ExtentCase{"OneBelowIsEmptyWhereAllowed", 0, -1, IfEmpty::kIsAllowed, 0},
        ExtentCase{"TwoBelowIsAnErrorAnyhow", 0, -2, IfEmpty::kIsAllowed, 0, 9},
        ExtentCase{"AllOf32Bits", kLowest, kHighest, IfEmpty::kIsAnError, std::size_t{1} << 32U},
        ExtentCase{"BoundsTheWrongWayRound", kHighest, kLowest, IfEmpty::kIsAllowed, 0, 9}),
    [](const auto& one) { return one.param.name; });

TEST(BoundedArray, RaisesError9OutsideItsBounds) {
  const BoundedArray<double> array(std::vector<double>{10.0, 11.0, 12.0}, -1);
  EXPECT_EQ(array.LBound(), -1);
  EXPECT_EQ(array.UBound(), 1);
  EXPECT_EQ(array(-1), 10.0);
  EXPECT_EQ(array(1), 12.0);
  for (const std::int32_t index : {-2, 2, kLowest, kHighest}) {
    EXPECT_EQ(ErrorNumberOf([&] { (void)array(index); }), 9) << index;
  }
}

TEST(BoundedArray, HasNoBoundsUntilItIsDimensioned) {
  const BoundedArray<double> array;
  EXPECT_FALSE(array.IsDimensioned());
  EXPECT_EQ(ErrorNumberOf([&] { (void)array.LBound(); }), 9);
  EXPECT_EQ(ErrorNumberOf([&] { (void)array.UBound(); }), 9);
  EXPECT_EQ(ErrorNumberOf([&] { (void)array(0); }), 9);
}

TEST(BoundedArray, WithoutElementsHasAnUpperBoundOneBelowTheLower) {
  const BoundedArray<double> array(5, 4, IfEmpty::kIsAllowed);
  EXPECT_TRUE(array.IsDimensioned());
  EXPECT_EQ(array.LBound(), 5);
  EXPECT_EQ(array.UBound(), 4);
  EXPECT_EQ(ErrorNumberOf([&] { (void)array(5); }), 9);
  EXPECT_EQ(ErrorNumberOf([&] { (void)array(4); }), 9);
}

TEST(BoundedArray, IsMadeAnewByAReDimension) {
  BoundedArray<double> array{1.0, 2.0};
  array.ReDim(3, 5);
  EXPECT_EQ(array, BoundedArray<double>(std::vector<double>(3), 3));
}

TEST(BoundedArray, KeepsItsContentsWhenAReDimensionFails) {
  BoundedArray<double> array{1.0, 2.0};
  EXPECT_EQ(ErrorNumberOf([&] { array.ReDim(0, -1); }), 9);
  EXPECT_EQ(array, (BoundedArray<double>{1.0, 2.0}));
}

TEST(BoundedArray2D, RaisesError9OutsideEitherBound) {
  BoundedArray2D<int> array({1, 3}, {-1, 0});
  int next = 0;
  for (std::int32_t i = 1; i <= 3; ++i) {
    for (std::int32_t j = -1; j <= 0; ++j) array(i, j) = ++next;
  }
  EXPECT_EQ(array(1, -1), 1);
  EXPECT_EQ(array(2, -1), 3);
  EXPECT_EQ(array(3, 0), 6);
  // An index that is wrong in one dimension must not reach a neighbouring row.
  EXPECT_EQ(ErrorNumberOf([&] { (void)array(1, 1); }), 9);
  EXPECT_EQ(ErrorNumberOf([&] { (void)array(2, -2); }), 9);
  EXPECT_EQ(ErrorNumberOf([&] { (void)array(0, 0); }), 9);
  EXPECT_EQ(ErrorNumberOf([&] { (void)array(4, -1); }), 9);
  EXPECT_EQ(ErrorNumberOf([&] { (void)array(kLowest, kHighest); }), 9);
}

TEST(BoundedArray2D, TellsTheBoundsOfDimensions1And2) {
  const BoundedArray2D<int> array({1, 3}, {-1, 0});
  EXPECT_EQ(array.LBound(1), 1);
  EXPECT_EQ(array.UBound(1), 3);
  EXPECT_EQ(array.LBound(2), -1);
  EXPECT_EQ(array.UBound(2), 0);
  EXPECT_EQ(ErrorNumberOf([&] { (void)array.LBound(0); }), 9);
  EXPECT_EQ(ErrorNumberOf([&] { (void)array.UBound(3); }), 9);
}

TEST(BoundedArray2D, HasNoBoundsUntilItIsDimensioned) {
  const BoundedArray2D<int> array;
  EXPECT_EQ(ErrorNumberOf([&] { (void)array.LBound(1); }), 9);
  EXPECT_EQ(ErrorNumberOf([&] { (void)array.UBound(2); }), 9);
  EXPECT_EQ(ErrorNumberOf([&] { (void)array(0, 0); }), 9);
}

TEST(BoundedArray2D, CanLackElementsInEitherDimensionWhereAllowed) {
  EXPECT_EQ(ErrorNumberOf([] { BoundedArray2D<int>({0, -1}, {0, 1}); }), 9);
  EXPECT_EQ(ErrorNumberOf([] { BoundedArray2D<int>({0, 1}, {0, -1}); }), 9);
  EXPECT_EQ(ErrorNumberOf([] { BoundedArray2D<int>({0, -2}, {0, 1}, IfEmpty::kIsAllowed); }), 9);
  const BoundedArray2D<int> no_rows({0, -1}, {0, 1}, IfEmpty::kIsAllowed);
  EXPECT_EQ(no_rows.UBound(1), -1);
  EXPECT_EQ(no_rows.UBound(2), 1);
  EXPECT_EQ(ErrorNumberOf([&] { (void)no_rows(0, 0); }), 9);
  const BoundedArray2D<int> vast_but_empty({kLowest, kHighest}, {0, -1}, IfEmpty::kIsAllowed);
  EXPECT_EQ(ErrorNumberOf([&] { (void)vast_but_empty(0, 0); }), 9);
}

TEST(BoundedArray2D, RaisesError7ForExtentsWhoseProductOverflows) {
  BoundedArray2D<double> array({0, 0}, {0, 0});
  array(0, 0) = 5.0;
  EXPECT_EQ(ErrorNumberOf([&] { array.ReDim({kLowest, kHighest}, {kLowest, kHighest}); }), 7);
  EXPECT_EQ(array.UBound(1), 0);
  EXPECT_EQ(array(0, 0), 5.0);
}

TEST(BoundedArray2D, RaisesError7ForMoreElementsThanAContainerTakes) {
  BoundedArray2D<double> array;
  // 2^60 elements of 8 bytes: the product is representable, but no container takes it.
  const auto dimension = [&] {
    try {
      array.ReDim({0, (1 << 30) - 1}, {0, (1 << 30) - 1});
    } catch (...) {
      throw CurrentError();
    }
  };
  EXPECT_EQ(ErrorNumberOf(dimension), 7);
  EXPECT_FALSE(array.IsDimensioned());
}

}  // namespace
}  // namespace tof
