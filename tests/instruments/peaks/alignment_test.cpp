#include "instruments/peaks/alignment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace tof::peaks {
namespace {

// So narrow that tolerances are parts of the flight time alone.
const PeakWidthModel kNarrow{1.0, 1e-6, 0.0};

Cluster ClusterAt(double time_ns, double snr = 99.0, double abundance = 1'000.0) {
  Cluster cluster;
  cluster.first.time_ns = time_ns;
  cluster.first.snr = snr;
  cluster.abundance = abundance;
  return cluster;
}

std::vector<Expected> ExpectedAt(const std::vector<double>& times_ns, double window) {
  std::vector<Expected> expected;
  for (const double time_ns : times_ns) expected.push_back({time_ns, window * time_ns});
  return expected;
}

// One cluster a calibrant, `parts[i]` of its flight time behind where it is expected.
std::vector<Cluster> ClustersOff(const std::vector<double>& times_ns,
                                 const std::vector<double>& parts) {
  std::vector<Cluster> clusters;
  for (std::size_t i = 0; i < times_ns.size(); ++i) {
    clusters.push_back(ClusterAt(times_ns[i] * (1.0 + parts[i])));
  }
  return clusters;
}

const std::vector<double> kTenTimes{20e3, 21e3, 30e3, 31e3, 40e3, 41e3, 50e3, 51e3, 60e3, 61e3};

TEST(Alignment, OfNothingLeavesTheTimesAsTheyAre) {
  EXPECT_EQ(AlignTimes({}, {}, kNarrow).Correct(34'567.0), 34'567.0);
  const Alignment alone = AlignTimes(ExpectedAt({30e3, 50e3}, 0.02), {}, kNarrow);
  EXPECT_EQ(alone.Correct(34'567.0), 34'567.0);
  EXPECT_EQ(alone.matched, 0u);
  EXPECT_EQ(alone.spread, 0.0);
}

TEST(Alignment, FindsAStretchAndAShift) {
  std::vector<Cluster> clusters;
  for (const double time_ns : kTenTimes) clusters.push_back(ClusterAt(1.011 * time_ns - 150.0));
  const Alignment found = AlignTimes(ExpectedAt(kTenTimes, 0.02), clusters, kNarrow);
  EXPECT_EQ(found.matched, 10u);
  EXPECT_NEAR(found.spread, 0.0, 1e-9);
  for (const double time_ns : {20e3, 34'567.0, 61e3}) {
    EXPECT_NEAR(found.Correct(time_ns), 1.011 * time_ns - 150.0, 1e-3);
  }
}

// Six calibrants lie to and fro of where they are expected, by 0.6 of the tolerance, so that no
// smooth correction brings them nearer; four lie 2.2 tolerances behind, beyond what the refinement
// ever looks at.
class RefinementTolerance : public testing::TestWithParam<double> {};

TEST_P(RefinementTolerance, IsTheLeastThatMatchesMostCalibrants) {
  const double miss = 0.6 * GetParam();
  const double far = 2.2 * GetParam();
  const std::vector<double> parts{miss, -miss, far, far, -miss, miss, far, far, miss, -miss};
  const Alignment found =
      AlignTimes(ExpectedAt(kTenTimes, 0.5e-4), ClustersOff(kTenTimes, parts), kNarrow);
  for (const double time_ns : kTenTimes) {
    EXPECT_NEAR(found.Correct(time_ns) / time_ns - 1.0, 0.0, 0.15 * GetParam());
  }
}

INSTANTIATE_TEST_SUITE_P(Alignment, RefinementTolerance, testing::Values(1e-4, 2e-4, 4e-4, 8e-4));

// Six of ten are most of them. Were a greater tolerance taken, the others would count as well.
TEST(Alignment, TakesSixOfTenForMostCalibrants) {
  const auto correction_with = [](const std::vector<double>& parts) {
    const Alignment found =
        AlignTimes(ExpectedAt(kTenTimes, 0.02), ClustersOff(kTenTimes, parts), kNarrow);
    return found.Correct(40e3) / 40e3 - 1.0;
  };
  const double far = 3e-4;
  EXPECT_NEAR(correction_with({0, 0, far, far, 0, 0, far, far, 0, 0}), 0.0, 1e-9);
  EXPECT_GT(correction_with({0, far, far, far, 0, 0, far, far, 0, 0}), 0.5e-4);
}

// The curvature brings those of the ends in, which a straight line leaves out.
TEST(Alignment, FollowsACurvatureWhenThereAreSixCalibrants) {
  const auto aligned = [](const std::vector<double>& times_ns) {
    std::vector<Cluster> clusters;
    for (const double time_ns : times_ns) {
      const double x = (time_ns - 40e3) / 20e3;
      clusters.push_back(ClusterAt(time_ns + 1.5 * x * x));
    }
    return AlignTimes(ExpectedAt(times_ns, 0.02), clusters, kNarrow);
  };
  const Alignment curved = aligned({20e3, 28e3, 36e3, 44e3, 52e3, 60e3});
  ASSERT_EQ(curved.correction_ns.size(), 3u);
  EXPECT_NEAR(curved.correction_ns[0], 0.0, 1e-6);
  EXPECT_NEAR(curved.correction_ns[1], 0.0, 1e-6);
  EXPECT_NEAR(curved.correction_ns[2], 1.5, 1e-6);
  EXPECT_EQ(aligned({20e3, 30e3, 40e3, 50e3, 60e3}).correction_ns.size(), 2u);
  EXPECT_EQ(aligned({20e3, 40e3, 60e3}).correction_ns.size(), 2u);
  const std::vector<double> twelve{20e3, 24e3, 28e3, 32e3, 36e3, 38e3,
                                   42e3, 44e3, 48e3, 52e3, 56e3, 60e3};
  EXPECT_EQ(aligned(twelve).correction_ns.size(), 3u);
}

TEST(Alignment, IsNotRefinedByTwoCalibrants) {
  const Alignment two =
      AlignTimes(ExpectedAt({20e3, 60e3}, 0.02), ClustersOff({20e3, 60e3}, {5e-5, 5e-5}), kNarrow);
  EXPECT_EQ(two.matched, 2u);
  EXPECT_EQ(two.Correct(20e3), 20e3);
  EXPECT_NEAR(two.spread, 5e-5, 1e-9);
}

// Which of the calibrants have a cluster 0.5 % behind ('s'), as expected ('e'), both ('b'), none
// ('.').
double CorrectionFor(const std::string& places, const std::vector<double>& times_ns) {
  std::vector<Cluster> clusters;
  for (std::size_t i = 0; i < times_ns.size(); ++i) {
    if (places[i] == 'e' || places[i] == 'b') clusters.push_back(ClusterAt(times_ns[i]));
    if (places[i] == 's' || places[i] == 'b') clusters.push_back(ClusterAt(1.005 * times_ns[i]));
  }
  return AlignTimes(ExpectedAt(times_ns, 0.02), clusters, kNarrow).Correct(40e3) / 40e3 - 1.0;
}

TEST(Alignment, KeepsTheCalibrationInForceUnlessAnotherMatchesClearlyMore) {
  // Seven against six, then eight against six.
  EXPECT_NEAR(CorrectionFor("bbb.sbbe.s", kTenTimes), 0.0, 1e-6);
  EXPECT_NEAR(CorrectionFor("bbb.sbbess", kTenTimes), 0.005, 1e-6);
}

TEST(Alignment, IsDisplacedByThreeOfFiveButNotByLess) {
  EXPECT_NEAR(CorrectionFor("s.s.s", {20e3, 30e3, 41e3, 50e3, 60e3}), 0.005, 1e-6);
  EXPECT_NEAR(CorrectionFor("s.s.s.", {20e3, 30e3, 41e3, 50e3, 60e3, 61e3}), 0.0, 1e-6);
  EXPECT_NEAR(CorrectionFor("s.s", {20e3, 30e3, 60e3}), 0.0, 1e-6);
  EXPECT_NEAR(CorrectionFor("sss", {20e3, 30e3, 60e3}), 0.005, 1e-6);
}

TEST(Alignment, LooksNoFurtherThanTheWindow) {
  const auto correction_within = [](double window) {
    std::vector<Cluster> clusters;
    for (const double time_ns : kTenTimes) clusters.push_back(ClusterAt(1.005 * time_ns));
    return AlignTimes(ExpectedAt(kTenTimes, window), clusters, kNarrow).Correct(40e3) / 40e3 - 1.0;
  };
  EXPECT_NEAR(correction_within(0.00501), 0.005, 1e-6);
  EXPECT_NEAR(correction_within(0.00499), 0.0, 1e-6);
}

// The clusters of a calibrant make proposals by their abundance, the eight greatest of them.
TEST(Alignment, FindsCalibrantsBehindSevenStrongerPeaksEach) {
  const std::vector<double> times_ns{20e3, 30e3, 50e3, 60e3};
  std::vector<Cluster> clusters;
  for (std::size_t i = 0; i < times_ns.size(); ++i) {
    for (int other = 0; other < 7; ++other) {
      // Nowhere near one line.
      const double part = 0.006 + 0.0012 * other + 0.0007 * static_cast<double>(i * i);
      clusters.push_back(ClusterAt(times_ns[i] * (1.0 - part), 9.0, 5'000.0 + other));
    }
    clusters.push_back(ClusterAt(1.004 * times_ns[i], 999.0, 1'000.0));
  }
  const Alignment found = AlignTimes(ExpectedAt(times_ns, 0.02), clusters, kNarrow);
  EXPECT_EQ(found.matched, 4u);
  EXPECT_NEAR(found.Correct(40e3) / 40e3 - 1.0, 0.004, 1e-6);
}

// Of each half of the range the six calibrants with the most abundant peaks make proposals. Here
// five of them are not there, and something else is strong in their windows.
TEST(Alignment, BearsFiveStrongInterferencesInEachHalf) {
  std::vector<double> times_ns;
  for (int i = 0; i < 26; ++i) times_ns.push_back(20e3 + 2e3 * i);
  std::vector<Cluster> clusters;
  for (std::size_t i = 0; i < times_ns.size(); ++i) {
    const std::size_t in_half = i % 13;
    if (in_half % 2 == 1 && in_half < 10) {
      const double part = 0.006 + 0.0017 * static_cast<double>(i * i % 7);
      clusters.push_back(ClusterAt(times_ns[i] * (1.0 - part), 9.0, 5'000.0));
    } else {
      clusters.push_back(ClusterAt(1.004 * times_ns[i]));
    }
  }
  const Alignment found = AlignTimes(ExpectedAt(times_ns, 0.02), clusters, kNarrow);
  EXPECT_EQ(found.matched, 16u);
  EXPECT_NEAR(found.Correct(40e3) / 40e3 - 1.0, 0.004, 1e-6);
}

TEST(Alignment, PrefersTheStrongerOfTwoNearClustersAndTheNearerOfTwoAlike) {
  // Of two clusters a calibrant, one where it is expected and one beside it.
  const auto correction_with = [](double snr_of_the_near_ones, double beside) {
    std::vector<Cluster> clusters;
    for (const double time_ns : kTenTimes) {
      clusters.push_back(ClusterAt(time_ns * (1.0 + std::min(beside, 0.0)),
                                   beside < 0.0 ? 999.0 : snr_of_the_near_ones));
      clusters.push_back(ClusterAt(time_ns * (1.0 + std::max(beside, 0.0)),
                                   beside < 0.0 ? snr_of_the_near_ones : 999.0));
    }
    const auto expected = ExpectedAt(kTenTimes, 0.02);
    return AlignTimes(expected, clusters, kNarrow).Correct(40e3) / 40e3 - 1.0;
  };
  for (const double beside : {0.8e-4, -0.8e-4}) {
    EXPECT_NEAR(correction_with(999.0, beside), 0.0, 1e-9);
    EXPECT_NEAR(correction_with(9.0, beside), beside, 1e-9);
  }
}

TEST(Alignment, TellsTheMedianDistance) {
  const std::vector<double> five{20e3, 30e3, 40e3, 50e3, 60e3};
  // A straight line leaves all of this as it is: it is symmetrical and sums up to nothing.
  const Alignment found = AlignTimes(ExpectedAt(five, 0.02),
                                     ClustersOff(five, {1e-5, -2e-5, 2e-5, -2e-5, 1e-5}), kNarrow);
  EXPECT_EQ(found.matched, 5u);
  EXPECT_NEAR(found.spread, 2e-5, 0.5e-5);
}

}  // namespace
}  // namespace tof::peaks
