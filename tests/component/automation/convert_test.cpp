#include "component/automation/convert.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "component/automation/late_bound_object.h"
#include "tests/component/error_number_of.h"

namespace tof {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct IntegerCase {
  std::string name;
  double value;
  std::int32_t expected;
  std::int32_t error = 0;
};

std::string NameOf(const testing::TestParamInfo<IntegerCase>& one) {
  return one.param.name;
}

// The host's rounding mode, put back at the end.
class RoundingMode {
 public:
  explicit RoundingMode(int mode) : before_(std::fegetround()) { std::fesetround(mode); }
  ~RoundingMode() { std::fesetround(before_); }
  RoundingMode(const RoundingMode&) = delete;
  RoundingMode& operator=(const RoundingMode&) = delete;

 private:
  int before_;
};

template <class Integer>
void ExpectConverted(Integer (*convert)(double), const IntegerCase& one) {
  for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    std::int32_t result = 0;
    std::int32_t error = 0;
    {
      const RoundingMode rounding(mode);
      error = ErrorNumberOf([&] { result = convert(one.value); });
    }
    EXPECT_EQ(error, one.error) << "rounding mode " << mode;
    EXPECT_EQ(result, one.expected) << "rounding mode " << mode;
  }
}

TEST(ConversionToSingle, TakesTheNearestSingle) {
  EXPECT_EQ(ToSingle(0.1), 0.1F);
  EXPECT_EQ(ToSingle(-16777217.0), -16777216.0F);
  EXPECT_EQ(ToSingle(1e-60), 0.0F);
  EXPECT_EQ(ToSingle(double{std::numeric_limits<float>::max()}), std::numeric_limits<float>::max());
}

TEST(ConversionToSingle, KeepsNaNAndInfinity) {
  EXPECT_TRUE(std::isnan(ToSingle(kNaN)));
  EXPECT_EQ(ToSingle(-kInfinity), -std::numeric_limits<float>::infinity());
}

TEST(ConversionToSingle, RefusesAFiniteNumberBeyondTheSingles) {
  EXPECT_EQ(ErrorNumberOf([] { ToSingle(3.5e38); }), 6);
  EXPECT_EQ(ErrorNumberOf([] { ToSingle(-1e300); }), 6);
}

class ToInt16Rule : public testing::TestWithParam<IntegerCase> {};

