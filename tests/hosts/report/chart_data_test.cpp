// What a page hands to the script that draws its charts.
#include "hosts/report/chart_data.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace tof::report {
namespace {

using nlohmann::json;

// Two calibrants, measured twice each; the second one without a mass and without a survey.
ReportPage SamplePage() {
  ReportPage page;
  page.effect.not_measured = "there is no survey";
  Calibrant light;
  light.expected = 91.5;
  light.error_before_ppm = 12.5;
  light.error_ppm = -0.25;
  light.voltage = 61.5;
  light.survey = {{20.0, std::nullopt, 1'000.0}, {40.0, 14'974.0, 2'000.0}};
  light.choosing = {{61.5, 14'974.0, 3'000.0}};
  light.band_low = 1'500.0;
  light.band_high = 2'500.0;
  Calibrant other;
  other.error_before_ppm = 99.0;
  for (int k = 0; k < 3; ++k) {
    light.measurements.push_back({k + 1, 10'000.0 + 0.01 * k, 5'000.0, 60.0 * k});
    other.measurements.push_back({k + 1, 20'000.0 + 0.02 * k, 5'000.0, 60.0 * k});
  }
  light.measurements.push_back({4, std::nullopt, 0.0, 180.0});
  page.calibrants = {light, other};
  return page;
}

json ChartOf(const std::string& id, const ReportPage& page) {
  for (const json& chart : json::parse(ChartDataOf(page))) {
    if (chart["id"] == id) return chart;
  }
  return nullptr;
}

std::vector<std::string> IdsOf(const ReportPage& page) {
  std::vector<std::string> ids;
  for (const json& chart : json::parse(ChartDataOf(page))) ids.push_back(chart["id"]);
  return ids;
}

// Numbers are compared to nine digits.
void ExpectNear(const json& found, const json& expected, const std::string& where) {
  if (expected.is_number_float()) {
    ASSERT_TRUE(found.is_number()) << where;
    EXPECT_NEAR(found.get<double>(), expected.get<double>(), 1e-6) << where;
    return;
  }
  if (!expected.is_structured()) {
    EXPECT_EQ(found, expected) << where;
    return;
  }
  ASSERT_EQ(found.size(), expected.size()) << where << ": " << found;
  for (const auto& [key, value] : expected.items()) {
    const json& other = expected.is_array() ? found.at(std::stoul(key)) : found.at(key);
    ExpectNear(other, value, where + "/" + key);
  }
}

TEST(ChartData, IsOfWhatThePageHas) {
  const std::vector<std::string> all{"chart-errors-before", "chart-errors-after", "chart-drift",
                                     "chart-survey-0",      "chart-times-0",      "chart-times-1"};
  EXPECT_EQ(IdsOf(SamplePage()), all);
  ReportPage nothing;
  nothing.effect.not_measured = "there is no survey";
  EXPECT_TRUE(IdsOf(nothing).empty());
  // An error needs a mass to stand at.
  ReportPage page = SamplePage();
  page.calibrants[0].error_before_ppm.reset();
  page.calibrants[0].expected.reset();
  EXPECT_EQ(IdsOf(page), (std::vector<std::string>(all.begin() + 2, all.end())));
  // A drift needs a time and a moment of the same measurement.
  for (Calibrant& of : page.calibrants) {
    for (Measurement& one : of.measurements) one.at_seconds.reset();
  }
  EXPECT_EQ(IdsOf(page), (std::vector<std::string>(all.begin() + 3, all.end())));
  // A choice without a survey is shown as well.
  page.calibrants[0].survey.clear();
  EXPECT_EQ(IdsOf(page).front(), "chart-survey-0");
}

TEST(ChartData, HasErrorsSurveyAndBand) {
  const ReportPage page = SamplePage();
  ExpectNear(ChartOf("chart-errors-before", page),
             json::parse(R"({"id": "chart-errors-before", "kind": "errors", "when": "before",
                             "points": [[91.5, 12.5]]})"),
             "before");
  ExpectNear(ChartOf("chart-errors-after", page)["points"], json::parse("[[91.5, -0.25]]"),
             "after");
  ExpectNear(ChartOf("chart-survey-0", page),
             json::parse(R"({"id": "chart-survey-0", "kind": "survey",
                             "survey": [[20.0, 1000.0], [40.0, 2000.0]],
                             "choosing": [[61.5, 3000.0]], "band": [1500.0, 2500.0],
                             "chosen": 61.5})"),
             "survey");
}

TEST(ChartData, HasTheDeviationsFromTheMeanAndTheirDrift) {
  const ReportPage page = SamplePage();
  ExpectNear(ChartOf("chart-times-0", page), json::parse(R"({"id": "chart-times-0", "kind": "times",
                             "points": [[1.0, -0.999999], [2.0, 0.0], [3.0, 0.999999]],
                             "deviation": 0.999999})"),
             "times");
  // 1 ppm a minute over two of them.
  ExpectNear(ChartOf("chart-drift", page),
             json::parse(R"({"id": "chart-drift", "kind": "drift", "series": [
                 {"name": "m/z 91.50000",
                  "points": [[0.0, -0.999999], [60.0, 0.0], [120.0, 0.999999]]},
                 {"name": "calibrant 1",
                  "points": [[0.0, -0.999999], [60.0, 0.0], [120.0, 0.999999]]}],
                 "line": [[0.0, -0.999999], [120.0, 0.999999]]})"),
             "drift");
}

TEST(ChartData, HasTheAbundanceEffectWithItsCurve) {
  ReportPage page = SamplePage();
  page.effect = {};
  page.effect.slopes = {{1e3, 1e5, 12, -0.5, 0.25, 0.0, -1.0},
                        {1e5, 1e6, 18, -2.5, 0.125, -1.0, -3.5}};
  page.effect.errors = {{1, 1'500.0, -0.25}, {1, 90'000.0, -1.5}};
  ExpectNear(ChartOf("chart-effect", page), json::parse(R"({"id": "chart-effect", "kind": "effect",
                 "series": [{"name": "calibrant 1", "points": [[1500.0, -0.25], [90000.0, -1.5]]}],
                 "curve": [[1000.0, 0.0], [100000.0, -1.0], [1000000.0, -3.5]]})"),
             "effect");
}

}  // namespace
}  // namespace tof::report
