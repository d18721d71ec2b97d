#include "instruments/virtual/truth.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <vector>

#include "instruments/virtual/flight_time.h"
#include "instruments/virtual/random.h"
#include "instruments/virtual/samplers.h"

namespace tof::virtual_instrument {
namespace {

constexpr double kLongDeadTime = 100.0;  // sigmas

// Reads masses by the built-in instrument's law, stretched in mass by `ppm`.
TimeToMass TrueLaw(double ppm = 0.0) {
  return [ppm](double flight_time_ns) {
    const double root = 0.00065 * (flight_time_ns - 300.0);
    return root * root * (1.0 + 1e-6 * ppm);
  };
}

std::vector<double> CalibrantMasses() {
  std::vector<double> masses;
  for (const Species& species : BuiltInCalibrants()) masses.push_back(species.mass_u);
  return masses;
}

TEST(Summarize, SplitsTheRmsIntoCommonAndMassDependentPart) {
  const std::vector<double> errors{1.0, 3.0, -7.0, 5.0};
  const ErrorFigures figures = Summarize(errors);
  EXPECT_DOUBLE_EQ(figures.common_ppm, 0.5);
  EXPECT_DOUBLE_EQ(figures.rms_ppm, std::sqrt(84.0 / 4.0));
  EXPECT_DOUBLE_EQ(figures.mass_dependent_ppm, std::sqrt(84.0 / 4.0 - 0.25));
  EXPECT_EQ(figures.max_ppm, 7.0);
}

TEST(Summarize, OfNothingIsZero) {
  EXPECT_EQ(Summarize({}).rms_ppm, 0.0);
}

TEST(CheckMasses, AreEquallySpacedInTheLogarithm) {
  const std::vector<double> masses = CheckMasses(100.0, 1600.0, 5);
  ASSERT_EQ(masses.size(), 5U);
  for (std::size_t i = 0; i < masses.size(); ++i) {
    EXPECT_NEAR(masses[i], 100.0 * std::pow(2.0, static_cast<double>(i)), 1e-9);
  }
}

// At a resolving power of 20,000 an m/z ppm is 1 / 21.23 of a peak's sigma.
TEST(DeadTimeShift, IsTheTabulatedOneInMassPpm) {
  constexpr double kPpmPerSigma = 1e6 / kFwhmPerSigma / 20'000.0;
  const auto shift_ppm = [&](double lambda) {
    return kPpmPerSigma * DeadTimeShiftSigmas(lambda, kLongDeadTime);
  };
  EXPECT_NEAR(shift_ppm(0.01), -0.06, 0.005);
  EXPECT_NEAR(shift_ppm(0.04), -0.24, 0.005);
  EXPECT_NEAR(shift_ppm(0.08), -0.48, 0.005);
  EXPECT_NEAR(shift_ppm(0.3), -1.8, 0.05);
  EXPECT_NEAR(shift_ppm(1.0), -5.9, 0.05);
  EXPECT_NEAR(shift_ppm(3.0), -16.0, 0.5);
  EXPECT_NEAR(shift_ppm(8.0), -29.0, 0.5);
}

TEST(DeadTimeShift, OfAWeakPeakIsTheFirstTermOfItsSeries) {
  constexpr double kInverseTwoRootPi = 0.28209479177387814;
  for (const double lambda : {1e-6, 1e-4, 1e-3}) {
    EXPECT_NEAR(DeadTimeShiftSigmas(lambda, kLongDeadTime) / (-kInverseTwoRootPi * lambda), 1.0,
                1e-3);
  }
  EXPECT_EQ(DeadTimeShiftSigmas(0.0, kLongDeadTime), 0.0);
}

// Integrates f exp(-lambda F) directly, finely and by Simpson's rule.
TEST(DeadTimeShift, AgreesWithTheRecordedDensity) {
  constexpr int kIntervals = 4000;
  for (const double lambda : {0.05, 1.0, 20.0}) {
    double sum = 0.0;
    double moment = 0.0;
    for (int i = 0; i <= kIntervals; ++i) {
      const double x = -8.0 + 16.0 * i / kIntervals;
      const double weight = i == 0 || i == kIntervals ? 1.0 : (i % 2 == 1 ? 4.0 : 2.0);
      const double density =
          weight * std::exp(-0.5 * x * x - 0.5 * lambda * std::erfc(-x / std::sqrt(2.0)));
      sum += density;
      moment += density * x;
    }
    EXPECT_NEAR(DeadTimeShiftSigmas(lambda, kLongDeadTime), moment / sum, 1e-6) << lambda;
  }
}

TEST(DeadTimeShift, ShrinksWithADeadTimeShorterThanThePeak) {
  const double full = DeadTimeShiftSigmas(1.0, kLongDeadTime);
  EXPECT_NEAR(DeadTimeShiftSigmas(1.0, 12.0), full, 1e-9);
  EXPECT_GT(DeadTimeShiftSigmas(1.0, 1.0), 0.8 * full);
  EXPECT_NEAR(DeadTimeShiftSigmas(1.0, 0.0), 0.0, 0.01);
}

TEST(ExpectedTime, IsTheFlightTimeForAWeakPeakAndEarlierForAStrongOne) {
  const Parameters parameters;
  const double true_ns = FlightTimeNs(parameters, 500.0, 3.0);
  EXPECT_EQ(ExpectedTimeNs(parameters, 500.0, 0.0, 3.0), true_ns);
  EXPECT_NEAR(ExpectedTimeNs(parameters, 500.0, 1.0, 3.0), true_ns * (1.0 - 2.95e-6),
              0.05e-6 * true_ns);
}

TEST(IonsPerPulse, UndoesTheLossOfTheDeadTime) {
  EXPECT_NEAR(IonsPerPulseOf(10'000.0 * (1.0 - std::exp(-2.5)), 10'000), 2.5, 1e-12);
  EXPECT_EQ(IonsPerPulseOf(10'000.0, 10'000), std::numeric_limits<double>::infinity());
}

TEST(Errors, OfTheTrueLawAreTheDeadTimeShift) {
  const Parameters parameters;
  const std::vector<double> masses{500.0};
  const ErrorFigures at = ErrorsAt(parameters, TrueLaw(), masses, 0.08, 0.0);
  EXPECT_NEAR(at.common_ppm, DeadTimeShiftPpm(parameters, 500.0, 0.08), 1e-6);
  EXPECT_NEAR(ErrorsAt(parameters, TrueLaw(), masses, 0.0, 0.0).rms_ppm, 0.0, 1e-8);
}

TEST(Errors, ShowADriftSinceTheCalibration) {
  const std::vector<double> masses = CheckMasses(91.0, 1791.0, 50);
  const ErrorFigures figures = ErrorsAt(Parameters(), TrueLaw(), masses, 0.0, 2.0);
  EXPECT_NEAR(figures.common_ppm, 2.0, 1e-4);
  EXPECT_NEAR(figures.mass_dependent_ppm, 0.0, 1e-4);
}

TEST(Errors, InTheBandSpreadAsAUniformLambdaDoes) {
  const Parameters parameters;
  const std::vector<double> masses{500.0};
  const double low = DeadTimeShiftPpm(parameters, 500.0, 0.04);
  const double high = DeadTimeShiftPpm(parameters, 500.0, 0.08);
  const ErrorFigures band = ErrorsInBand(parameters, TrueLaw(), masses, 0.04, 0.08, 0.0);
  EXPECT_NEAR(band.common_ppm, 0.5 * (low + high), 1e-3);
  EXPECT_NEAR(band.mass_dependent_ppm, (low - high) / std::sqrt(12.0), 1e-3);
  EXPECT_LT(band.max_ppm, -high);
}

TEST(Errors, OfWeakPeaksAreTheShiftThatACalibrationAbsorbed) {
  const Parameters parameters;
  const std::vector<double> masses = CheckMasses(300.0, 1791.0, 50);
  const double absorbed_ppm = DeadTimeShiftPpm(parameters, 700.0, 0.08);
  const ErrorFigures weak = ErrorsAt(parameters, TrueLaw(-absorbed_ppm), masses, 1e-6, 0.0);
  const double predicted_ppm = PredictedWeakOffsetPpm(parameters, 700.0, 0.08);
  EXPECT_NEAR(predicted_ppm, 0.48, 0.02);
  EXPECT_NEAR(weak.common_ppm, predicted_ppm, 1e-3);
}

TEST(StatisticalLimit, OfTwoCalibrantsOfOneMassIsRefused) {
  const std::vector<CalibrantStatistics> same{{500.0, 34'700.0, 1e4}, {500.0, 34'700.0, 1e4}};
  const std::vector<double> check{400.0};
  try {
    StatisticalLimitPpm({}, same, check);
    FAIL() << "accepted";
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(), "statistical limit: expected two calibrants of different mass");
  }
  EXPECT_THROW(StatisticalLimitPpm({}, {}, check), std::invalid_argument);
}

TEST(StatisticalLimit, HalvesWithFourTimesTheIons) {
  std::vector<CalibrantStatistics> calibrants;
  for (const double mass_u : CalibrantMasses()) {
    calibrants.push_back({mass_u, FlightTimeNs(Parameters(), mass_u, 0.0), 5000.0});
  }
  const std::vector<double> check = CheckMasses(91.0, 1791.0, 50);
  const double limit = StatisticalLimitPpm({}, calibrants, check);
  for (CalibrantStatistics& calibrant : calibrants) calibrant.recorded_ions *= 4.0;
  EXPECT_NEAR(StatisticalLimitPpm({}, calibrants, check), 0.5 * limit, 1e-12);
}

// sqrt(m) = slope t + offset with residuals over sqrt(m), by the normal equations.
TimeToMass FitOf(const std::vector<double>& times_ns, const std::vector<double>& masses_u) {
  double tt = 0.0;
  double t1 = 0.0;
  double ones = 0.0;
  double ty = 0.0;
  double y1 = 0.0;
  for (std::size_t i = 0; i < times_ns.size(); ++i) {
    const double root = std::sqrt(masses_u[i]);
    const double t = (times_ns[i] - 30'000.0) / root;  // centred, for the sums' sake
    const double one = 1.0 / root;
    tt += t * t;
    t1 += t * one;
    ones += one * one;
    ty += t;
    y1 += one;
  }
  const double determinant = tt * ones - t1 * t1;
  const double slope = (ones * ty - t1 * y1) / determinant;
  const double offset = (tt * y1 - t1 * ty) / determinant;
  return [slope, offset](double flight_time_ns) {
    const double root = slope * (flight_time_ns - 30'000.0) + offset;
    return root * root;
  };
}

TEST(StatisticalLimit, IsWhatFitsToScatteredCentroidsReach) {
  constexpr int kFits = 4000;
  constexpr double kIons = 5000.0;
  const Parameters parameters;
  const std::vector<double> masses = CalibrantMasses();
  const std::vector<double> check = CheckMasses(91.0, 1791.0, 40);
  std::vector<CalibrantStatistics> calibrants;
  for (const double mass_u : masses) {
    calibrants.push_back({mass_u, FlightTimeNs(parameters, mass_u, 0.0), kIons});
  }
  const double limit = StatisticalLimitPpm(parameters.analyzer, calibrants, check);
  Random random(31, 0);
  const NormalSampler normal;
  double sum_of_squares = 0.0;
  for (int fit = 0; fit < kFits; ++fit) {
    std::vector<double> times;
    for (const CalibrantStatistics& calibrant : calibrants) {
      const double sigma_ns = PeakSigmaNs(parameters.analyzer, calibrant.flight_time_ns);
      times.push_back(calibrant.flight_time_ns + sigma_ns / std::sqrt(kIons) * normal(random));
    }
    const double rms = ErrorsAt(parameters, FitOf(times, masses), check, 0.0, 0.0).rms_ppm;
    sum_of_squares += rms * rms;
  }
  EXPECT_NEAR(std::sqrt(sum_of_squares / kFits) / limit, 1.0, 0.03);
}

}  // namespace
}  // namespace tof::virtual_instrument
