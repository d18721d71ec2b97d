#include "instruments/masstime/mass_time_model.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace tof::masstime {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

MassTimeModel PlainModel() {
  return {{6.5e-4, 300.0}, {12'000.0, 72'000.0}};
}

MassTimeModel CurvedModel() {
  return {{6.5e-4, 300.0, 4e-3, -2e-3, 1e-3, 5e-4, -3e-4, 2e-4}, {12'000.0, 72'000.0}};
}

TEST(MassTimeModel, GivesTheSquareOfATimesTheTimeSinceT0) {
  const double root = 6.5e-4 * (40'000.0 - 300.0);
  EXPECT_DOUBLE_EQ(TimeToMass(PlainModel(), 40'000.0), root * root);
}

TEST(MassTimeModel, TermsAreLegendrePolynomialsOfTheScaledTime) {
  const double x = 0.3;
  const auto terms = LegendreTerms(x);
  EXPECT_NEAR(terms[0], (3 * x * x - 1) / 2, 1e-15);
  EXPECT_NEAR(terms[1], (5 * std::pow(x, 3) - 3 * x) / 2, 1e-15);
  EXPECT_NEAR(terms[2], (35 * std::pow(x, 4) - 30 * x * x + 3) / 8, 1e-15);
  EXPECT_NEAR(terms[3], (63 * std::pow(x, 5) - 70 * std::pow(x, 3) + 15 * x) / 8, 1e-15);
  EXPECT_NEAR(terms[4], (231 * std::pow(x, 6) - 315 * std::pow(x, 4) + 105 * x * x - 5) / 16,
              1e-15);
  EXPECT_NEAR(terms[5],
              (429 * std::pow(x, 7) - 693 * std::pow(x, 5) + 315 * std::pow(x, 3) - 35 * x) / 16,
              1e-15);
}

TEST(MassTimeModel, ScalesTheWindowToMinusOneAndOne) {
  const AcquisitionWindow window{12'000.0, 72'000.0};
  EXPECT_EQ(ScaledTime(window, 12'000.0), -1.0);
  EXPECT_EQ(ScaledTime(window, 42'000.0), 0.0);
  EXPECT_EQ(ScaledTime(window, 72'000.0), 1.0);
  EXPECT_EQ(ScaledTime(window, 90'000.0), 1.0);
  EXPECT_EQ(ScaledTime({0.0, 0.0}, 5.0), 0.0);
}

TEST(MassTimeModel, TimeBeforeT0HasANegativeMass) {
  EXPECT_LT(TimeToMass(PlainModel(), 100.0), 0.0);
  EXPECT_EQ(TimeToMass(PlainModel(), 300.0), 0.0);
  EXPECT_NEAR(MassToTime(PlainModel(), TimeToMass(PlainModel(), 100.0)), 100.0, 1e-9);
}

TEST(MassTimeModel, ComesBackFromMassToTheSameTime) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> time(1'000.0, 90'000.0), term(-4e-3, 4e-3);
  for (int trial = 0; trial < 2'000; ++trial) {
    MassTimeModel model = PlainModel();
    for (std::size_t k = 0; k < kTermCount; ++k) model.coefficients[kFirstTerm + k] = term(random);
    if (!IsMonotone(model)) continue;
    const double time_ns = time(random);
    EXPECT_NEAR(MassToTime(model, TimeToMass(model, time_ns)), time_ns, 1e-9 * time_ns);
  }
}

TEST(MassTimeModel, TermsKeepTheirEdgeValueOutsideTheWindow) {
  const MassTimeModel model = CurvedModel();
  const double beyond = SqrtMass(model, 80'000.0) - SqrtMass(model, 72'000.0);
  EXPECT_NEAR(beyond, 6.5e-4 * 8'000.0, 1e-12);
}

TEST(MassTimeModel, CurveThatTurnsBackIsNotMonotoneAndStillInverts) {
  MassTimeModel model = PlainModel();
  model.coefficients[kFirstTerm + 5] = 0.999;
  EXPECT_TRUE(IsMonotone(PlainModel()));
  EXPECT_TRUE(IsMonotone(CurvedModel()));
  model.coefficients[kA] = 1e-6;
  EXPECT_FALSE(IsMonotone(model));
  const double mass = 0.04;
  EXPECT_NEAR(TimeToMass(model, MassToTime(model, mass)), mass, 1e-12);
}

TEST(MassTimeModel, HasNoTimeForWhatIsNotAMassOrNotACalibration) {
  EXPECT_TRUE(std::isnan(MassToTime(PlainModel(), kNaN)));
  EXPECT_TRUE(std::isnan(MassToTime(PlainModel(), kInfinity)));
  EXPECT_TRUE(std::isnan(MassToTime({}, 100.0)));
  MassTimeModel broken = CurvedModel();
  broken.coefficients[kFirstTerm] = kNaN;
  EXPECT_TRUE(std::isnan(MassToTime(broken, 100.0)));
}

}  // namespace
}  // namespace tof::masstime
