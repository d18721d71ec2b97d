#include "hosts/report/abundance_effect.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace tof::report {
namespace {

constexpr double kT0 = 300.0;

// A time whose m/z is `error_ppm` off; `mean_ns` is where the error is 0.
double TimeWith(double mean_ns, double error_ppm) {
  return mean_ns + error_ppm / 1e6 * (mean_ns - kT0) / 2.0;
}

// Two calibrants at 30 abundances over three decades, the error given by `error_ppm` of the decades
// above 1000 counts. Their mean times are not those where the error is 0: constants take that up.
template <class Error>
std::vector<AbundancePoint> Survey(Error error_ppm) {
  std::vector<AbundancePoint> points;
  for (std::size_t m = 0; m < 2; ++m) {
    for (int i = 0; i < 30; ++i) {
      const double decades = 3.0 * i / 29.0;
      points.push_back({m, TimeWith(20000.0 * static_cast<double>(m + 1), error_ppm(decades)),
                        1000.0 * std::pow(10.0, decades)});
    }
  }
  return points;
}

TEST(AbundanceEffect, FindsTheSlopeOfALine) {
  const auto effect =
      AbundanceEffectOf(Survey([](double decades) { return -5.0 * decades; }), 2, kT0);
  ASSERT_EQ(effect.not_measured, "");
  ASSERT_FALSE(effect.slopes.empty());
  EXPECT_EQ(effect.points, 60U);
  EXPECT_EQ(effect.calibrants, 2U);
  for (const AbundanceSlope& slope : effect.slopes) {
    EXPECT_NEAR(slope.ppm_per_decade, -5.0, 1e-3);
    EXPECT_LT(slope.standard_uncertainty, 1e-3);
  }
  EXPECT_NEAR(effect.slopes.back().to_ppm, -15.0, 1e-2);
}

TEST(AbundanceEffect, FollowsABend) {
  const auto effect = AbundanceEffectOf(
      Survey([](double decades) { return decades < 2.0 ? 0.0 : -20.0 * (decades - 2.0); }), 2, kT0);
  ASSERT_GE(effect.slopes.size(), 2U);
  EXPECT_NEAR(effect.slopes.front().ppm_per_decade, 0.0, 1.0);
  EXPECT_NEAR(effect.slopes.back().ppm_per_decade, -20.0, 1.0);
}

// Eight points at least; one that stands at a bend belongs to both parts.
TEST(AbundanceEffect, HasAboutAsManyPointsInEachPart) {
  std::vector<AbundancePoint> points;
  for (int i = 0; i < 40; ++i) {
    const double decades = 3.0 * i / 39.0;
    points.push_back({0, TimeWith(20'000.0, -decades), 1'000.0 * std::pow(10.0, decades)});
  }
  std::vector<std::size_t> in_parts;
  for (const AbundanceSlope& slope : AbundanceEffectOf(points, 1, kT0).slopes) {
    in_parts.push_back(slope.points);
  }
  EXPECT_THAT(in_parts, ::testing::ElementsAre(8, 9, 9, 9, 9));
}

TEST(AbundanceEffect, DoesNotCareWhatTheCoefficientsGetWrong) {
  auto points = Survey([](double decades) { return -5.0 * decades; });
  const double slope = AbundanceEffectOf(points, 2, kT0).slopes.front().ppm_per_decade;
  for (AbundancePoint& point : points) {
    if (point.calibrant == 1) point.time_ns += 3.0;
  }
  EXPECT_NEAR(AbundanceEffectOf(points, 2, kT0).slopes.front().ppm_per_decade, slope, 1e-3);
}

TEST(AbundanceEffect, IsUncertainByItsScatter) {
  int sign = 1;
  const auto effect = AbundanceEffectOf(Survey([&](double decades) {
                                          sign = -sign;
                                          return -5.0 * decades + sign;
                                        }),
                                        2, kT0);
  for (const AbundanceSlope& slope : effect.slopes) {
    EXPECT_GT(slope.standard_uncertainty, 0.1);
    EXPECT_NEAR(slope.ppm_per_decade, -5.0, 5.0 * slope.standard_uncertainty);
  }
}

struct Unmeasurable {
  const char* name;
  std::vector<AbundancePoint> points;
  std::optional<double> t0_ns;
  const char* why;
};

class NotMeasured : public ::testing::TestWithParam<Unmeasurable> {};

TEST_P(NotMeasured, SaysWhy) {
  const auto effect = AbundanceEffectOf(GetParam().points, 2, GetParam().t0_ns);
  EXPECT_THAT(effect.not_measured, ::testing::HasSubstr(GetParam().why));
  EXPECT_TRUE(effect.slopes.empty());
}

INSTANTIATE_TEST_SUITE_P(
    AbundanceEffect, NotMeasured,
    ::testing::Values(
        Unmeasurable{"NoSurvey", {}, kT0, "no survey"},
        Unmeasurable{"NoT0", {{0, 20000.0, 100.0}, {0, 20000.1, 1000.0}}, std::nullopt, "t0"},
        Unmeasurable{"OnePointEach", {{0, 20000.0, 100.0}, {1, 30000.0, 1e5}}, kT0, "two voltages"},
        Unmeasurable{"TooFew", {{0, 20000.0, 100.0}, {0, 20000.1, 1000.0}}, kT0, "too few"},
        Unmeasurable{"OneAbundance",
                     {{0, 20000.0, 100.0}, {0, 20000.1, 100.0}, {0, 20000.2, 101.0}},
                     kT0,
                     "factor of two"}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace tof::report
