#include "instruments/virtual/isotopes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace tof::virtual_instrument {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

TEST(ParseFormula, ReadsSymbolsWithAndWithoutCounts) {
  EXPECT_THAT(ParseFormula("CH2NaO12"),
              ElementsAre(Pair("C", 1), Pair("H", 2), Pair("Na", 1), Pair("O", 12)));
}

TEST(ParseFormula, AddsUpARepeatedElement) {
  EXPECT_THAT(ParseFormula("CH3CH2"), ElementsAre(Pair("C", 2), Pair("H", 5)));
}

struct BadFormula {
  std::string formula;
  std::string message;
};

class BadFormulas : public testing::TestWithParam<BadFormula> {};

TEST_P(BadFormulas, AreRefusedWithTheirPosition) {
  try {
    ParseFormula(GetParam().formula);
    FAIL() << "accepted " << GetParam().formula;
  } catch (const std::invalid_argument& error) {
    EXPECT_THAT(error.what(), HasSubstr(GetParam().message));
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, BadFormulas,
    testing::Values(BadFormula{"", "position 1: expected an element symbol"},
                    BadFormula{"2C", "position 1: expected an element symbol"},
                    BadFormula{"C2 H", "position 3: expected an element symbol"},
                    BadFormula{"C2Xx", "position 3: expected one of the elements"},
                    BadFormula{"C0", "position 3: expected a count of at least 1"},
                    BadFormula{"C99999999999999999999", "expected a count of at most 10000"}));

TEST(FirstIsotopeMass, IsThatOfSodiumFormateClusters) {
  EXPECT_NEAR(FirstIsotopeMass(ParseFormula("Na")), 22.98922070, 1e-8);
  EXPECT_NEAR(FirstIsotopeMass(ParseFormula("CHO2Na2")), 90.97664, 5e-6);
  EXPECT_NEAR(FirstIsotopeMass(ParseFormula("C26H26O52Na27")), 1790.66223, 5e-6);
}

TEST(IsotopePattern, OfAMonoisotopicElementIsOnePeak) {
  const auto pattern = IsotopePattern(ParseFormula("Na4"));
  ASSERT_EQ(pattern.size(), 1U);
  EXPECT_EQ(pattern[0].mass_offset_u, 0.0);
  EXPECT_EQ(pattern[0].relative_abundance, 1.0);
}

TEST(IsotopePattern, OfCarbonIsBinomial) {
  const auto pattern = IsotopePattern(ParseFormula("C60"));
  const double odds = 0.0107 / 0.9893;
  ASSERT_GE(pattern.size(), 4U);
  EXPECT_NEAR(pattern[1].relative_abundance, 60.0 * odds, 1e-12);
  EXPECT_NEAR(pattern[2].relative_abundance, 60.0 * 59.0 / 2.0 * odds * odds, 1e-12);
  EXPECT_NEAR(pattern[1].mass_offset_u, 1.00335483534, 1e-9);
  EXPECT_NEAR(pattern[2].mass_offset_u, 2.0 * 1.00335483534, 1e-9);
}

TEST(IsotopePattern, MergesOneNominalMassAtItsMean) {
  // One extra neutron: 13C or 17O; two: 18O or both of them.
  const auto pattern = IsotopePattern(ParseFormula("CO"), 1e-6);
  const double carbon = 0.0107 / 0.9893;
  const double oxygen17 = 0.00038 / 0.99757;
  const double oxygen18 = 0.00205 / 0.99757;
  ASSERT_GE(pattern.size(), 3U);
  EXPECT_NEAR(pattern[1].relative_abundance, carbon + oxygen17, 1e-12);
  EXPECT_NEAR(
      pattern[1].mass_offset_u,
      (carbon * 1.00335483534 + oxygen17 * (16.99913175595 - 15.99491461926)) / (carbon + oxygen17),
      1e-12);
  EXPECT_NEAR(pattern[2].relative_abundance, oxygen18 + carbon * oxygen17, 1e-12);
}

TEST(IsotopePattern, LeavesOutWhatIsBelowTheLimit) {
  for (const IsotopePeak& peak : IsotopePattern(ParseFormula("C26H26O52Na27"), 0.01)) {
    EXPECT_GE(peak.relative_abundance, 0.01);
  }
}

TEST(AveragineComposition, WeighsAboutWhatWasAsked) {
  for (const double mass_u : {200.0, 800.0, 1800.0}) {
    // Rounding each element moves the mass by less than half an atom of each: under 31 u.
    EXPECT_NEAR(FirstIsotopeMass(AveragineComposition(mass_u)), mass_u, 31.0) << mass_u;
  }
}

}  // namespace
}  // namespace tof::virtual_instrument
