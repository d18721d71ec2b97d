#include "component/automation/number_text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include "component/automation/convert.h"

namespace tof {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kSmallest = std::numeric_limits<double>::denorm_min();

struct Case {
  std::string name;
  double value;
  std::string text;
};

class NumberTextRule : public testing::TestWithParam<Case> {};

TEST_P(NumberTextRule, IsTheShortestOf15Digits) {
  EXPECT_EQ(NumberText(GetParam().value), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Edges, NumberTextRule,
    testing::Values(
        Case{"Zero", 0.0, "0"}, Case{"NegativeZero", -0.0, "0"}, Case{"One", 1.0, "1"},
        Case{"Negative", -2.5, "-2.5"}, Case{"TrailingZerosOfAWholeNumber", 1200.0, "1200"},
        Case{"NoisyLastDigit", 0.1 + 0.2, "0.3"},
        Case{"FifteenDigits", 1.0 / 3.0, "0.333333333333333"},
        Case{"RoundedUpInTheLastDigit", 2.0 / 3.0, "0.666666666666667"},
        Case{"FifteenDigitsAroundThePoint", 1234567.12345678, "1234567.12345678"},
        Case{"SixteenthDigitIsRounded", 1234567.123456789, "1234567.12345679"},
        Case{"SmallestFixed", 1E-04, "0.0001"},
        Case{"SmallestFixedWithDigits", 0.000123456789012345, "0.000123456789012345"},
        Case{"LargestBelowFixed", 9.99999999999999E-05, "9.99999999999999E-05"},
        Case{"CarriesUpToFixed", 9.9999999999999999E-05, "0.0001"},
        Case{"SmallNumber", -1.5E-07, "-1.5E-07"}, Case{"OneDigitSmallNumber", 1E-05, "1E-05"},
        Case{"LargestFixed", 999999999999999.0, "999999999999999"},
        Case{"LargeWithHalf", 99999999999999.5, "99999999999999.5"},
        Case{"SmallestAboveFixed", 1E15, "1E+15"},
        Case{"CarriesUpToExponent", 9.999999999999995E14, "1E+15"},
        Case{"StaysBelowTheCarry", 999999999999999.375, "999999999999999"},
        Case{"NegativeCarry", -9.999999999999995E14, "-1E+15"},
        Case{"LargeWithDigits", 1.25E20, "1.25E+20"},
        Case{"LargeRounded", 123456789012345678.0, "1.23456789012346E+17"},
        Case{"ThreeDigitExponent", 1E100, "1E+100"},
        Case{"ThreeDigitNegativeExponent", 2.5E-300, "2.5E-300"},
        Case{"SmallestDouble", kSmallest, "4.94065645841247E-324"},
        Case{"LargestDouble", kLargest, "1.79769313486232E+308"}, Case{"NaN", kNaN, "NaN"},
        Case{"NegativeNaN", -kNaN, "NaN"}, Case{"Infinity", kInfinity, "Infinity"},
        Case{"NegativeInfinity", -kInfinity, "-Infinity"}),
    [](const auto& one) { return one.param.name; });

TEST(NumberText, IsReadBackAndWrittenAgainAlike) {
  std::mt19937_64 random(5);
  int finite = 0;
  for (int round = 0; round < 100000; ++round) {
    const std::uint64_t bits = random();
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    // Above this the fifteen digits may round beyond the largest double.
    if (!(value > -1.79769313486231E308 && value < 1.79769313486231E308)) continue;
    ++finite;
    const std::string text = NumberText(value);
    ASSERT_EQ(NumberText(TextToDouble(text)), text);
    ASSERT_NEAR(TextToDouble(text) / value, 1.0, 5.1E-15) << text;
  }
  EXPECT_GT(finite, 90000);
}

TEST(NumberText, OfUpToFifteenDigitsIsReadBackAsTheSameDouble) {
  std::mt19937_64 random(6);
  for (int round = 0; round < 20000; ++round) {
    const double value = static_cast<double>(random() % 1000000000000000U) / 1E6;
    ASSERT_EQ(TextToDouble(NumberText(value)), value);
  }
}

TEST(NumberText, IsTheSameUnderAnyLocale) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  // Not every machine has these; one that has must not change the text.
  for (const char* locale : {"de_DE.UTF-8", "de_DE", "fr_FR.UTF-8", "C"}) {
    std::setlocale(LC_ALL, locale);
    EXPECT_EQ(NumberText(1234.5), "1234.5");
    EXPECT_EQ(ScientificText(1234.5), "1.2345000000E+03");
    EXPECT_EQ(TextToDouble("1234.5"), 1234.5);
  }
  std::setlocale(LC_ALL, before.c_str());
}

class ScientificTextRule : public testing::TestWithParam<Case> {};

TEST_P(ScientificTextRule, HasTenDigitsAndASignedExponentOfTwoOrMore) {
  EXPECT_EQ(ScientificText(GetParam().value), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Edges, ScientificTextRule,
    testing::Values(
        Case{"Zero", 0.0, "0.0000000000E+00"}, Case{"NegativeZero", -0.0, "0.0000000000E+00"},
        Case{"SmallNegative", -1.5E-07, "-1.5000000000E-07"}, Case{"One", 1.0, "1.0000000000E+00"},
        Case{"HalfGoesUp", 1.00000000005, "1.0000000001E+00"},
        Case{"NegativeHalfGoesDown", -1.00000000005, "-1.0000000001E+00"},
        Case{"EvenDigitHalfGoesUpToo", 1.00000000025, "1.0000000003E+00"},
        Case{"BelowAHalf", 1.000000000049, "1.0000000000E+00"},
        Case{"CarryThroughAllDigits", 9.99999999995, "1.0000000000E+01"},
        Case{"CarryRaisesANegativeExponent", 9.99999999995E-01, "1.0000000000E+00"},
        Case{"BelowTheCarry", 9.99999999994, "9.9999999999E+00"},
        Case{"ThreeDigitExponent", 1.5E100, "1.5000000000E+100"},
        Case{"ThreeDigitNegativeExponent", 1.5E-300, "1.5000000000E-300"},
        Case{"LargestDouble", kLargest, "1.7976931349E+308"},
        Case{"SmallestDouble", kSmallest, "4.9406564584E-324"}, Case{"NaN", kNaN, "NaN"},
        Case{"Infinity", kInfinity, "Infinity"}, Case{"NegativeInfinity", -kInfinity, "-Infinity"}),
    [](const auto& one) { return one.param.name; });

class WholeNumberTextRule : public testing::TestWithParam<Case> {};

TEST_P(WholeNumberTextRule, RoundsHalvesAwayFromZeroAndIsNothingForZero) {
  EXPECT_EQ(WholeNumberText(GetParam().value), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Edges, WholeNumberTextRule,
    testing::Values(Case{"Zero", 0.0, ""}, Case{"NegativeZero", -0.0, ""},
                    Case{"BelowAHalf", 0.49999999999999994, ""}, Case{"AHalf", 0.5, "1"},
                    Case{"NegativeBelowAHalf", -0.4, ""}, Case{"NegativeHalf", -0.5, "-1"},
                    Case{"EvenHalf", 2.5, "3"}, Case{"NegativeEvenHalf", -2.5, "-3"},
                    Case{"WiderThanThePattern", 1234567890.4, "1234567890"},
                    Case{"CarryIntoANewDigit", 999.5, "1000"},
                    Case{"LargeWhole", 9007199254740993.0, "9007199254740992"},
                    Case{"NaN", kNaN, "NaN"}, Case{"Infinity", kInfinity, "Infinity"}),
    [](const auto& one) { return one.param.name; });

TEST(HexText, ShowsThe32BitPatternWithoutLeadingZeros) {
  EXPECT_EQ(HexText(0), "0");
  EXPECT_EQ(HexText(5), "5");
  EXPECT_EQ(HexText(0x1F), "1F");
  EXPECT_EQ(HexText(0xABCDEF), "ABCDEF");
  EXPECT_EQ(HexText(-1), "FFFFFFFF");
  EXPECT_EQ(HexText(std::numeric_limits<std::int32_t>::max()), "7FFFFFFF");
  EXPECT_EQ(HexText(std::numeric_limits<std::int32_t>::min()), "80000000");
}

TEST(BooleanText, IsTrueOrFalse) {
  EXPECT_EQ(BooleanText(true), "True");
  EXPECT_EQ(BooleanText(false), "False");
}

TEST(DateAndTimeText, ArePaddedToFixedWidths) {
  const DateTime early{987, 1, 2, 3, 4, 5};
  EXPECT_EQ(DateText(early), "09870102");
  EXPECT_EQ(TimeText(early), "030405");
  EXPECT_EQ(ColonTimeText(early), "03:04:05");
  const DateTime late{2024, 12, 31, 23, 59, 59};
  EXPECT_EQ(DateText(late), "20241231");
  EXPECT_EQ(TimeText(late), "235959");
  EXPECT_EQ(ColonTimeText(late), "23:59:59");
}

TEST(DateAndTimeText, OfAnUnsetMomentIsTheAutomationDayZero) {
  EXPECT_EQ(DateText(DateTime{}), "18991230");
  EXPECT_EQ(TimeText(DateTime{}), "000000");
}

}  // namespace
}  // namespace tof