TEST_P(ToInt16Rule, RoundsHalvesToEvenUnderEveryRoundingMode) {
  ExpectConverted<std::int16_t>(ToInt16, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Edges, ToInt16Rule,
    testing::Values(
        IntegerCase{"Zero", 0.0, 0}, IntegerCase{"NegativeZero", -0.0, 0},
        IntegerCase{"Half", 0.5, 0}, IntegerCase{"OneAndAHalf", 1.5, 2},
        IntegerCase{"TwoAndAHalf", 2.5, 2}, IntegerCase{"MinusHalf", -0.5, 0},
        IntegerCase{"MinusOneAndAHalf", -1.5, -2}, IntegerCase{"MinusTwoAndAHalf", -2.5, -2},
        IntegerCase{"JustBelowAHalf", 0.49999999999999994, 0},
        IntegerCase{"JustAboveAHalf", 0.5000000000000001, 1},
        IntegerCase{"JustAboveMinusHalf", -0.49999999999999994, 0},
        IntegerCase{"JustBelowMinusHalf", -0.5000000000000001, -1},
        IntegerCase{"JustBelowTwoAndAHalf", 2.4999999999999996, 2},
        IntegerCase{"JustAboveTwoAndAHalf", 2.5000000000000004, 3}, IntegerCase{"Tiny", 5E-324, 0},
        IntegerCase{"NegativeTiny", -1E-20, 0}, IntegerCase{"Largest", 32767.0, 32767},
        IntegerCase{"EvenHalfBelowTheLargest", 32766.5, 32766},
        IntegerCase{"RoundsDownToTheLargest", 32767.49999, 32767},
        IntegerCase{"HalfAboveTheLargest", 32767.5, 0, 6},
        IntegerCase{"AboveTheLargest", 32768.0, 0, 6}, IntegerCase{"Lowest", -32768.0, -32768},
        IntegerCase{"HalfBelowTheLowestIsEven", -32768.5, -32768},
        IntegerCase{"MoreThanHalfBelowTheLowest", -32768.500001, 0, 6},
        IntegerCase{"BelowTheLowest", -32769.0, 0, 6}, IntegerCase{"Vast", 1E300, 0, 6},
        IntegerCase{"NaN", kNaN, 0, 6}, IntegerCase{"Infinity", kInfinity, 0, 6},
        IntegerCase{"NegativeInfinity", -kInfinity, 0, 6}),
    NameOf);

class ToInt32Rule : public testing::TestWithParam<IntegerCase> {};

TEST_P(ToInt32Rule, RoundsHalvesToEvenUnderEveryRoundingMode) {
  ExpectConverted<std::int32_t>(ToInt32, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Edges, ToInt32Rule,
    testing::Values(IntegerCase{"EvenHalf", 100000.5, 100000},
                    IntegerCase{"OddHalf", 100001.5, 100002},
                    IntegerCase{"Largest", 2147483647.0, 2147483647},
                    IntegerCase{"EvenHalfBelowTheLargest", 2147483646.5, 2147483646},
                    IntegerCase{"HalfAboveTheLargest", 2147483647.5, 0, 6},
                    IntegerCase{"Lowest", -2147483648.0, std::numeric_limits<std::int32_t>::min()},
                    IntegerCase{"HalfBelowTheLowestIsEven", -2147483648.5,
                                std::numeric_limits<std::int32_t>::min()},
                    IntegerCase{"BelowTheLowest", -2147483649.0, 0, 6},
                    IntegerCase{"NaN", kNaN, 0, 6}, IntegerCase{"Infinity", kInfinity, 0, 6}),
    NameOf);

// A converted variant or text, or the error of the conversion.
template <class Value>
struct ValueCase {
  std::string name;
  Variant value;
  Value expected;
  std::int32_t error = 0;
};

template <class Value>
void ExpectConverted(Value (*convert)(const Variant&), const ValueCase<Value>& one) {
  Value result{};
  EXPECT_EQ(ErrorNumberOf([&] { result = convert(one.value); }), one.error);
  if (one.error == 0) {
    EXPECT_EQ(result, one.expected);
  }
}

using DoubleCase = ValueCase<double>;
class ToDoubleRule : public testing::TestWithParam<DoubleCase> {};

TEST_P(ToDoubleRule, ConvertsEveryKindOfVariantOrRaises) {
  ExpectConverted<double>(ToDouble, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ToDoubleRule,
    testing::Values(DoubleCase{"Double", 1.25, 1.25}, DoubleCase{"Integer32", -70000, -70000.0},
                    DoubleCase{"Integer16", std::int16_t{-7}, -7.0}, DoubleCase{"True", true, -1.0},
                    DoubleCase{"False", false, 0.0}, DoubleCase{"Empty", Variant(), 0.0},
                    DoubleCase{"Text", " 12.5 ", 12.5}, DoubleCase{"EmptyText", "", 0.0, 13},
                    DoubleCase{"BooleanTextIsNoNumber", "True", 0.0, 13},
                    DoubleCase{"Missing", Variant::Missing{}, 0.0, 13},
                    DoubleCase{"Nothing", Variant::Object(), 0.0, 13},
                    DoubleCase{"DoubleArray", Variant::DoubleArray{1.0}, 0.0, 13},
                    DoubleCase{"VariantArray", Variant::Array{Variant(1.0)}, 0.0, 13}),
    [](const auto& one) { return one.param.name; });

TEST(ToIntegerOfAVariant, GoesThroughTheDouble) {
  EXPECT_EQ(ToInt16(Variant("2.5")), 2);
  EXPECT_EQ(ToInt16(Variant(true)), -1);
  EXPECT_EQ(ToInt16(Variant()), 0);
  EXPECT_EQ(ErrorNumberOf([] { ToInt16(Variant(32768)); }), 6);
  EXPECT_EQ(ErrorNumberOf([] { ToInt16(Variant("")); }), 13);
  EXPECT_EQ(ToInt32(Variant("1E3")), 1000);
  EXPECT_EQ(ErrorNumberOf([] { ToInt32(Variant("NaN")); }), 6);
  EXPECT_EQ(ErrorNumberOf([] { ToInt32(Variant("1E10")); }), 6);
}

using BoolCase = ValueCase<bool>;
class ToBoolRule : public testing::TestWithParam<BoolCase> {};

TEST_P(ToBoolRule, IsTrueForAllButZero) {
  ExpectConverted<bool>(ToBool, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ToBoolRule,
    testing::Values(BoolCase{"True", true, true}, BoolCase{"False", false, false},
                    BoolCase{"Zero", 0.0, false}, BoolCase{"NegativeZero", -0.0, false},
                    BoolCase{"Fraction", 0.1, true}, BoolCase{"Negative", -5, true},
                    BoolCase{"Empty", Variant(), false}, BoolCase{"TextTrue", " tRUE ", true},
                    BoolCase{"TextFalse", "FALSE", false}, BoolCase{"TextZero", "0", false},
                    BoolCase{"TextNumber", "1E-3", true}, BoolCase{"TextYes", "Yes", false, 13},
                    BoolCase{"EmptyText", "", false, 13},
                    BoolCase{"Missing", Variant::Missing{}, false, 13},
                    BoolCase{"Nothing", Variant::Object(), false, 13}),
    [](const auto& one) { return one.param.name; });

bool EqualsOne(const Variant& value) {
  return EqualsNumber(value, 1.0);
}

class EqualsNumberRule : public testing::TestWithParam<BoolCase> {};

TEST_P(EqualsNumberRule, ComparesWithOneAfterTheConversion) {
  ExpectConverted<bool>(EqualsOne, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, EqualsNumberRule,
    testing::Values(BoolCase{"Double", 1.0, true}, BoolCase{"Integer", 1, true},
                    BoolCase{"Text", "1.0", true}, BoolCase{"TrueIsMinusOne", true, false},
                    BoolCase{"Empty", Variant(), false}, BoolCase{"NaN", kNaN, false},
                    BoolCase{"BadText", "one", false, 13},
                    BoolCase{"Missing", Variant::Missing{}, false, 13}),
    [](const auto& one) { return one.param.name; });

class EqualsTrueRule : public testing::TestWithParam<BoolCase> {};

TEST_P(EqualsTrueRule, HoldsForTrueAndMinusOneAlone) {
  ExpectConverted<bool>(EqualsTrue, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, EqualsTrueRule,
    testing::Values(BoolCase{"True", true, true}, BoolCase{"False", false, false},
                    BoolCase{"MinusOne", -1, true}, BoolCase{"MinusOneDouble", -1.0, true},
                    BoolCase{"One", 1, false}, BoolCase{"Zero", 0.0, false},
                    BoolCase{"Empty", Variant(), false}, BoolCase{"TextTrue", "true", true},
                    BoolCase{"TextFalse", "False", false}, BoolCase{"TextMinusOne", "-1", true},
                    BoolCase{"TextOne", "1", false}, BoolCase{"NaN", kNaN, false},
                    BoolCase{"BadText", "Yes", false, 13},
                    BoolCase{"Missing", Variant::Missing{}, false, 13}),
    [](const auto& one) { return one.param.name; });

using TextCase = ValueCase<std::string>;
class ToTextRule : public testing::TestWithParam<TextCase> {};

TEST_P(ToTextRule, WritesEveryKindOfScalar) {
  ExpectConverted<std::string>(ToText, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ToTextRule,
    testing::Values(TextCase{"Empty", Variant(), ""}, TextCase{"Text", " as is ", " as is "},
                    TextCase{"True", true, "True"}, TextCase{"False", false, "False"},
                    TextCase{"Integer16", std::int16_t{-32768}, "-32768"},
                    TextCase{"Integer32", std::numeric_limits<std::int32_t>::min(), "-2147483648"},
                    TextCase{"Double", 0.1 + 0.2, "0.3"}, TextCase{"NaN", kNaN, "NaN"},
                    TextCase{"Missing", Variant::Missing{}, "", 13},
                    TextCase{"Nothing", Variant::Object(), "", 13},
                    TextCase{"Array", Variant::DoubleArray{1.0}, "", 13}),
    [](const auto& one) { return one.param.name; });

struct NumericTextCase {
  std::string name;
  std::string text;
  double expected;
  std::int32_t error = 0;
};

class TextToDoubleRule : public testing::TestWithParam<NumericTextCase> {};

TEST_P(TextToDoubleRule, ReadsADecimalNumberOrRaises) {
  double result = 0.0;
  EXPECT_EQ(ErrorNumberOf([&] { result = TextToDouble(GetParam().text); }), GetParam().error);
  if (GetParam().error == 0) {
    EXPECT_EQ(result, GetParam().expected);
    EXPECT_EQ(std::signbit(result), std::signbit(GetParam().expected));
  }
}

const std::string kManyZeros(400, '0');

INSTANTIATE_TEST_SUITE_P(
    Numbers, TextToDoubleRule,
    testing::Values(
        NumericTextCase{"Whole", "12", 12.0}, NumericTextCase{"Blanks", " \t12.5 \t", 12.5},
        NumericTextCase{"Plus", "+3", 3.0}, NumericTextCase{"Minus", "-3", -3.0},
        NumericTextCase{"MinusZero", "-0", -0.0}, NumericTextCase{"PointFirst", ".5", 0.5},
        NumericTextCase{"SignAndPoint", "-.5", -0.5}, NumericTextCase{"PointLast", "5.", 5.0},
        NumericTextCase{"LeadingZeros", "007", 7.0}, NumericTextCase{"Exponent", "1E3", 1000.0},
        NumericTextCase{"SmallLetterExponent", "1e3", 1000.0},
        NumericTextCase{"PlusExponent", "1E+03", 1000.0},
        NumericTextCase{"MinusExponent", "-1.5E-07", -1.5E-07},
        NumericTextCase{"ExactToTheLastBit", "0.1", 0.1},
        NumericTextCase{"Infinity", "Infinity", kInfinity},
        NumericTextCase{"NegativeInfinity", " -infinity ", -kInfinity},
        NumericTextCase{"LargestDouble", "1.7976931348623157E308",
                        std::numeric_limits<double>::max()},
        NumericTextCase{"FifteenDigitsOfTheLargestDouble", "1.79769313486232E+308", 0.0, 6},
        NumericTextCase{"TooLarge", "1E400", 0.0, 6},
        NumericTextCase{"TooNegative", "-1E400", 0.0, 6},
        NumericTextCase{"ExponentOfManyDigits", "1E99999999999999999999", 0.0, 6},
        NumericTextCase{"TooLargeWithoutExponent", "1" + kManyZeros, 0.0, 6},
        NumericTextCase{"TooLargeWithNegativeExponent", "1" + kManyZeros + "E-50", 0.0, 6},
        NumericTextCase{"ZerosUndoneByTheExponent", "1" + kManyZeros + "E-400", 1.0},
        NumericTextCase{"SmallestDouble", "5E-324", std::numeric_limits<double>::denorm_min()},
        NumericTextCase{"TooSmall", "1E-400", 0.0},
        NumericTextCase{"TooSmallNegative", "-1E-400", -0.0},
        NumericTextCase{"NegativeExponentOfManyDigits", "1E-99999999999999999999", 0.0},
        NumericTextCase{"TooSmallWithoutExponent", "0." + kManyZeros + "1", 0.0},
        NumericTextCase{"TooSmallWithPositiveExponent", "." + kManyZeros + "1E+50", 0.0},
        NumericTextCase{"ZeroWithAnyExponent", "0E999", 0.0}),
    [](const auto& one) { return one.param.name; });

INSTANTIATE_TEST_SUITE_P(
    NotNumbers, TextToDoubleRule,
    testing::Values(
        NumericTextCase{"Empty", "", 0.0, 13}, NumericTextCase{"OnlyBlanks", "  ", 0.0, 13},
        NumericTextCase{"Word", "Yes", 0.0, 13}, NumericTextCase{"True", "True", 0.0, 13},
        NumericTextCase{"OnlyASign", "-", 0.0, 13}, NumericTextCase{"OnlyAPoint", ".", 0.0, 13},
        NumericTextCase{"TwoSigns", "--5", 0.0, 13}, NumericTextCase{"MixedSigns", "+-5", 0.0, 13},
        NumericTextCase{"BlankBehindTheSign", "- 5", 0.0, 13},
        NumericTextCase{"BlankInside", "1 000", 0.0, 13},
        NumericTextCase{"DecimalComma", "1,5", 0.0, 13},
        NumericTextCase{"TwoPoints", "1.2.3", 0.0, 13},
        NumericTextCase{"UnitBehind", "12 ns", 0.0, 13},
        NumericTextCase{"LetterBehind", "12x", 0.0, 13},
        NumericTextCase{"LetterBefore", "x12", 0.0, 13},
        NumericTextCase{"OpenExponent", "1E", 0.0, 13},
        NumericTextCase{"OpenSignedExponent", "1E+", 0.0, 13},
        NumericTextCase{"ExponentAlone", "E5", 0.0, 13},
        NumericTextCase{"FractionalExponent", "1E2.5", 0.0, 13},
        NumericTextCase{"Hexadecimal", "0x10", 0.0, 13},
        NumericTextCase{"ShortInfinity", "inf", 0.0, 13},
        NumericTextCase{"SignedNaN", "-NaN", 0.0, 13},
        NumericTextCase{"NaNWithPayload", "nan(1)", 0.0, 13},
        NumericTextCase{"NulInside", std::string("1\0002", 3), 0.0, 13}),
    [](const auto& one) { return one.param.name; });

TEST(TextToDouble, ReadsNaNInAnyCase) {
  EXPECT_TRUE(std::isnan(TextToDouble("NaN")));
  EXPECT_TRUE(std::isnan(TextToDouble(" nan ")));
}

}  // namespace
}  // namespace tof
