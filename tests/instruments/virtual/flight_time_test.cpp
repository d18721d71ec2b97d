#include "instruments/virtual/flight_time.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tof::virtual_instrument {
namespace {

TEST(FlightTime, IsTheTwoTermLawWithoutDriftAndCurvature) {
  EXPECT_DOUBLE_EQ(FlightTimeNs(Parameters(), 400.0, 0.0), 300.0 + 20.0 / 0.00065);
}

TEST(FlightTime, DriftOfTwoMassPpmIsOneTimePpmOfThePath) {
  const Parameters parameters;
  const double still_ns = FlightTimeNs(parameters, 400.0, 0.0);
  const double shift_ns = FlightTimeNs(parameters, 400.0, 2.0) - still_ns;
  EXPECT_NEAR(shift_ns, 1e-6 * (still_ns - parameters.analyzer.t0_ns), 1e-9);
}

TEST(FlightTime, CurvatureReachesItsFullValueAtTheEndOfTheWindowAndAQuarterHalfWay) {
  Parameters parameters;
  const double tau_end_ns = 72'000.0 - parameters.analyzer.t0_ns;
  const double end_root = tau_end_ns * parameters.analyzer.a_sqrt_u_per_ns;
  const auto departure_ppm = [&](double mass_u) {
    parameters.analyzer.curvature_ppm = 0.0;
    const double straight_ns = FlightTimeNs(parameters, mass_u, 0.0);
    parameters.analyzer.curvature_ppm = 40.0;
    const double bent_ns = FlightTimeNs(parameters, mass_u, 0.0);
    return 2e6 * (bent_ns - straight_ns) / (straight_ns - parameters.analyzer.t0_ns);
  };
  EXPECT_NEAR(departure_ppm(end_root * end_root), 40.0, 1e-4);
  EXPECT_NEAR(departure_ppm(0.25 * end_root * end_root), 10.0, 1e-4);
}

TEST(PeakSigma, MakesThePeakAsWideAsTheResolvingPowerSays) {
  const AnalyzerParameters analyzer;
  const double half_width_ns =
      PeakSigmaNs(analyzer, 40'000.0) * std::sqrt(2.0 * std::log(2.0));  // where a Gaussian halves
  EXPECT_NEAR(2.0 * half_width_ns, 1.0, 1e-12);
}

}  // namespace
}  // namespace tof::virtual_instrument
