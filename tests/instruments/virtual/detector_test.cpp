#include "instruments/virtual/detector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>
#include <vector>

#include "instruments/virtual/samplers.h"
#include "tests/instruments/virtual/statistics.h"

namespace tof::virtual_instrument {
namespace {

constexpr TimeBins kBins{1000.0, 0.25, 80};  // 20 ns
constexpr std::size_t kDeadBins = 40;        // 10 ns

double NormalCumulative(double x) {
  return 0.5 * std::erfc(-x / std::numbers::sqrt2);
}

std::vector<double> PeakAt(double center_ns, double sigma_ns, double lambda) {
  std::vector<double> ions(kBins.count);
  AddGaussianPeak(kBins, center_ns, sigma_ns, lambda, ions);
  return ions;
}

std::vector<double> Sum(std::vector<double> left, const std::vector<double>& right) {
  for (std::size_t j = 0; j < left.size(); ++j) left[j] += right[j];
  return left;
}

// The plain way, pulse by pulse and ion by ion: exponential waiting times on the scale of the
// accumulated ions per pulse, then the detector's rule in bins.
std::vector<double> SimulatePulses(const std::vector<double>& ions_per_pulse, int pulses,
                                   std::size_t dead_bins, Random& random) {
  std::vector<double> edges(ions_per_pulse.size());
  std::partial_sum(ions_per_pulse.begin(), ions_per_pulse.end(), edges.begin());
  std::vector<double> recorded(ions_per_pulse.size());
  for (int pulse = 0; pulse < pulses; ++pulse) {
    double passed = -std::log(random.NextUniform());
    std::size_t live_from = 0;
    while (passed < edges.back()) {
      const auto bin = static_cast<std::size_t>(
          std::upper_bound(edges.begin(), edges.end(), passed) - edges.begin());
      if (bin >= live_from) {
        recorded[bin] += 1.0;
        live_from = bin + dead_bins + 1;
      }
      passed -= std::log(random.NextUniform());
    }
  }
  return recorded;
}

TEST(AddGaussianPeak, PutsAllIonsIntoTheBins) {
  const std::vector<double> ions = PeakAt(1010.03, 0.7, 3.0);
  EXPECT_NEAR(std::accumulate(ions.begin(), ions.end(), 0.0), 3.0, 3e-8);
  double moment = 0.0;
  for (std::size_t j = 0; j < ions.size(); ++j) {
    moment += ions[j] * (kBins.start_ns + (static_cast<double>(j) + 0.5) * kBins.width_ns);
  }
  EXPECT_NEAR(moment / 3.0, 1010.03, 1e-5);
}

TEST(AddGaussianPeak, LosesWhatLiesOutsideTheWindow) {
  const std::vector<double> half = PeakAt(1020.0, 0.7, 1.0);
  EXPECT_NEAR(std::accumulate(half.begin(), half.end(), 0.0), 0.5, 1e-8);
  const std::vector<double> before = PeakAt(900.0, 0.7, 1.0);
  const std::vector<double> after = PeakAt(1100.0, 0.7, 1.0);
  EXPECT_EQ(std::accumulate(before.begin(), before.end(), 0.0), 0.0);
  EXPECT_EQ(std::accumulate(after.begin(), after.end(), 0.0), 0.0);
}

TEST(AddGaussianPeak, AddsNothingWithoutAWidth) {
  for (const double sigma_ns : {0.0, -1.0, std::numeric_limits<double>::infinity(),
                                std::numeric_limits<double>::quiet_NaN()}) {
    const std::vector<double> ions = PeakAt(1010.0, sigma_ns, 1.0);
    EXPECT_EQ(std::accumulate(ions.begin(), ions.end(), 0.0), 0.0) << sigma_ns;
  }
}

TEST(ExpectedRecordedIons, OfALonePeakIsTheFirstIonsDistribution) {
  for (const double lambda : {0.01, 0.3, 2.0, 8.0}) {
    const std::vector<double> recorded =
        ExpectedRecordedIons(PeakAt(1010.0, 0.7, lambda), kDeadBins);
    for (std::size_t j = 0; j < kBins.count; ++j) {
      const double left_ns = kBins.start_ns + static_cast<double>(j) * kBins.width_ns;
      const double before = NormalCumulative((left_ns - 1010.0) / 0.7);
      const double behind = NormalCumulative((left_ns + kBins.width_ns - 1010.0) / 0.7);
      EXPECT_NEAR(recorded[j], std::exp(-lambda * before) - std::exp(-lambda * behind), 2e-8);
    }
  }
}

struct DeadTimeCase {
  const char* name;
  std::vector<double> ions_per_pulse;
  std::size_t dead_bins;
};

std::vector<DeadTimeCase> DeadTimeCases() {
  const std::vector<double> strong = PeakAt(1008.0, 0.7, 3.0);
  return {
      {"a lone peak", strong, kDeadBins},
      {"a neighbour inside the dead time", Sum(strong, PeakAt(1014.0, 0.7, 0.5)), kDeadBins},
      {"a neighbour just beyond it", Sum(strong, PeakAt(1018.0, 0.7, 0.5)), kDeadBins},
      {"a dead time shorter than the peak", strong, 4},
      {"no dead time beyond the bin", strong, 0},
  };
}

TEST(ExpectedRecordedIons, IsWhatCountingPulseByPulseGives) {
  constexpr int kPulses = 300'000;
  Random random(21, 0);
  for (const DeadTimeCase& row : DeadTimeCases()) {
    SCOPED_TRACE(row.name);
    std::vector<double> expected = ExpectedRecordedIons(row.ions_per_pulse, row.dead_bins);
    for (double& value : expected) value *= kPulses;
    ExpectChiSquareIsOrdinary(SimulatePulses(row.ions_per_pulse, kPulses, row.dead_bins, random),
                              expected);
  }
}

// Not only the mean: variance and covariance of every two bins are those of pulse-by-pulse
// counting.
TEST(DrawRecordedIons, ScattersAsCountingPulseByPulseDoes) {
  constexpr int kSpectra = 8'000;
  constexpr int kPulses = 50;
  for (const DeadTimeCase& row : DeadTimeCases()) {
    SCOPED_TRACE(row.name);
    // Coarse groups of bins, so that every group has counts: 8 bins are 2 ns.
    constexpr std::size_t kGroup = 8;
    constexpr std::size_t kGroups = kBins.count / kGroup;
    std::vector<std::vector<double>> drawn(kGroups);
    std::vector<std::vector<double>> counted(kGroups);
    Random draw_random(22, 0);
    Random count_random(23, 0);
    std::vector<std::int64_t> recorded(kBins.count);
    for (int spectrum = 0; spectrum < kSpectra; ++spectrum) {
      DrawRecordedIons(row.ions_per_pulse, kPulses, row.dead_bins, draw_random, recorded);
      const std::vector<double> simulated =
          SimulatePulses(row.ions_per_pulse, kPulses, row.dead_bins, count_random);
      for (std::size_t group = 0; group < kGroups; ++group) {
        double sum_drawn = 0.0;
        double sum_counted = 0.0;
        for (std::size_t j = group * kGroup; j < (group + 1) * kGroup; ++j) {
          sum_drawn += static_cast<double>(recorded[j]);
          sum_counted += simulated[j];
        }
        drawn[group].push_back(sum_drawn);
        counted[group].push_back(sum_counted);
      }
    }
    const auto covariance = [&](const std::vector<double>& left, const std::vector<double>& right) {
      const double left_mean = MomentsOf(left).mean;
      const double right_mean = MomentsOf(right).mean;
      double sum = 0.0;
      for (std::size_t i = 0; i < left.size(); ++i) {
        sum += (left[i] - left_mean) * (right[i] - right_mean);
      }
      return sum / (kSpectra - 1);
    };
    int compared = 0;
    for (std::size_t a = 0; a < kGroups; ++a) {
      for (std::size_t b = a; b < kGroups; ++b) {
        // With fewer counts the estimates scatter too much to tell anything.
        if (MomentsOf(drawn[a]).mean < 1.0 || MomentsOf(drawn[b]).mean < 1.0) continue;
        ++compared;
        // Five standard errors of the difference of two estimates.
        const double scale = std::sqrt(MomentsOf(drawn[a]).variance * MomentsOf(drawn[b]).variance);
        EXPECT_NEAR(covariance(drawn[a], drawn[b]), covariance(counted[a], counted[b]),
                    5.0 * scale * 2.0 / std::sqrt(kSpectra))
            << "groups " << a << " and " << b;
      }
    }
    EXPECT_GE(compared, 3);
  }
}

TEST(DrawRecordedIons, OfALonePeakIsMultinomial) {
  constexpr int kSpectra = 40'000;
  constexpr std::int64_t kPulses = 1000;
  const std::vector<double> ions = PeakAt(1010.0, 0.7, 1.0);
  const std::vector<double> p = ExpectedRecordedIons(ions, kDeadBins);
  const std::size_t left = 38;  // the two steep bins next to the top
  const std::size_t right = 41;
  std::vector<double> left_counts;
  std::vector<double> right_counts;
  std::vector<double> both_counts;
  std::vector<std::int64_t> recorded(kBins.count);
  Random random(24, 0);
  for (int i = 0; i < kSpectra; ++i) {
    DrawRecordedIons(ions, kPulses, kDeadBins, random, recorded);
    left_counts.push_back(static_cast<double>(recorded[left]));
    right_counts.push_back(static_cast<double>(recorded[right]));
    both_counts.push_back(left_counts.back() + right_counts.back());
  }
  const double tolerance = 4.0 * std::sqrt(2.0 / kSpectra);
  const double n = kPulses;
  EXPECT_NEAR(MomentsOf(left_counts).variance / (n * p[left] * (1.0 - p[left])), 1.0, tolerance);
  EXPECT_NEAR(MomentsOf(right_counts).variance / (n * p[right] * (1.0 - p[right])), 1.0, tolerance);
  const double both = p[left] + p[right];
  // A Poisson detector would give n * both here, 18 % more.
  EXPECT_NEAR(MomentsOf(both_counts).variance / (n * both * (1.0 - both)), 1.0, tolerance);
}

TEST(DrawRecordedIons, NeverRecordsMoreThanOneIonOfAPeakInAPulse) {
  std::vector<std::int64_t> recorded(kBins.count);
  Random random(25, 0);
  DrawRecordedIons(PeakAt(1010.0, 0.7, 50.0), 1000, kDeadBins, random, recorded);
  EXPECT_EQ(std::accumulate(recorded.begin(), recorded.end(), std::int64_t{0}), 1000);
}

}  // namespace
}  // namespace tof::virtual_instrument
