#include "hosts/drift/analysis.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tof::drift {
namespace {

constexpr std::int64_t kDay = 86'400;
constexpr std::int64_t kLeapDay = 1'709'164'800;  // 2024-02-29 00:00:00

// A mass whose flight time is 10,000 ns and the given ppm, a run each `seconds`.
Instrument InstrumentOf(const std::vector<double>& ppm, std::int64_t seconds) {
  Instrument instrument{"one", {}, ppm.size()};
  for (std::size_t i = 0; i < ppm.size(); ++i) {
    const auto moment = kLeapDay + static_cast<std::int64_t>(i) * seconds;
    instrument.series[4].push_back({moment, 10'000.0 * (1.0 + ppm[i] * 1e-6), 1000.0, 1, 2});
  }
  return instrument;
}

TEST(Analysis, GivesDriftRelativeToTheFirstRun) {
  const InstrumentDrift drift = Analyse(InstrumentOf({0.0, 2.0, -1.0}, kDay), {});
  ASSERT_EQ(drift.masses.size(), 1u);
  const MassDrift& mass = drift.masses[0];
  EXPECT_EQ(mass.mass, 4);
  EXPECT_NEAR(mass.last_ppm, -1.0, 1e-6);
  EXPECT_NEAR(mass.lowest_ppm, -1.0, 1e-6);
  EXPECT_NEAR(mass.highest_ppm, 2.0, 1e-6);
  EXPECT_EQ(drift.first_moment, kLeapDay);
  EXPECT_EQ(drift.last_moment, kLeapDay + 2 * kDay);
  ASSERT_EQ(mass.periods.size(), 3u);
  EXPECT_EQ(mass.periods[1].period, "2024-03-01 00:00:00");
  EXPECT_NEAR(mass.periods[1].drift_ppm, 2.0, 1e-6);
}

TEST(Analysis, MarksAJumpInFlightTime) {
  std::vector<double> ppm(20, 0.0);
  for (std::size_t i = 12; i < 20; ++i) ppm[i] = 40.0;
  const InstrumentDrift drift = Analyse(InstrumentOf(ppm, kDay), {});
  ASSERT_EQ(drift.jumps.size(), 1u);
  EXPECT_EQ(drift.jumps[0].before, kLeapDay + 11 * kDay);
  EXPECT_EQ(drift.jumps[0].moment, kLeapDay + 12 * kDay);
  EXPECT_EQ(drift.jumps[0].quantity, Quantity::kFlightTime);
  EXPECT_NEAR(drift.jumps[0].step, 40.0, 1e-6);
  EXPECT_EQ(drift.masses[0].periods[11].jumps, 0u);
  EXPECT_EQ(drift.masses[0].periods[12].jumps, 1u);
}

TEST(Analysis, MarksAJumpInAbundance) {
  Instrument instrument = InstrumentOf(std::vector<double>(20, 0.0), kDay);
  for (std::size_t i = 5; i < 20; ++i) instrument.series[4][i].abundance = 400.0;
  const InstrumentDrift drift = Analyse(instrument, {});
  ASSERT_EQ(drift.jumps.size(), 1u);
  EXPECT_EQ(drift.jumps[0].quantity, Quantity::kAbundance);
  EXPECT_NEAR(drift.jumps[0].step, -60.0, 1e-9);
}

TEST(Analysis, BearsAnAbundanceOfZero) {
  Instrument instrument = InstrumentOf({0.0, 0.0, 0.0}, kDay);
  instrument.series[4][1].abundance = 0.0;
  EXPECT_TRUE(Analyse(instrument, {}).jumps.empty());
}

TEST(Analysis, ChoosesTheShortestPeriodThatKeepsTheTableShort) {
  EXPECT_EQ(Analyse(InstrumentOf(std::vector<double>(31), 3600), {}).period, Period::kRun);
  EXPECT_EQ(Analyse(InstrumentOf(std::vector<double>(32), 3600), {}).period, Period::kDay);
  EXPECT_EQ(Analyse(InstrumentOf(std::vector<double>(90), kDay), {}).period, Period::kMonth);
  EXPECT_EQ(Analyse(InstrumentOf(std::vector<double>(1200), kDay), {}).period, Period::kYear);
}

TEST(Analysis, AveragesAPeriodOverItsMeasurements) {
  Instrument instrument = InstrumentOf({0.0, 10.0, 40.0}, 3600);
  instrument.series[4][1].measurements = 6;
  AnalysisOptions options;
  options.period = Period::kYear;
  const InstrumentDrift drift = Analyse(instrument, options);
  ASSERT_EQ(drift.masses[0].periods.size(), 1u);
  EXPECT_EQ(drift.masses[0].periods[0].period, "2024");
  EXPECT_EQ(drift.masses[0].periods[0].runs, 3u);
  EXPECT_NEAR(drift.masses[0].periods[0].drift_ppm, (2 * 0.0 + 6 * 10.0 + 2 * 40.0) / 10.0, 1e-6);
}

TEST(Analysis, BearsAnInstrumentWithoutRows) {
  const InstrumentDrift drift = Analyse({"none", {}, 0}, {});
  EXPECT_TRUE(drift.masses.empty());
  EXPECT_TRUE(drift.jumps.empty());
}

}  // namespace
}  // namespace tof::drift
