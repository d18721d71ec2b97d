#include "instruments/peaks/isotopes.h"

#include <gtest/gtest.h>

namespace tof::peaks {
namespace {

const masstime::MassTimeModel kModel{{6.5e-4, 300.0}, {12'000.0, 99'000.0}};
const PeakWidthModel kWidth = WidthFromResolvingPower(10'000.0);

Peak PeakOf(double mass, double height) {
  Peak peak;
  peak.time_ns = masstime::MassToTime(kModel, mass);
  peak.height = height;
  peak.abundance = 8.0 * height;
  return peak;
}

TEST(Isotopes, OfOneIonAreOneCluster) {
  const std::vector<Peak> peaks{PeakOf(2000.0, 900.0), PeakOf(2001.003, 1'000.0),
                                PeakOf(2002.007, 600.0), PeakOf(2100.0, 300.0)};
  const std::vector<Cluster> clusters = GroupIsotopes(peaks, kModel, kWidth);
  ASSERT_EQ(clusters.size(), 2U);
  EXPECT_EQ(clusters[0].first.time_ns, peaks[0].time_ns);
  EXPECT_EQ(clusters[0].abundance, 8.0 * 2'500.0);
  EXPECT_EQ(clusters[1].first.time_ns, peaks[3].time_ns);
}

TEST(Isotopes, TheFirstMayBeMuchSmallerThanTheSecondInAHeavyIon) {
  const std::vector<Peak> peaks{PeakOf(4100.0, 300.0), PeakOf(4101.003, 900.0)};
  ASSERT_EQ(GroupIsotopes(peaks, kModel, kWidth).size(), 1U);
}

// A peak one isotope behind another may have 0.25 + 1.155e-3 per u times the height of that one.
TEST(Isotopes, AreBoundedByWhatCarbonCanHave) {
  const auto clusters_of = [](double mass, double ratio) {
    const std::vector<Peak> peaks{PeakOf(mass, 1'000.0), PeakOf(mass + 1.0033548, 1'000.0 * ratio)};
    return GroupIsotopes(peaks, kModel, kWidth).size();
  };
  EXPECT_EQ(clusters_of(100.0, 0.36), 1U);
  EXPECT_EQ(clusters_of(100.0, 0.37), 2U);
  EXPECT_EQ(clusters_of(2000.0, 2.55), 1U);
  EXPECT_EQ(clusters_of(2000.0, 2.57), 2U);
}

// An isotope may lie 6 per cent of the spacing and half a peak width from its place, and never more
// than a quarter of the spacing. At 2000 u the spacing is 17.25 ns, a peak 3.45 ns wide.
TEST(Isotopes, MayLieSomewhatOffTheirPlace) {
  const auto clusters_with = [](double off_ns, const PeakWidthModel& width) {
    std::vector<Peak> peaks{PeakOf(2000.0, 900.0), PeakOf(2001.0033548, 1'000.0)};
    peaks[1].time_ns += off_ns;
    return GroupIsotopes(peaks, kModel, width).size();
  };
  const double spacing_ns = IsotopeSpacing(kModel, PeakOf(2000.0, 1.0).time_ns);
  const double fwhm_ns = kWidth.FwhmAt(PeakOf(2000.0, 1.0).time_ns);
  const double tolerance_ns = 0.06 * spacing_ns + 0.5 * fwhm_ns;
  for (const double sign : {-1.0, 1.0}) {
    EXPECT_EQ(clusters_with(sign * 0.99 * tolerance_ns, kWidth), 1U) << sign;
    EXPECT_EQ(clusters_with(sign * 1.01 * tolerance_ns, kWidth), 2U) << sign;
    const PeakWidthModel broad = WidthFromResolvingPower(4'000.0);  // 8.6 ns
    EXPECT_EQ(clusters_with(sign * 0.249 * spacing_ns, broad), 1U) << sign;
    EXPECT_EQ(clusters_with(sign * 0.255 * spacing_ns, broad), 2U) << sign;
  }
}

TEST(Isotopes, AreResolvedWhenTheirSpacingIsAFifthMoreThanAPeakWidth) {
  const std::vector<Peak> peaks{PeakOf(2000.0, 900.0), PeakOf(2001.0033548, 1'000.0)};
  const double time_ns = peaks[1].time_ns;
  const double spacing_ns = IsotopeSpacing(kModel, time_ns);
  const auto clusters_at = [&](double fwhm_ns) {
    return GroupIsotopes(peaks, kModel, WidthFromResolvingPower(time_ns / (2.0 * fwhm_ns))).size();
  };
  EXPECT_EQ(clusters_at(spacing_ns / 1.21), 1U);
  EXPECT_EQ(clusters_at(spacing_ns / 1.19), 2U);
}

TEST(Isotopes, FollowTheStrongestPeakInTheirPlace) {
  const double spacing_u = 1.0033548;
  for (const bool first_is_stronger : {true, false}) {
    std::vector<Peak> peaks{PeakOf(2000.0, first_is_stronger ? 1'000.0 : 800.0),
                            PeakOf(2000.05, first_is_stronger ? 800.0 : 1'000.0),
                            PeakOf(2000.02 + spacing_u, 500.0)};
    const std::vector<Cluster> clusters = GroupIsotopes(peaks, kModel, kWidth);
    ASSERT_EQ(clusters.size(), 2U);
    EXPECT_EQ(clusters[first_is_stronger ? 0 : 1].abundance, 8.0 * 1'500.0);
    EXPECT_EQ(clusters[first_is_stronger ? 1 : 0].abundance, 8.0 * 800.0);
  }
}

TEST(Isotopes, ASmallPeakBeforeAnIonIsNotItsFirstIsotope) {
  const std::vector<Peak> peaks{PeakOf(798.997, 50.0), PeakOf(800.0, 1'000.0),
                                PeakOf(801.003, 500.0)};
  const std::vector<Cluster> clusters = GroupIsotopes(peaks, kModel, kWidth);
  ASSERT_EQ(clusters.size(), 2U);
  EXPECT_EQ(clusters[1].first.time_ns, peaks[1].time_ns);
}

TEST(Isotopes, ACalibrationTwoPerCentOffGivesTheSameClusters) {
  for (const double factor : {0.98, 1.02}) {
    masstime::MassTimeModel off = kModel;
    off.coefficients[masstime::kA] *= factor;
    const std::vector<Peak> peaks{PeakOf(2000.0, 900.0), PeakOf(2001.003, 1'000.0),
                                  PeakOf(2002.007, 600.0)};
    EXPECT_EQ(GroupIsotopes(peaks, off, kWidth).size(), 1U) << factor;
  }
}

TEST(Isotopes, UnresolvedOnesAreNotLookedFor) {
  const std::vector<Peak> peaks{PeakOf(372.0, 900.0), PeakOf(373.003, 500.0)};
  EXPECT_EQ(GroupIsotopes(peaks, kModel, WidthFromResolvingPower(150.0)).size(), 2U);
}

TEST(Isotopes, HaveNoSpacingWithoutAMass) {
  EXPECT_EQ(IsotopeSpacing(kModel, 200.0), 0.0);
  EXPECT_EQ(IsotopeSpacing({}, 20'000.0), 0.0);
  EXPECT_NEAR(IsotopeSpacing(kModel, masstime::MassToTime(kModel, 1000.0)),
              masstime::MassToTime(kModel, 1001.0033548) - masstime::MassToTime(kModel, 1000.0),
              1e-6);
}

}  // namespace
}  // namespace tof::peaks
