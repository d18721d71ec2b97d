#include "hosts/drift/series.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tof::drift {
namespace {

// `measurements` of each of `masses` at a moment, all with the same time.
void AddRun(SeriesBuilder& builder, std::int64_t moment, double time_ns, int masses = 2,
            int measurements = 3) {
  for (int mass = 0; mass < masses; ++mass) {
    for (int k = 0; k < measurements; ++k) builder.Add({moment, mass, k, time_ns + mass, 100.0});
  }
}

TEST(Series, MakesAPointPerRunAndMass) {
  SeriesBuilder builder;
  builder.BeginFile("one");
  builder.Add({7, 0, 0, 10.0, 100.0});
  builder.Add({7, 0, 1, 12.0, 300.0});
  builder.Add({7, 1, 0, 50.0, 1.0});
  builder.Add({9, 0, 0, 20.0, 500.0});
  builder.EndFile();
  const auto instruments = builder.Finish();
  ASSERT_EQ(instruments.size(), 1u);
  EXPECT_EQ(instruments[0].runs, 2u);
  const auto& points = instruments[0].series.at(0);
  ASSERT_EQ(points.size(), 2u);
  EXPECT_EQ(points[0].time_ns, 11.0);
  EXPECT_EQ(points[0].abundance, 200.0);
  EXPECT_EQ(points[0].measurements, 2u);
  EXPECT_EQ(points[1].moment, 9);
  EXPECT_EQ(instruments[0].series.at(1).size(), 1u);
}

TEST(Series, TellsTwoRunsOfTheSameSecondApart) {
  SeriesBuilder builder;
  builder.BeginFile("one");
  AddRun(builder, 7, 10.0);
  AddRun(builder, 7, 20.0);
  builder.EndFile();
  const auto instruments = builder.Finish();
  EXPECT_EQ(instruments[0].runs, 2u);
  EXPECT_EQ(instruments[0].series.at(0)[1].time_ns, 20.0);
}

TEST(Series, GoesOnWithALabelAndPutsItsPointsInTheOrderOfTheirDates) {
  SeriesBuilder builder;
  for (const auto& [label, moment] :
       std::vector<std::pair<std::string, std::int64_t>>{{"a", 20}, {"b", 5}, {"a", 10}}) {
    builder.BeginFile(label);
    AddRun(builder, moment, static_cast<double>(moment));
    builder.EndFile();
  }
  const auto instruments = builder.Finish();
  ASSERT_EQ(instruments.size(), 2u);
  EXPECT_EQ(instruments[0].label, "a");
  EXPECT_EQ(instruments[0].series.at(0)[0].moment, 10);
  EXPECT_EQ(instruments[0].series.at(0)[1].moment, 20);
}

TEST(Series, JoinsNeighboursRatherThanGrow) {
  constexpr std::size_t kMost = 64;
  constexpr int kRuns = 1000;
  SeriesBuilder builder(kMost);
  builder.BeginFile("one");
  for (int run = 0; run < kRuns; ++run) AddRun(builder, run, 100.0 + run);
  builder.EndFile();
  EXPECT_EQ(builder.RunsPerPoint(), 64u);
  const auto instruments = builder.Finish();
  EXPECT_EQ(instruments[0].runs, 1000u);
  for (const auto& [mass, points] : instruments[0].series) {
    EXPECT_LT(points.size(), kMost / 2 + 1);
    std::uint64_t runs = 0;
    double sum = 0.0;
    for (const Point& point : points) {
      runs += point.runs;
      sum += point.time_ns * point.runs;
      // A point is the mean of runs that follow each other.
      EXPECT_NEAR(point.time_ns,
                  100.0 + mass + static_cast<double>(point.moment) + (point.runs - 1) / 2.0, 1e-9);
    }
    EXPECT_EQ(runs, 1000u);
    EXPECT_NEAR(sum / kRuns, 100.0 + mass + (kRuns - 1) / 2.0, 1e-9);
  }
}

}  // namespace
}  // namespace tof::drift
