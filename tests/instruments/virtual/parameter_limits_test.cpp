// The last values that a parameter may have.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <ostream>
#include <stdexcept>
#include <string>

#include "instruments/virtual/parameters.h"

namespace tof::virtual_instrument {
namespace {

struct Limit {
  std::string name;   // in the message
  double last_valid;  // the neighbour of which is refused
  double refused;
  std::string expected;  // in the message
  std::function<void(Parameters&, double)> set;
};

void PrintTo(const Limit& row, std::ostream* out) {
  *out << row.name << " of " << row.refused;
}

class ParameterLimits : public testing::TestWithParam<Limit> {};

TEST_P(ParameterLimits, BelongToWhatIsAccepted) {
  Parameters parameters;
  GetParam().set(parameters, GetParam().last_valid);
  EXPECT_NO_THROW(Validate(parameters));
}

TEST_P(ParameterLimits, AreToldToWhoeverPassesThem) {
  Parameters parameters;
  GetParam().set(parameters, GetParam().refused);
  try {
    Validate(parameters);
    FAIL() << "accepted";
  } catch (const std::invalid_argument& error) {
    EXPECT_THAT(error.what(),
                testing::StartsWith("virtual instrument: " + GetParam().name + " is "));
    EXPECT_THAT(error.what(), testing::EndsWith(", expected " + GetParam().expected));
  }
}

constexpr double kLeast = std::numeric_limits<double>::denorm_min();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

double Above(double value) {
  return std::nextafter(value, kInfinity);
}

INSTANTIATE_TEST_SUITE_P(
    All, ParameterLimits,
    testing::Values(
        Limit{"a_sqrt_u_per_ns", kLeast, kInfinity, "a number above 0",
              [](Parameters& p, double v) { p.analyzer.a_sqrt_u_per_ns = v; }},
        Limit{"t0_ns", -1e9, -Above(1e9), "a number from -1000000000 to 1000000000",
              [](Parameters& p, double v) { p.analyzer.t0_ns = v; }},
        Limit{"t0_ns", std::nextafter(72e3, 0.0), 72e3, "a time before the end of the window",
              [](Parameters& p, double v) { p.analyzer.t0_ns = v; }},
        Limit{"curvature_ppm", 1e5, Above(1e5), "a number from -100000 to 100000",
              [](Parameters& p, double v) { p.analyzer.curvature_ppm = v; }},
        Limit{"window_start_us", 0.0, -kLeast, "0 or a number above it",
              [](Parameters& p, double v) { p.acquisition.window_start_us = v; }},
        Limit{"window_end_us", 13.0, 12.0, "a time after window_start_us",
              [](Parameters& p, double v) { p.acquisition.window_end_us = v; }},
        Limit{"bin_ns", 60e3, Above(60e3), "at least one bin in the window",
              [](Parameters& p, double v) { p.acquisition.bin_ns = v; }},
        Limit{"bin_ns", 0x1p-10, 0.9999 * 0x1p-10, "at most 50 million bins in the window",
              [](Parameters& p, double v) {
                p.acquisition.window_end_us = 12.0 + 48.828125;  // 50 million times 2^-10 ns
                p.acquisition.bin_ns = v;
              }},
        Limit{"pulses_per_spectrum", 1.0, 0.0, "1 to 1000000000",
              [](Parameters& p, double v) {
                p.acquisition.pulses_per_spectrum = static_cast<std::int64_t>(v);
              }},
        Limit{"pulses_per_spectrum", 1e9, 1e9 + 1.0, "1 to 1000000000",
              [](Parameters& p, double v) {
                p.acquisition.pulses_per_spectrum = static_cast<std::int64_t>(v);
              }},
        Limit{"dead_time_ns", 0.0, kInfinity, "0 or a number above it",
              [](Parameters& p, double v) { p.detector.dead_time_ns = v; }},
        Limit{"electronic_noise_sd_counts", 0.0, -kLeast, "0 to 1000000000000",
              [](Parameters& p, double v) { p.detector.electronic_noise_sd_counts = v; }},
        Limit{"electronic_noise_sd_counts", 1e12, Above(1e12), "0 to 1000000000000",
              [](Parameters& p, double v) { p.detector.electronic_noise_sd_counts = v; }},
        Limit{"baseline_counts", 1e12, Above(1e12), "a number from -1000000000000 to 1000000000000",
              [](Parameters& p, double v) { p.detector.baseline_counts = v; }},
        Limit{"saturation_counts", kLeast, 0.0, "a number above 0",
              [](Parameters& p, double v) { p.detector.gain_channels[1].saturation_counts = v; }},
        Limit{"saturation_counts", 1e15, Above(1e15), "0 to 1000000000000000",
              [](Parameters& p, double v) { p.detector.gain_channels[1].saturation_counts = v; }},
        Limit{"rate_ppm_per_min", 1e6, Above(1e6), "a number from -1000000 to 1000000",
              [](Parameters& p, double v) { p.drift.rate_ppm_per_min = v; }},
        Limit{"random_walk_ppm_per_sqrt_min", 1e6, Above(1e6), "0 to 1000000",
              [](Parameters& p, double v) { p.drift.random_walk_ppm_per_sqrt_min = v; }},
        Limit{"common_sd", 1.0, Above(1.0), "0 to 1",
              [](Parameters& p, double v) { p.flicker.common_sd = v; }},
        Limit{"own_sd", 1.0, Above(1.0), "0 to 1",
              [](Parameters& p, double v) { p.flicker.own_sd = v; }},
        Limit{"common_correlation", 0.0, -kLeast, "0 or above, and below 1",
              [](Parameters& p, double v) { p.flicker.common_correlation = v; }},
        Limit{"common_correlation", std::nextafter(1.0, 0.0), 1.0, "0 or above, and below 1",
              [](Parameters& p, double v) { p.flicker.common_correlation = v; }},
        Limit{"pole_pairs", 2.0, 1.0, "2 or more",
              [](Parameters& p, double v) { p.rf_guide.pole_pairs = static_cast<int>(v); }},
        Limit{"inscribed_radius_mm", kLeast, 0.0, "a number above 0",
              [](Parameters& p, double v) { p.rf_guide.inscribed_radius_mm = v; }},
        Limit{"relative_ion_radius", kLeast, 0.0, "a number above 0",
              [](Parameters& p, double v) { p.rf_guide.relative_ion_radius = v; }},
        Limit{"transverse_energy_ev", kLeast, 0.0, "a number above 0",
              [](Parameters& p, double v) { p.rf_guide.transverse_energy_ev = v; }},
        Limit{"well_loss_exponent", 0.0, -kLeast, "0 or a number above it",
              [](Parameters& p, double v) { p.rf_guide.well_loss_exponent = v; }},
        Limit{"adiabaticity_cutoff", kLeast, 0.0, "a number above 0",
              [](Parameters& p, double v) { p.rf_guide.adiabaticity_cutoff = v; }},
        Limit{"adiabaticity_cutoff_width", kLeast, 0.0, "a number above 0",
              [](Parameters& p, double v) { p.rf_guide.adiabaticity_cutoff_width = v; }},
        Limit{"time_constant_sec", 0.0, kInfinity, "0 or a number above it",
              [](Parameters& p, double v) { p.settling.time_constant_sec = v; }},
        Limit{"ions_per_pulse", 1e6, Above(1e6), "0 to 1000000",
              [](Parameters& p, double v) { p.calibrants[9].ions_per_pulse = v; }},
        Limit{"mass_u", kLeast, kInfinity, "a number above 0",
              [](Parameters& p, double v) { p.contaminants[4].mass_u = v; }}));

}  // namespace
}  // namespace tof::virtual_instrument
