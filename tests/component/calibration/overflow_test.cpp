// Arithmetic of the calibration that leaves the doubles, and counters that leave their 16 bits.
#include <limits>
#include <vector>

#include "component/automation/convert.h"
#include "component/calibration/coefficient_verification.h"
#include "component/calibration/likely_a.h"
#include "component/calibration/logging_info.h"
#include "tests/component/error_number_of.h"
#include "tests/support/calibration_fixture.h"

namespace tof {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

constexpr double kLargest = std::numeric_limits<double>::max();

class OverflowingPairing : public fakes::CalibrationFixture {
 protected:
  void Pair(const std::vector<double>& peak_times, const BoundedArray<double>& pair_masses,
            double t0) {
    Instrument parts = Collaborators();
    const auto peaks = instrument.CreatePeakList();
    for (const double time_ns : peak_times) peaks->Add({.position = time_ns});
    const auto n_rows = static_cast<std::int32_t>(pair_masses.size() * peak_times.size());
    table.ReDim(0, n_rows - 1);
    CalibrateProcedureA(parts, table, *peaks, pair_masses, t0);
  }
  CandidateTable table;
};

TEST_F(OverflowingPairing, OfAFlightTimeWhoseSquareIsTooLargeEndsThere) {
  Pair({2000.0, 1e300}, {16.0}, 0.0);
  EXPECT_THAT(host.trace->Texts(), ElementsAre("CalibrateProcedureA.Error[6]"));
  EXPECT_EQ(table(0).a, 2.0) << "what was paired before stays";
  EXPECT_EQ(table(1).a, 0.0);
}

TEST_F(OverflowingPairing, OfADistanceFromT0ThatIsTooLargeEndsThere) {
  Pair({-kLargest}, {16.0}, kLargest);
  EXPECT_THAT(host.trace->Texts(), ElementsAre("CalibrateProcedureA.Error[6]"));
}

// The counter of the peaks passes 32,767 behind the first mass's last pair.
TEST_F(OverflowingPairing, OfMorePeaksThan16BitsCountEndsBehindTheLastThatIsCounted) {
  journal.keep_entries = false;
  Pair(std::vector<double>(32768, 2000.0), {16.0, 64.0}, 0.0);
  EXPECT_THAT(host.trace->Texts(), ElementsAre("CalibrateProcedureA.Error[6]"));
  EXPECT_EQ(table(32767).a, 2.0);
  EXPECT_EQ(table(32768).a, 0.0) << "the next mass";
}

TEST_F(OverflowingPairing, DoesNotHappenWithAsManyPeaksAs16BitsCount) {
  journal.keep_entries = false;
  Pair(std::vector<double>(32767, 2000.0), {16.0, 64.0}, 0.0);
  EXPECT_THAT(host.trace->Texts(), ElementsAre());
  EXPECT_EQ(table(2 * 32767 - 1).a, 4.0);
}

TEST_F(OverflowingPairing, OfMoreMassesThan16BitsCountEndsBehindTheLastThatIsCounted) {
  journal.keep_entries = false;
  Pair({2000.0}, BoundedArray<double>(std::vector<double>(32768, 16.0)), 0.0);
  EXPECT_THAT(host.trace->Texts(), ElementsAre("CalibrateProcedureA.Error[6]"));
  EXPECT_EQ(table(32767).a, 2.0);
}

TEST(OverflowingGoodness, IsAnError) {
  CandidateTable table({{.a = -kLargest}, {.a = kLargest}});
  EXPECT_EQ(ErrorNumberOf([&] { FillGoodness(table); }), 6);
}

class OverflowingEstimate : public fakes::CalibrationFixture {
 protected:
  bool Estimate() {
    Instrument parts = Collaborators();
    double a = 0.0;
    double t0 = 0.0;
    return CalculateLikelyAAndt0Values(parts, host, a, t0, masses);
  }
};

TEST_F(OverflowingEstimate, OfATargetBeyondTheDoublesIsAFaultOfTheEstimate) {
  instrument.in_force = instrument.NewCoefficients(1e306, 300.0);
  EXPECT_FALSE(Estimate());
  EXPECT_THAT(host.trace->Texts(), Contains("CalculateLIkelyAAndt0Values.Error[6]"));
}

TEST_F(OverflowingEstimate, OfAToleranceBeyondTheDoublesIsAFaultOfTheEstimate) {
  instrument.in_force = instrument.NewCoefficients(1e10, 300.0);
  instrument.settings["Calibration/TargetAPercentError"] = 1e300;
  EXPECT_FALSE(Estimate());
  EXPECT_THAT(host.trace->Texts(), Contains("CalculateLIkelyAAndt0Values.Error[6]"));
}

struct LimitsCase {
  const char* name;
  CoefficientLimits limits;
  double a = 1.0;
};

TEST(OverflowingLimits, AreErrors) {
  for (const LimitsCase& row : {
           LimitsCase{"nominal A per us", {.nominal_a = 1e306}},
           LimitsCase{"tolerance of A", {.nominal_a = 1e200, .allowed_a_fraction = 1e200}},
           LimitsCase{"tolerance of A per us", {.nominal_a = 1e150, .allowed_a_fraction = 1e157}},
           LimitsCase{"lower bound of t0", {.nominal_t0_us = -1e200, .allowed_t0_fraction = 1e200}},
           LimitsCase{"upper bound of t0", {.nominal_t0_us = kLargest, .allowed_t0_fraction = 0.5}},
           LimitsCase{"distance of A", {.nominal_a = -1e305}, kLargest},
       }) {
    const CoefficientRecord record{row.a, 250.0};
    EXPECT_EQ(ErrorNumberOf([&] { CoefficientsArePlausible(record, row.limits); }), 6) << row.name;
  }
}

TEST_F(OverflowingEstimate, OfAMassErrorEndsTheDataLog) {
  Instrument parts = Collaborators();
  const auto coefficients = instrument.NewCoefficients(1.0, 0.0);
  MeasuredTimes measured({0, 0}, {0, 0});
  measured(0, 0) = 1e100;  // m/z 1e200, which is more than 1e308 ppm off
  const Variant expected = Variant::DoubleArray({1e-105});
  EXPECT_EQ(ErrorNumberOf([&] {
              WriteCalibrationLoggingInfo(parts, host, coefficients, expected, measured);
            }),
            6);
}

}  // namespace
}  // namespace tof
