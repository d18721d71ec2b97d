#include "hosts/report/spread.h"

#include <gtest/gtest.h>

namespace tof::report {
namespace {

// `times_ns` one after the other, ten seconds apart.
std::vector<Measurement> Measured(const std::vector<double>& times_ns, double first_second = 0.0) {
  std::vector<Measurement> measurements;
  for (const double time_ns : times_ns) {
    const auto k = static_cast<std::int32_t>(measurements.size());
    measurements.push_back({k + 1, time_ns, 1000.0, first_second + 10.0 * k});
  }
  return measurements;
}

TEST(Spread, IsMeanAndDeviationOfASample) {
  const Spread spread = SpreadOf(Measured({10000.0, 10002.0, 10001.0}));
  EXPECT_EQ(spread.measurements, 3U);
  EXPECT_DOUBLE_EQ(*spread.mean_ns, 10001.0);
  EXPECT_DOUBLE_EQ(*spread.deviation_ns, 1.0);
}

TEST(Spread, LeavesMissingPeaksOut) {
  auto measurements = Measured({10000.0, 10002.0});
  measurements[0].time_ns.reset();
  const Spread spread = SpreadOf(measurements);
  EXPECT_EQ(spread.measurements, 1U);
  EXPECT_DOUBLE_EQ(*spread.mean_ns, 10002.0);
  EXPECT_FALSE(spread.deviation_ns);
  EXPECT_FALSE(SpreadOf({}).mean_ns);
}

TEST(Spread, ShowsADriftFromTheFirstToTheLast) {
  EXPECT_NEAR(*SpreadOf(Measured({10000.0, 10000.01, 10000.02})).drift_ppm, 2.0, 1e-4);
}

TEST(Drift, IsSharedByCalibrantsWithMeansOfTheirOwn) {
  std::vector<Calibrant> calibrants(2);
  calibrants[0].measurements = Measured({10000.0, 10000.01, 10000.02, 10000.03});
  calibrants[1].measurements = Measured({20000.0, 20000.02, 20000.04, 20000.06});
  const auto drift = DriftOf(calibrants);
  ASSERT_TRUE(drift);
  EXPECT_NEAR(drift->ppm_per_minute, 6.0, 1e-3);  // 1 ppm in ten seconds
  EXPECT_NEAR(drift->standard_uncertainty, 0.0, 1e-3);
  EXPECT_TRUE(drift->is_one_line);
}

TEST(Drift, OfCalibrantsOneAfterTheOtherIsNoSingleLine) {
  std::vector<Calibrant> calibrants(2);
  calibrants[0].measurements = Measured({10000.0, 10000.01, 10000.02});
  calibrants[1].measurements = Measured({20000.0, 20000.02, 20000.04}, 1000.0);
  const auto drift = DriftOf(calibrants);
  ASSERT_TRUE(drift);
  EXPECT_NEAR(drift->ppm_per_minute, 6.0, 1e-3);
  EXPECT_FALSE(drift->is_one_line);
}

TEST(Drift, NeedsInstrumentTimes) {
  std::vector<Calibrant> calibrants(1);
  calibrants[0].measurements = Measured({10000.0, 10000.01, 10000.02, 10000.03});
  for (Measurement& one : calibrants[0].measurements) one.at_seconds.reset();
  EXPECT_FALSE(DriftOf(calibrants));
}

}  // namespace
}  // namespace tof::report
