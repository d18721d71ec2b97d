#include "instruments/masstime/mass_time_coefficients.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "component/automation/error.h"
#include "tests/instruments/masstime/simulated_calibrants.h"

namespace tof::masstime {
namespace {

constexpr MassTimeModel kModel{{6.5e-4, 300.0, 4e-3, -2e-3}, {12'000.0, 72'000.0}};

CalInfo FullInfo() {
  CalInfo info;
  info.unused0.fill(std::byte{0x5A});
  info.unused36.fill(std::byte{0xA5});
  info.time_ns = 1.25e18;
  info.setpoint119 = -7;
  info.PolyTermPowerUseFlag = 0b11;
  return info;
}

BoundedArray<double> From(const std::vector<double>& values) {
  return BoundedArray<double>(values);
}

TEST(MassTimeCoefficients, ConvertsWithAllCoefficientsWhateverTheFlagSays) {
  MassTimeCoefficients coefficients(kModel, 0.25, CalInfo{});
  EXPECT_EQ(coefficients.TimeToMass(40'000.0), TimeToMass(kModel, 40'000.0));
  EXPECT_NEAR(coefficients.MassToTime(coefficients.TimeToMass(40'000.0)), 40'000.0, 1e-6);
  EXPECT_EQ(coefficients.GetBinWidth(), 0.25);
  EXPECT_EQ(coefficients.GetCoefficientRecord(), kModel.coefficients);
}

TEST(MassTimeCoefficients, FitsTheTermsThatTheFlagNamesAndRecordsThem) {
  const auto calibrants = Simulate(kModel, 12);
  MassTimeCoefficients coefficients({{6e-4, 0.0}, kModel.window}, 0.25, FullInfo());
  coefficients.Calibrate(From(calibrants.masses), From(calibrants.times_ns));
  EXPECT_NEAR(coefficients.GetCoefficientRecord()[kFirstTerm + 1], -2e-3, 1e-9);
  EXPECT_EQ(coefficients.GetCalInfo().PolyTermsFlags, 0b11);
}

TEST(MassTimeCoefficients, ClearsTheTermsOfAnEarlierFitWhenTheFlagIsZero) {
  const auto calibrants = Simulate(kModel, 12);
  MassTimeCoefficients coefficients(kModel, 0.25, CalInfo{});
  coefficients.Calibrate(From(calibrants.masses), From(calibrants.times_ns));
  for (std::size_t k = kFirstTerm; k < 8; ++k) {
    EXPECT_EQ(coefficients.GetCoefficientRecord()[k], 0.0);
  }
  EXPECT_EQ(coefficients.GetCalInfo().PolyTermsFlags, 0);
}

TEST(MassTimeCoefficients, CarriesTheRestOfTheRecordUnchanged) {
  const auto calibrants = Simulate(kModel, 12);
  MassTimeCoefficients coefficients(kModel, 0.25);
  coefficients.SetCalInfo(FullInfo());
  coefficients.Calibrate(From(calibrants.masses), From(calibrants.times_ns));
  CalInfo expected = FullInfo();
  expected.PolyTermsFlags = 0b11;
  EXPECT_EQ(coefficients.GetCalInfo(), expected);
}

TEST(MassTimeCoefficients, StayAsTheyWereWhenNothingCanBeFitted) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  struct Row {
    const char* name;
    std::vector<double> masses;
    std::vector<double> times_ns;
  };
  const Row rows[] = {{"nothing", {}, {}},
                      {"too few", {100.0}, {2e4}},
                      {"NaN time", {100.0, 200.0, 300.0}, {2e4, 3e4, nan}},
                      {"negative mass", {100.0, -200.0, 300.0}, {2e4, 3e4, 4e4}},
                      {"mass twice", {100.0, 100.0, 300.0}, {2e4, 3e4, 4e4}},
                      {"time twice", {100.0, 200.0, 300.0}, {2e4, 3e4, 3e4}}};
  for (const Row& row : rows) {
    MassTimeCoefficients coefficients(kModel, 0.25, FullInfo());
    try {
      coefficients.Calibrate(From(row.masses), From(row.times_ns));
      ADD_FAILURE() << row.name << ": no error";
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.number(), 5) << row.name;
      EXPECT_THAT(error.description(), testing::StartsWith("Calibrate: ")) << row.name;
    }
    EXPECT_EQ(coefficients.GetCoefficientRecord(), kModel.coefficients) << row.name;
    EXPECT_EQ(coefficients.GetCalInfo(), FullInfo()) << row.name;
  }
}

TEST(MassTimeCoefficients, RefuseAWeightingThatDoesNotExist) {
  const auto calibrants = Simulate(kModel, 12);
  CalInfo info;
  info.TradWeighting = 5;
  MassTimeCoefficients coefficients(kModel, 0.25, info);
  EXPECT_THROW(coefficients.Calibrate(From(calibrants.masses), From(calibrants.times_ns)),
               AutomationError);
}

}  // namespace
}  // namespace tof::masstime
