#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "component/automation/convert.h"
#include "component/automation/late_bound_object.h"
#include "tests/component/error_number_of.h"

namespace tof {
namespace {

class SomeObject : public LateBoundObject {
 public:
  Variant GetProperty(std::string_view) override { return {}; }
  void PutProperty(std::string_view, const Variant&) override {}
  Variant Call(std::string_view, const std::vector<Variant>&) override { return {}; }
};

struct Case {
  std::string name;
  Variant masses;
  std::vector<double> expected;
  std::int32_t error = 0;
};

Variant Doubles(std::vector<double> masses, std::int32_t lower = 0) {
  return Variant::DoubleArray(std::move(masses), lower);
}

Variant Variants(std::vector<Variant> masses, std::int32_t lower = 0) {
  return Variant::Array(std::move(masses), lower);
}

class MassesFromCallerRule : public testing::TestWithParam<Case> {};

TEST_P(MassesFromCallerRule, AreDoublesFromZeroOrAnError) {
  BoundedArray<double> masses;
  EXPECT_EQ(ErrorNumberOf([&] { masses = MassesFromCaller(GetParam().masses); }), GetParam().error);
  if (GetParam().error == 0) {
    EXPECT_EQ(masses, BoundedArray<double>(GetParam().expected));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Arrays, MassesFromCallerRule,
    testing::Values(
        Case{"DoublesFromZero", Doubles({118.1, 622.0}), {118.1, 622.0}},
        Case{"DoublesFromOne", Doubles({118.1, 622.0}, 1), {118.1, 622.0}},
        Case{"DoublesFromMinusFive", Doubles({118.1, 622.0}, -5), {118.1, 622.0}},
        Case{"DoublesFromTheLowestBound",
             Doubles({118.1, 622.0}, std::numeric_limits<std::int32_t>::min()),
             {118.1, 622.0}},
        Case{"DoublesAreNotJudged", Doubles({0.0, -5.0}), {0.0, -5.0}},
        Case{"VariantsOfDoubles", Variants({118.1, 622.0}), {118.1, 622.0}},
        Case{"VariantsFromOne", Variants({118.1, 622.0}, 1), {118.1, 622.0}},
        Case{"Integers", Variants({std::int16_t{118}, 100000}), {118.0, 100000.0}},
        Case{"Booleans", Variants({true, false}), {-1.0, 0.0}},
        Case{"NumericText", Variants({" 12.5 ", "1E3"}), {12.5, 1000.0}},
        Case{"MixedKinds", Variants({"118.1", 322, 622.5, true}), {118.1, 322.0, 622.5, -1.0}},
        Case{"NoDoubles", Doubles({}), {}}, Case{"NoVariants", Variants({}, 1), {}},
        Case{"NeverDimensioned", Variant::DoubleArray(), {}}),
    [](const auto& one) { return one.param.name; });

INSTANTIATE_TEST_SUITE_P(
    BadElements, MassesFromCallerRule,
    testing::Values(
        Case{"Text", Variants({118.1, "abc"}), {}, 13}, Case{"EmptyText", Variants({""}), {}, 13},
        Case{"DecimalComma", Variants({"118,1"}), {}, 13},
        Case{"BooleanText", Variants({"True"}), {}, 13},
        Case{"TextBeyondTheDoubles", Variants({"1E400"}), {}, 6},
        Case{"Empty", Variants({118.1, Variant()}), {}, 13},
        Case{"Missing", Variants({Variant::Missing{}}), {}, 13},
        Case{"Nothing", Variants({Variant::Object()}), {}, 13},
        Case{"Object", Variants({Variant::Object(std::make_shared<SomeObject>())}), {}, 13},
        Case{"NestedArray", Variants({Variants({118.1})}), {}, 13},
        Case{"NestedDoubles", Variants({Doubles({118.1})}), {}, 13}),
    [](const auto& one) { return one.param.name; });

INSTANTIATE_TEST_SUITE_P(
    NoArrays, MassesFromCallerRule,
    testing::Values(Case{"Empty", Variant(), {}, 13}, Case{"Missing", Variant::Missing{}, {}, 13},
                    Case{"Double", 118.1, {}, 13}, Case{"Integer16", std::int16_t{118}, {}, 13},
                    Case{"Integer32", 118, {}, 13}, Case{"Boolean", true, {}, 13},
                    Case{"NumericText", "118.1", {}, 13},
                    Case{"Nothing", Variant::Object(), {}, 13},
                    Case{"Object", Variant::Object(std::make_shared<SomeObject>()), {}, 13}),
    [](const auto& one) { return one.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Counts, MassesFromCallerRule,
    testing::Values(Case{"AsManyAsA16BitCounterCounts", Doubles(std::vector<double>(32767, 5.0), 1),
                         std::vector<double>(32767, 5.0)},
                    Case{"OneMore", Doubles(std::vector<double>(32768, 5.0), -32768), {}, 6},
                    Case{"AsManyVariants", Variants(std::vector<Variant>(32767, 5)),
                         std::vector<double>(32767, 5.0)},
                    Case{"OneMoreVariant", Variants(std::vector<Variant>(32768, 5)), {}, 6},
                    // The count comes before the first look at an element.
                    Case{"TooManyOfTheWrongKind", Variants(std::vector<Variant>(32768)), {}, 6}),
    [](const auto& one) { return one.param.name; });

TEST(MassesFromCaller, KeepsNaNAndInfinityForTheFitToRefuse) {
  const double infinity = std::numeric_limits<double>::infinity();
  const BoundedArray<double> masses =
      MassesFromCaller(Doubles({std::numeric_limits<double>::quiet_NaN(), infinity}, 1));
  EXPECT_TRUE(std::isnan(masses(0)));
  EXPECT_EQ(masses(1), infinity);
}

TEST(MassesFromCaller, IsACopyOfItsOwn) {
  Variant::DoubleArray callers{118.1};
  const Variant passed(callers);
  BoundedArray<double> masses = MassesFromCaller(passed);
  masses(0) = 5.0;
  EXPECT_EQ(*passed.As<Variant::DoubleArray>(), callers);
}

}  // namespace
}  // namespace tof
