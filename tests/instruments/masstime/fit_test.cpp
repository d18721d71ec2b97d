#include "instruments/masstime/fit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>

#include "tests/instruments/masstime/simulated_calibrants.h"

namespace tof::masstime {
namespace {

using testing::HasSubstr;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr AcquisitionWindow kWindow{12'000.0, 72'000.0};
constexpr MassTimeModel kPlain{{6.5e-4, 300.0}, kWindow};
constexpr MassTimeModel kCurved{{6.5e-4, 300.0, 4e-3, -2e-3, 1e-3, 5e-4, -3e-4, 2e-4}, kWindow};

std::string ErrorOf(const std::vector<double>& masses, const std::vector<double>& times_ns,
                    TermSet terms = 0) {
  try {
    FitTerms({masses, times_ns}, kWindow, terms, Weighting::kRelativeMass);
  } catch (const FitError& error) {
    return error.what();
  }
  return "no error";
}

TEST(Fit, RecoversTheCoefficientsOfAnExactCurve) {
  for (const Weighting weighting :
       {Weighting::kRelativeMass, Weighting::kFlightTime, Weighting::kAbsoluteMass}) {
    const Fit fit = FitTerms(Simulate(kCurved, 12).Get(), kWindow, kAllTerms, weighting);
    EXPECT_NEAR(fit.coefficients[kA], 6.5e-4, 1e-13);
    EXPECT_NEAR(fit.coefficients[kT0], 300.0, 1e-5);
    for (std::size_t k = kFirstTerm; k < fit.coefficients.size(); ++k) {
      EXPECT_NEAR(fit.coefficients[k], kCurved.coefficients[k], 1e-9) << "coefficient " << k;
    }
    EXPECT_LT(fit.max_ppm, 1e-6);
    EXPECT_EQ(fit.terms, kAllTerms);
  }
}

TEST(Fit, FitsTheChosenTermsAndLeavesTheOthersZero) {
  MassTimeModel model = kPlain;
  model.coefficients[kFirstTerm + 1] = -2e-3;
  model.coefficients[kFirstTerm + 3] = 1e-3;
  const Fit fit = FitTerms(Simulate(model, 10).Get(), kWindow, 0b001010, Weighting::kRelativeMass);
  EXPECT_NEAR(fit.coefficients[kFirstTerm + 1], -2e-3, 1e-10);
  EXPECT_NEAR(fit.coefficients[kFirstTerm + 3], 1e-3, 1e-10);
  EXPECT_EQ(fit.coefficients[kFirstTerm], 0.0);
  EXPECT_EQ(fit.coefficients[kFirstTerm + 2], 0.0);
}

TEST(Fit, TermsLeaveAAndT0NearlyWhereTheStraightLinePutsThem) {
  const auto calibrants = Simulate(kCurved, 15);
  const Fit plain = FitTerms(calibrants.Get(), kWindow, 0, Weighting::kFlightTime);
  const Fit full = FitTerms(calibrants.Get(), kWindow, kAllTerms, Weighting::kFlightTime);
  EXPECT_NEAR(plain.coefficients[kA] / full.coefficients[kA], 1.0, 2e-4);
  EXPECT_NEAR(plain.coefficients[kT0], full.coefficients[kT0], 10.0);
}

TEST(Fit, LeaveOneOutEqualsRefittingWithoutEachCalibrant) {
  const auto calibrants = Simulate(kCurved, 14, 3.0);
  for (const TermSet terms : {TermSet{0}, TermSet{0b111}, kAllTerms}) {
    const Fit fit = FitTerms(calibrants.Get(), kWindow, terms, Weighting::kRelativeMass);
    for (std::size_t i = 0; i < calibrants.masses.size(); ++i) {
      auto rest = calibrants;
      rest.masses.erase(rest.masses.begin() + static_cast<std::ptrdiff_t>(i));
      rest.times_ns.erase(rest.times_ns.begin() + static_cast<std::ptrdiff_t>(i));
      const Fit refit = FitTerms(rest.Get(), kWindow, terms, Weighting::kRelativeMass);
      const double mass = calibrants.masses[i];
      const double predicted = TimeToMass({refit.coefficients, kWindow}, calibrants.times_ns[i]);
      const double error_ppm = (predicted - mass) / mass * 1e6;
      EXPECT_NEAR(fit.loo_error_ppm[i], error_ppm, 1e-3 * std::abs(error_ppm) + 1e-6);
    }
  }
}

TEST(Fit, LeveragesAddUpToTheNumberOfCoefficients) {
  const Fit fit =
      FitTerms(Simulate(kCurved, 14, 3.0).Get(), kWindow, 0b111, Weighting::kRelativeMass);
  EXPECT_NEAR(std::accumulate(fit.leverage.begin(), fit.leverage.end(), 0.0), 5.0, 1e-9);
}

TEST(Fit, AsManyCalibrantsAsCoefficientsSayNothingAboutPrediction) {
  const Fit fit = FitTerms(Simulate(kPlain, 2).Get(), kWindow, 0, Weighting::kRelativeMass);
  EXPECT_LT(fit.max_ppm, 1e-6);
  EXPECT_TRUE(std::isnan(fit.loo_rms_ppm));
}

TEST(Fit, WeightingDecidesWhichErrorsAreSmall) {
  auto calibrants = Simulate(kPlain, 8);
  calibrants.times_ns.front() *= 1.0 + 50e-6;
  const auto first_error = [&](Weighting weighting) {
    return std::abs(FitTerms(calibrants.Get(), kWindow, 0, weighting).error_ppm.front());
  };
  EXPECT_LT(first_error(Weighting::kRelativeMass), first_error(Weighting::kFlightTime));
  EXPECT_LT(first_error(Weighting::kFlightTime), first_error(Weighting::kAbsoluteMass));
}

TEST(Fit, ReturnsAnImplausibleButFiniteResult) {
  const Fit fit =
      FitTerms(Calibrants{std::vector<double>{100.0, 400.0}, std::vector<double>{2000.0, 1000.0}},
               kWindow, 0, Weighting::kRelativeMass);
  EXPECT_LT(fit.coefficients[kA], 0.0);
  EXPECT_TRUE(std::isfinite(fit.coefficients[kT0]));
}

TEST(Fit, SaysWhatItCannotFit) {
  EXPECT_THAT(ErrorOf({}, {}), HasSubstr("0 calibrants cannot determine 2 coefficients"));
  EXPECT_THAT(ErrorOf({100.0}, {1000.0}), HasSubstr("1 calibrants cannot"));
  EXPECT_THAT(ErrorOf({1, 2, 3}, {1, 2, 3}, 0b11), HasSubstr("3 calibrants cannot determine 4"));
  EXPECT_THAT(ErrorOf({1, 2, 3}, {1, 2}), HasSubstr("3 masses but 2 flight times"));
  EXPECT_THAT(ErrorOf({1, 2, 2}, {1, 2, 3}), HasSubstr("mass 2 is given twice"));
  EXPECT_THAT(ErrorOf({1, 2, 3}, {1, 5, 5}), HasSubstr("flight time 5 is given twice"));
  EXPECT_THAT(ErrorOf({1, kNaN, 3}, {1, 2, 3}), HasSubstr("of calibrant 1 is not a positive"));
  EXPECT_THAT(ErrorOf({1, 0, 3}, {1, 2, 3}), HasSubstr("mass 0 of calibrant 1"));
  EXPECT_THAT(ErrorOf({1, -4, 3}, {1, 2, 3}), HasSubstr("mass -4 of calibrant 1"));
  EXPECT_THAT(ErrorOf({1, 2, 3}, {1, 2, kNaN}), HasSubstr("flight time of calibrant 2 (mass 3)"));
}

TEST(Fit, SaysThatCalibrantsDoNotDetermineTheTerms) {
  // All beyond the window, where every term is constant.
  EXPECT_THAT(ErrorOf({1, 2, 3, 4}, {80e3, 81e3, 82e3, 83e3}, 0b1),
              HasSubstr("do not determine 3 coefficients (rank 2)"));
}

TEST(Fit, NeedsAWindowForTerms) {
  const auto calibrants = Simulate(kPlain, 8);
  try {
    FitTerms(calibrants.Get(), {5.0, 4.5}, 1, Weighting::kRelativeMass);
    FAIL() << "fitted terms without a window";
  } catch (const FitError& error) {
    EXPECT_STREQ(error.what(), "terms need an acquisition window, not 5 to 4.5 ns");
  }
  EXPECT_THROW(FitTerms(calibrants.Get(), {0.0, 0.0}, 1, Weighting::kRelativeMass), FitError);
  EXPECT_NO_THROW(FitTerms(calibrants.Get(), {0.0, 0.0}, 0, Weighting::kRelativeMass));
}

TEST(FitWithFallback, KeepsTermsThatPredict) {
  const Fit fit = FitWithFallback(Simulate(kCurved, 20, 0.5).Get(), kWindow, kAllTerms,
                                  Weighting::kRelativeMass, Weighting::kRelativeMass);
  EXPECT_EQ(fit.terms, kAllTerms);
}

TEST(FitWithFallback, GivesUpTermsThatPredictWorseThanAAndT0Alone) {
  const auto calibrants = Simulate(kPlain, 9, 20.0);
  const Fit fit = FitWithFallback(calibrants.Get(), kWindow, kAllTerms, Weighting::kRelativeMass,
                                  Weighting::kRelativeMass);
  const Fit plain = FitTerms(calibrants.Get(), kWindow, 0, Weighting::kRelativeMass);
  EXPECT_LT(fit.terms, kAllTerms);
  EXPECT_LE(fit.loo_rms_ppm, plain.loo_rms_ppm);
}

TEST(FitWithFallback, GivesUpTermsThatTooFewCalibrantsCannotDetermine) {
  const Fit fit = FitWithFallback(Simulate(kPlain, 3).Get(), kWindow, kAllTerms,
                                  Weighting::kRelativeMass, Weighting::kRelativeMass);
  EXPECT_EQ(fit.terms, 0U);
}

TEST(FitWithFallback, GivesUpTermsThatAreNotMonotoneOverTheWindow) {
  // A parabola that predicts its calibrants perfectly and turns back before the window ends.
  const MassTimeModel turning{{6.5e-4, 300.0, -10.0}, kWindow};
  ASSERT_FALSE(IsMonotone(turning));
  SimulatedCalibrants calibrants;
  for (double time_ns = 14'000.0; time_ns < 40'000.0; time_ns += 3'000.0) {
    calibrants.times_ns.push_back(time_ns);
    calibrants.masses.push_back(TimeToMass(turning, time_ns));
  }
  const Fit fit = FitWithFallback(calibrants.Get(), kWindow, 0b1, Weighting::kRelativeMass,
                                  Weighting::kRelativeMass);
  EXPECT_EQ(fit.terms, 0U);
}

TEST(FitWithFallback, RefusesAnUnknownWeighting) {
  const auto calibrants = Simulate(kPlain, 8);
  const auto unknown = static_cast<Weighting>(7);
  EXPECT_THROW(FitWithFallback(calibrants.Get(), kWindow, 0, unknown, Weighting::kRelativeMass),
               FitError);
  EXPECT_THROW(FitWithFallback(calibrants.Get(), kWindow, 1, Weighting::kRelativeMass, unknown),
               FitError);
}

}  // namespace
}  // namespace tof::masstime
