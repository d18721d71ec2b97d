#include "instruments/virtual/parameters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace tof::virtual_instrument {
namespace {

using testing::HasSubstr;

TEST(Parameters, OfTheBuiltInInstrumentAreValid) {
  EXPECT_NO_THROW(Validate(Parameters()));
}

TEST(Parameters, BuiltInCalibrantsAreTenClustersInAscendingMass) {
  const std::vector<Species> calibrants = BuiltInCalibrants();
  ASSERT_EQ(calibrants.size(), 10U);
  for (std::size_t i = 1; i < calibrants.size(); ++i) {
    EXPECT_GT(calibrants[i].mass_u, calibrants[i - 1].mass_u);
  }
}

TEST(Parameters, ContaminantsHaveTheirListedMasses) {
  const std::vector<Species> contaminants = BuiltInContaminants();
  ASSERT_EQ(contaminants.size(), 5U);
  EXPECT_NEAR(contaminants[0].mass_u, 149.02332, 5e-6);
  EXPECT_NEAR(contaminants[1].mass_u, 279.15909, 5e-6);
  EXPECT_NEAR(contaminants[2].mass_u, 371.10123, 5e-6);
  EXPECT_NEAR(contaminants[3].mass_u, 391.28429, 5e-6);
  EXPECT_NEAR(contaminants[4].mass_u, 413.26623, 5e-6);
}

struct BadParameter {
  std::string name;  // in the message
  std::function<void(Parameters&)> spoil;
};

void PrintTo(const BadParameter& row, std::ostream* out) {
  *out << row.name;
}

class BadParameters : public testing::TestWithParam<BadParameter> {};

TEST_P(BadParameters, AreRefusedByName) {
  Parameters parameters;
  GetParam().spoil(parameters);
  try {
    Validate(parameters);
    FAIL() << "accepted";
  } catch (const std::invalid_argument& error) {
    EXPECT_THAT(error.what(), HasSubstr(GetParam().name));
    EXPECT_THAT(error.what(), HasSubstr("expected"));
  }
}

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

INSTANTIATE_TEST_SUITE_P(
    All, BadParameters,
    testing::Values(
        BadParameter{"a_sqrt_u_per_ns", [](Parameters& p) { p.analyzer.a_sqrt_u_per_ns = 0.0; }},
        BadParameter{"t0_ns", [](Parameters& p) { p.analyzer.t0_ns = kNan; }},
        BadParameter{"t0_ns", [](Parameters& p) { p.analyzer.t0_ns = 72'000.0; }},
        BadParameter{"curvature_ppm", [](Parameters& p) { p.analyzer.curvature_ppm = 1e6; }},
        BadParameter{"resolving_power", [](Parameters& p) { p.analyzer.resolving_power = -3.0; }},
        BadParameter{"window_start_us",
                     [](Parameters& p) { p.acquisition.window_start_us = -1.0; }},
        BadParameter{"window_end_us", [](Parameters& p) { p.acquisition.window_end_us = 12.0; }},
        BadParameter{"bin_ns", [](Parameters& p) { p.acquisition.bin_ns = 0.0; }},
        BadParameter{"bin_ns", [](Parameters& p) { p.acquisition.bin_ns = 1e-6; }},
        BadParameter{"bin_ns", [](Parameters& p) { p.acquisition.bin_ns = 1e6; }},
        BadParameter{"pulses_per_spectrum",
                     [](Parameters& p) { p.acquisition.pulses_per_spectrum = 0; }},
        BadParameter{"spectrum_duration_sec",
                     [](Parameters& p) { p.acquisition.spectrum_duration_sec = 0.0; }},
        BadParameter{"dead_time_ns", [](Parameters& p) { p.detector.dead_time_ns = -1.0; }},
        BadParameter{"electronic_noise_sd_counts",
                     [](Parameters& p) { p.detector.electronic_noise_sd_counts = -1.0; }},
        BadParameter{"baseline_counts", [](Parameters& p) { p.detector.baseline_counts = kNan; }},
        BadParameter{"gain channels", [](Parameters& p) { p.detector.gain_channels.clear(); }},
        BadParameter{"counts_per_ion",
                     [](Parameters& p) { p.detector.gain_channels[1].counts_per_ion = 0.0; }},
        BadParameter{"saturation_counts",
                     [](Parameters& p) { p.detector.gain_channels[0].saturation_counts = 0.0; }},
        BadParameter{"rate_ppm_per_min", [](Parameters& p) { p.drift.rate_ppm_per_min = kNan; }},
        BadParameter{"random_walk_ppm_per_sqrt_min",
                     [](Parameters& p) { p.drift.random_walk_ppm_per_sqrt_min = -0.1; }},
        BadParameter{"common_sd", [](Parameters& p) { p.flicker.common_sd = -0.1; }},
        BadParameter{"common_correlation",
                     [](Parameters& p) { p.flicker.common_correlation = 1.0; }},
        BadParameter{"own_sd", [](Parameters& p) { p.flicker.own_sd = -0.1; }},
        BadParameter{"pole_pairs", [](Parameters& p) { p.rf_guide.pole_pairs = 1; }},
        BadParameter{"frequency_hz", [](Parameters& p) { p.rf_guide.frequency_hz = 0.0; }},
        BadParameter{"time_constant_sec",
                     [](Parameters& p) { p.settling.time_constant_sec = -1.0; }},
        BadParameter{"mass_u", [](Parameters& p) { p.calibrants[0].mass_u = 0.0; }},
        BadParameter{"ions_per_pulse",
                     [](Parameters& p) { p.contaminants[0].ions_per_pulse = -1.0; }}));

TEST(Parameters, OfADetectorWithoutGainChannelsAreRefused) {
  Parameters parameters;
  parameters.detector.gain_channels.clear();
  try {
    Validate(parameters);
    FAIL() << "accepted";
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(),
                 "virtual instrument: number of gain channels is 0, expected at least 1");
  }
}

// Sodium formate, (HCOONa)n Na+.
TEST(Parameters, BuiltInCalibrantsHaveTheirFormulasAndRates) {
  const std::vector<std::pair<int, double>> expected{
      {1, 3.277},  {2, 1.517},  {3, 3.239},  {5, 9.003},  {7, 5.724},
      {10, 2.337}, {13, 1.956}, {17, 1.828}, {21, 1.489}, {26, 1.703}};
  const std::vector<Species> calibrants = BuiltInCalibrants();
  ASSERT_EQ(calibrants.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const auto [n, rate] = expected[i];
    EXPECT_EQ(calibrants[i].composition,
              (Composition{{"C", n}, {"H", n}, {"O", 2 * n}, {"Na", n + 1}}));
    EXPECT_EQ(calibrants[i].ions_per_pulse, rate);
  }
}

TEST(Parameters, ContaminantsAreFewAgainstTheCalibrants) {
  std::vector<double> rates;
  for (const Species& species : BuiltInContaminants()) rates.push_back(species.ions_per_pulse);
  EXPECT_THAT(rates, testing::ElementsAre(0.02, 0.03, 0.02, 0.04, 0.03));
}

}  // namespace
}  // namespace tof::virtual_instrument
