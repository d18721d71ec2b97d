// What abundance-immune calibration promises, on the built-in virtual instrument with whole spectra
// and the real peak finder. A short form of the study in docs/aic.md.
#include <gtest/gtest.h>

#include <cmath>

#include "hosts/study/ways.h"

namespace tof::study {
namespace {

constexpr std::uint64_t kSeeds = 3;

TEST(AbundanceImmuneCalibration, IsManyTimesBetterThanTheTraditionalOne) {
  const SeriesFigures immune = FiguresOf(RunSeries(ByMeasurement(), kSeeds));
  const SeriesFigures traditional = FiguresOf(RunSeries(Traditional(), kSeeds));
  EXPECT_LE(immune.in_band.rms, 0.25);
  EXPECT_LE(immune.in_band.largest, 0.5);
  EXPECT_GE(traditional.in_band.rms, 30.0 * immune.in_band.rms);
  EXPECT_LE(immune.at_calibration.rms, 1.5 * immune.limit_ppm);
  // A weak peak is off by what the calibrants' abundance has left in the coefficients.
  EXPECT_LE(immune.weak_largest_miss_ppm, 0.2);
  RecordProperty("in_band_ppm", std::to_string(immune.in_band.rms));
}

class SearchMassByMass : public testing::TestWithParam<VirtualRun (*)()> {};

TEST_P(SearchMassByMass, BringsTheMassesIntoTheBand) {
  constexpr std::uint64_t kFewSeeds = 2;
  const Series series = RunSeries(GetParam()(), kFewSeeds);
  const BandHits hits = HitsOf(series);
  EXPECT_EQ(hits.masses, 20u);
  EXPECT_GE(hits.stored_in_band, 19u);
  EXPECT_GE(hits.expected_in_band, 19u);
  EXPECT_LE(FiguresOf(series).in_band.largest, 0.5);
}

INSTANTIATE_TEST_SUITE_P(Ways, SearchMassByMass, testing::Values(ParserSearch, FirmwareSearch),
                         [](const testing::TestParamInfo<VirtualRun (*)()>& row) {
                           return row.index == 0 ? "Parser" : "Firmware";
                         });

TEST(Study, StopsAtACalibrationThatFails) {
  VirtualRun run = ByMeasurement();
  Set(run.description, "AIC_RF_Step", 0.0);
  EXPECT_THROW(study::Run(run), CalibrationFailed);
  EXPECT_EQ(RunSeriesWithFailures(run, 2).failed, 2u);
}

TEST(Study, FindsNoAbundanceOfAMassThatIsNotThere) {
  EXPECT_TRUE(std::isnan(ExpectedAbundance(BuiltIn(), 600.0, 75.0)));
}

TEST(MarkdownTable, HasAHeadAndARule) {
  EXPECT_EQ(MarkdownTable({{"a", "b"}, {"1", "2"}}), "| a | b |\n|---|---|\n| 1 | 2 |\n");
}

}  // namespace
}  // namespace tof::study
