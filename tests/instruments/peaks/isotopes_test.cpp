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
