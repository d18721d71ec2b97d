#include "instruments/virtual/isotopes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
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
                    BadFormula{"Ar", "position 1: expected one of the elements"},
                    BadFormula{"C2Zz", "position 3: expected one of the elements"},
                    BadFormula{"@", "position 1: expected an element symbol"},
                    BadFormula{"[", "position 1: expected an element symbol"},
                    BadFormula{"C`", "position 2: expected an element symbol"},
                    BadFormula{"C{", "position 2: expected an element symbol"},
                    BadFormula{"C/", "position 2: expected an element symbol"},
                    BadFormula{"C:", "position 2: expected an element symbol"},
                    BadFormula{"C10001", "expected a count of at most 10000"},
                    BadFormula{"C0", "position 3: expected a count of at least 1"},
                    BadFormula{"C99999999999999999999", "expected a count of at most 10000"}));

TEST(FirstIsotopeMass, IsThatOfSodiumFormateClusters) {
  EXPECT_NEAR(FirstIsotopeMass(ParseFormula("Na")), 22.98922070, 1e-8);
  EXPECT_NEAR(FirstIsotopeMass(ParseFormula("CHO2Na2")), 90.97664, 5e-6);
  EXPECT_NEAR(FirstIsotopeMass(ParseFormula("C26H26O52Na27")), 1790.66223, 5e-6);
}

// The masses of the published tables (AME 2020), less an electron.
struct ElementRow {
  const char* symbol;
  double mass_u;
};

class Elements : public testing::TestWithParam<ElementRow> {};

TEST_P(Elements, HaveTheMassOfTheirLightestIsotope) {
  EXPECT_NEAR(FirstIsotopeMass(ParseFormula(GetParam().symbol)), GetParam().mass_u - 0.00054857991,
              1e-8);
}

INSTANTIATE_TEST_SUITE_P(All, Elements,
                         testing::Values(ElementRow{"H", 1.00782503}, ElementRow{"C", 12.0},
                                         ElementRow{"N", 14.00307400}, ElementRow{"O", 15.99491462},
                                         ElementRow{"F", 18.99840316},
                                         ElementRow{"Na", 22.98976928},
                                         ElementRow{"Si", 27.97692653},
                                         ElementRow{"P", 30.97376200},
                                         ElementRow{"S", 31.97207117}),
                         [](const auto& row) { return std::string(row.param.symbol); });

// The isotopes of each element behind its lightest one: how much heavier, how much of the first.
// From the published masses and the representative isotopic compositions of 2009, in per cent.
struct HeavyIsotope {
  const char* symbol;
  std::size_t at;  // in the pattern
  double extra_u;
  double share;
};

class HeavyIsotopes : public testing::TestWithParam<HeavyIsotope> {};

TEST_P(HeavyIsotopes, HaveTheirPublishedMassAndShare) {
  const auto pattern = IsotopePattern(ParseFormula(GetParam().symbol), 1e-9);
  ASSERT_GT(pattern.size(), GetParam().at);
  EXPECT_NEAR(pattern[GetParam().at].mass_offset_u, GetParam().extra_u, 2e-8);
  EXPECT_NEAR(pattern[GetParam().at].relative_abundance, GetParam().share, 1e-12);
}

INSTANTIATE_TEST_SUITE_P(All, HeavyIsotopes,
                         testing::Values(HeavyIsotope{"H", 1, 1.00627675, 0.0115 / 99.9885},
                                         HeavyIsotope{"C", 1, 1.00335484, 1.07 / 98.93},
                                         HeavyIsotope{"N", 1, 0.99703489, 0.364 / 99.636},
                                         HeavyIsotope{"O", 1, 1.00421714, 0.038 / 99.757},
                                         HeavyIsotope{"O", 2, 2.00424499, 0.205 / 99.757},
                                         HeavyIsotope{"Si", 1, 0.99956813, 4.685 / 92.223},
                                         HeavyIsotope{"Si", 2, 1.99684361, 3.092 / 92.223},
                                         HeavyIsotope{"S", 1, 0.99938774, 0.75 / 94.99},
                                         HeavyIsotope{"S", 2, 1.99579584, 4.25 / 94.99},
                                         HeavyIsotope{"S", 3, 3.99500952, 0.01 / 94.99}),
                         [](const auto& row) {
                           return std::string(row.param.symbol) + std::to_string(row.param.at);
                         });

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

TEST(IsotopePattern, HasOnePeakForANominalMass) {
  for (const char* formula : {"H2", "C2", "N2", "O2", "Si2", "S2"}) {
    double last = -1.0;
    for (const IsotopePeak& peak : IsotopePattern(ParseFormula(formula), 1e-12)) {
      EXPECT_GT(std::round(peak.mass_offset_u), last) << formula;
      last = std::round(peak.mass_offset_u);
    }
  }
}

TEST(IsotopePattern, LeavesOutWhatIsBelowTheLimit) {
  for (const IsotopePeak& peak : IsotopePattern(ParseFormula("C26H26O52Na27"), 0.01)) {
    EXPECT_GE(peak.relative_abundance, 0.01);
  }
}

// Of 111.1254 u each: C 4.9384 H 7.7583 N 1.3577 O 1.4773 S 0.0417.
TEST(AveragineComposition, HasThePublishedProportions) {
  EXPECT_THAT(AveragineComposition(1'111'254.0),
              ElementsAre(Pair("C", 49'384), Pair("H", 77'583), Pair("N", 13'577),
                          Pair("O", 14'773), Pair("S", 417)));
  // Half an atom is one.
  EXPECT_EQ(AveragineComposition(111.1254 / 0.0417 * 0.51).at("S"), 1);
  EXPECT_EQ(AveragineComposition(111.1254 / 0.0417 * 0.49).count("S"), 0U);
}

TEST(AveragineComposition, WeighsAboutWhatWasAsked) {
  for (const double mass_u : {200.0, 800.0, 1800.0}) {
    // Rounding each element moves the mass by less than half an atom of each: under 31 u.
    EXPECT_NEAR(FirstIsotopeMass(AveragineComposition(mass_u)), mass_u, 31.0) << mass_u;
  }
}

}  // namespace
}  // namespace tof::virtual_instrument
