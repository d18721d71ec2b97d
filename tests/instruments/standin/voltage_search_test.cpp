#include "instruments/standin/voltage_search.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "tests/component/error_number_of.h"

namespace tof::standin {
namespace {

constexpr AbundanceBand kBand{100'000.0, 200'000.0};
constexpr VoltageRange kRange{.low_volts = 20.0, .high_volts = 160.0};

bool InBand(double abundance) {
  return abundance >= kBand.minimum && abundance <= kBand.maximum;
}

// Abundance against voltage that rises at one voltage and falls at another, each within `width`.
struct Hill {
  double top = 0.0;
  double rises_at = 0.0;
  double falls_at = 0.0;
  double width = 3.0;
  double operator()(double volts) const {
    return top / (1.0 + std::exp((rises_at - volts) / width)) /
           (1.0 + std::exp((volts - falls_at) / width));
  }
};

struct Row {
  const char* name;
  Hill hill;
};

class VoltageSearch : public testing::TestWithParam<Row> {};

TEST_P(VoltageSearch, EndsInTheBand) {
  const Hill& hill = GetParam().hill;
  const double volts = FindVoltageInBand(hill, kBand, kRange);
  EXPECT_TRUE(InBand(hill(volts))) << volts << " V: " << hill(volts);
}

INSTANTIATE_TEST_SUITE_P(Hills, VoltageSearch,
                         testing::Values(Row{"RisesInTheRange", {2e6, 60.0, 1e4}},
                                         Row{"RisesSteeply", {2e6, 60.0, 1e4, 0.4}},
                                         Row{"RisesAtTheLowEnd", {2e6, 28.0, 1e4}},
                                         Row{"FallsInTheRange", {2e6, -100.0, 110.0}},
                                         Row{"IsOverAtHighVoltages", {2e6, 50.0, 100.0}},
                                         Row{"IsNarrowerThanACoarseStep", {2e6, 62.0, 78.0, 1.5}},
                                         Row{"HardlyReachesTheBand", {1.5e5, 60.0, 1e4}},
                                         Row{"IsInTheBandEverywhere", {1.5e5, -100.0, 1e4}}),
                         [](const testing::TestParamInfo<Row>& row) { return row.param.name; });

TEST(VoltageSearchLimits, TakesTheGreatestAbundanceBelowTheBand) {
  const Hill hill{9e4, 60.0, 120.0};
  EXPECT_NEAR(FindVoltageInBand(hill, kBand, kRange), 90.0, 10.0);
}

TEST(VoltageSearchLimits, TakesTheSmallestAbundanceAboveTheBand) {
  const Hill hill{2e6, -100.0, 160.0, 30.0};
  EXPECT_EQ(FindVoltageInBand(hill, kBand, kRange), 160.0);
}

TEST(VoltageSearchLimits, TakesTheNearerSideOfAStep) {
  const auto step = [](double volts) { return volts < 71.3 ? 9e4 : 5e6; };
  EXPECT_NEAR(FindVoltageInBand(step, kBand, kRange), 71.3, 0.1);
  EXPECT_EQ(step(FindVoltageInBand(step, kBand, kRange)), 9e4);
}

TEST(VoltageSearchLimits, StopsDividingAtThePrecision) {
  int readings = 0;
  const auto step = [&readings](double volts) {
    ++readings;
    return volts < 71.3 ? 0.0 : 5e6;
  };
  FindVoltageInBand(step, kBand, kRange);
  // 20, 40, ... 160 V, then 20 V divided down to 0.08 V.
  EXPECT_EQ(readings, 8 + 8);
}

TEST(VoltageSearchLimits, EndsWhateverTheRange) {
  int readings = 0;
  const auto step = [&readings](double volts) {
    ++readings;
    return volts < 7e13 ? 0.0 : 5e6;
  };
  FindVoltageInBand(step, kBand, {.low_volts = -1e14, .high_volts = 1e14});
  EXPECT_LT(readings, 130);
}

TEST(VoltageSearchLimits, DoesNotStopWhereNoiseWouldLeaveTheBand) {
  std::vector<double> read;
  const auto hill = [&read](double volts) {
    read.push_back(Hill{2e6, 60.0, 1e4}(volts));
    return read.back();
  };
  FindVoltageInBand(hill, kBand, kRange);
  EXPECT_GE(read.back(), 1.15 * kBand.minimum);
  EXPECT_LE(read.back(), 0.87 * kBand.maximum);
}

TEST(VoltageSearchLimits, RefusesWhatCannotBeSearched) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  int readings = 0;
  const auto refused = [&readings](const AbundanceBand& band, const VoltageRange& range) {
    const auto count = [&readings](double) { return ++readings; };
    return ErrorNumberOf([&] { FindVoltageInBand(count, band, range); }) == 5;
  };
  EXPECT_TRUE(refused({2e5, 1e5}, kRange));
  EXPECT_TRUE(refused({0.0, 1e5}, kRange));
  EXPECT_TRUE(refused({nan, 1e5}, kRange));
  EXPECT_TRUE(refused({1e5, infinity}, kRange));
  EXPECT_TRUE(refused(kBand, {.low_volts = 160.0, .high_volts = 20.0}));
  EXPECT_TRUE(refused(kBand, {.low_volts = 20.0, .high_volts = infinity}));
  EXPECT_TRUE(refused(kBand, {.low_volts = nan, .high_volts = 20.0}));
  EXPECT_TRUE(refused(kBand, {.low_volts = 20.0, .high_volts = 160.0, .coarse_step_volts = -20.0}));
  EXPECT_TRUE(refused(kBand, {.low_volts = 20.0, .high_volts = 160.0, .precision_volts = 0.0}));
  EXPECT_EQ(readings, 0);
}

}  // namespace
}  // namespace tof::standin
