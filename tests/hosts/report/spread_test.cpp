#include "hosts/report/spread.h"

#include <gtest/gtest.h>

#include <cmath>

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

TEST(Drift, IsAsUncertainAsTheScatterMakesIt) {
  std::vector<Calibrant> calibrants(1);
  // 1 ppm to and fro of the mean, without any slope.
  calibrants[0].measurements = Measured({10000.01, 9999.99, 9999.99, 10000.01});
  const auto drift = DriftOf(calibrants);
  ASSERT_TRUE(drift);
  EXPECT_NEAR(drift->ppm_per_minute, 0.0, 1e-6);
  // Two degrees of freedom are left; the squares of the times about their mean sum up to 500 s^2.
  EXPECT_NEAR(drift->standard_uncertainty, 60.0 * std::sqrt(4.0 / 2.0 / 500.0), 1e-6);
  EXPECT_EQ(drift->first_seconds, 0.0);
  EXPECT_EQ(drift->last_seconds, 30.0);
}

TEST(Drift, NeedsAMeasurementMoreThanItsLineHasParameters) {
  std::vector<Calibrant> calibrants(1);
  calibrants[0].measurements = Measured({10000.0, 10000.01});
  EXPECT_FALSE(DriftOf(calibrants));
  calibrants[0].measurements = Measured({10000.0, 10000.01, 10000.02});
  EXPECT_TRUE(DriftOf(calibrants));
  // Each calibrant has a mean of its own; a single measurement tells nothing.
  calibrants[0].measurements = Measured({10000.0, 10000.01});
  calibrants.push_back({});
  calibrants[1].measurements = Measured({20000.0});
  EXPECT_FALSE(DriftOf(calibrants));
  calibrants[1].measurements = Measured({20000.0, 20000.02});
  EXPECT_TRUE(DriftOf(calibrants));
}

TEST(Drift, NeedsMeasurementsAtDifferentTimes) {
  std::vector<Calibrant> calibrants(1);
  calibrants[0].measurements = Measured({10000.0, 10000.01, 10000.02, 10000.03});
  for (Measurement& one : calibrants[0].measurements) one.at_seconds = 5.0;
  EXPECT_FALSE(DriftOf(calibrants));
}

TEST(Drift, LeavesMissingPeaksOut) {
  std::vector<Calibrant> calibrants(1);
  calibrants[0].measurements = Measured({10000.0, 10000.01, 55555.0, 10000.03, 10000.04});
  calibrants[0].measurements[2].time_ns.reset();
  const auto drift = DriftOf(calibrants);
  ASSERT_TRUE(drift);
  EXPECT_NEAR(drift->ppm_per_minute, 6.0, 1e-3);
}

TEST(Drift, IsOneLineAsLongAsTheCalibrantsWereMeasuredSideBySide) {
  const auto is_one_line = [](double later) {
    std::vector<Calibrant> calibrants(2);
    calibrants[0].measurements = Measured({10000.0, 10000.01, 10000.02});
    calibrants[1].measurements = Measured({20000.0, 20000.02, 20000.04}, later);
    return DriftOf(calibrants)->is_one_line;
  };
  // A fifth of the whole time, which is 20 s and what one is later than the other.
  EXPECT_TRUE(is_one_line(4.9));
  EXPECT_FALSE(is_one_line(5.1));
}

TEST(Drift, NeedsInstrumentTimes) {
  std::vector<Calibrant> calibrants(1);
  calibrants[0].measurements = Measured({10000.0, 10000.01, 10000.02, 10000.03});
  for (Measurement& one : calibrants[0].measurements) one.at_seconds.reset();
  EXPECT_FALSE(DriftOf(calibrants));
}

}  // namespace
}  // namespace tof::report
