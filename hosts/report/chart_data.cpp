#include "hosts/report/chart_data.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "hosts/report/spread.h"

namespace tof::report {
namespace {

using Json = nlohmann::ordered_json;

Json Optional(std::optional<double> value) {
  return value ? Json(*value) : Json(nullptr);
}

Json PointsOf(const std::vector<SurveyPoint>& points) {
  Json json = Json::array();
  for (const SurveyPoint& point : points) json.push_back({point.voltage, point.abundance});
  return json;
}

Json ErrorsChart(const ReportPage& page, const char* when,
                 std::optional<double> Calibrant::*error_ppm) {
  Json points = Json::array();
  for (const Calibrant& calibrant : page.calibrants) {
    if (!calibrant.expected || !(calibrant.*error_ppm)) continue;
    points.push_back({*calibrant.expected, *(calibrant.*error_ppm)});
  }
  return {{"id", fmt::format("chart-errors-{}", when)},
          {"kind", "errors"},
          {"when", when},
          {"points", points}};
}

Json SurveyChart(const Calibrant& calibrant, std::size_t index) {
  return {{"id", fmt::format("chart-survey-{}", index)},
          {"kind", "survey"},
          {"survey", PointsOf(calibrant.survey)},
          {"choosing", PointsOf(calibrant.choosing)},
          {"band", {Optional(calibrant.band_low), Optional(calibrant.band_high)}},
          {"chosen", Optional(calibrant.voltage)}};
}

Json DeviationsOf(const Calibrant& calibrant, double mean_ns, bool over_time) {
  Json points = Json::array();
  for (const Measurement& measurement : calibrant.measurements) {
    if (!measurement.time_ns) continue;
    const double x = over_time ? measurement.at_seconds.value_or(0.0) : measurement.number;
    points.push_back({x, DeviationPpm(*measurement.time_ns, mean_ns)});
  }
  return points;
}

Json TimesChart(const Calibrant& calibrant, std::size_t index) {
  const Spread spread = SpreadOf(calibrant.measurements);
  const double mean_ns = spread.mean_ns.value_or(0.0);
  std::optional<double> deviation_ppm;
  if (spread.deviation_ns) deviation_ppm = *spread.deviation_ns / mean_ns * 1e6;
  return {{"id", fmt::format("chart-times-{}", index)},
          {"kind", "times"},
          {"points", DeviationsOf(calibrant, mean_ns, false)},
          {"deviation", Optional(deviation_ppm)}};
}

Json DriftChart(const ReportPage& page) {
  Json series = Json::array();
  for (std::size_t i = 0; i < page.calibrants.size(); ++i) {
    const Spread spread = SpreadOf(page.calibrants[i].measurements);
    if (!spread.mean_ns) continue;
    series.push_back({{"name", CalibrantLabel(page, i)},
                      {"points", DeviationsOf(page.calibrants[i], *spread.mean_ns, true)}});
  }
  Json line = nullptr;
  const std::optional<Drift> drift = DriftOf(page.calibrants);
  if (drift && drift->is_one_line) {
    const double half_ppm =
        drift->ppm_per_minute * (drift->last_seconds - drift->first_seconds) / 120.0;
    line = {{drift->first_seconds, -half_ppm}, {drift->last_seconds, half_ppm}};
  }
  return {{"id", "chart-drift"}, {"kind", "drift"}, {"series", series}, {"line", line}};
}

Json EffectChart(const ReportPage& page) {
  Json series = Json::array();
  for (std::size_t i = 0; i < page.calibrants.size(); ++i) {
    Json points = Json::array();
    for (const RelativeError& error : page.effect.errors) {
      if (error.calibrant == i) points.push_back({error.abundance, error.error_ppm});
    }
    if (points.empty()) continue;
    series.push_back({{"name", CalibrantLabel(page, i)}, {"points", points}});
  }
  Json curve = {{page.effect.slopes.front().from_abundance, page.effect.slopes.front().from_ppm}};
  for (const AbundanceSlope& slope : page.effect.slopes) {
    curve.push_back({slope.to_abundance, slope.to_ppm});
  }
  return {{"id", "chart-effect"}, {"kind", "effect"}, {"series", series}, {"curve", curve}};
}

}  // namespace

std::string CalibrantLabel(const ReportPage& page, std::size_t index) {
  const std::optional<double>& mass = page.calibrants[index].expected;
  return mass ? fmt::format("m/z {:.5f}", *mass) : fmt::format("calibrant {}", index);
}

bool HasErrorsBefore(const ReportPage& page) {
  return std::any_of(page.calibrants.begin(), page.calibrants.end(),
                     [](const Calibrant& of) { return of.expected && of.error_before_ppm; });
}

bool HasErrorsAfter(const ReportPage& page) {
  return std::any_of(page.calibrants.begin(), page.calibrants.end(),
                     [](const Calibrant& of) { return of.expected && of.error_ppm; });
}

bool HasMeasurementTimes(const ReportPage& page) {
  return std::any_of(page.calibrants.begin(), page.calibrants.end(), [](const Calibrant& of) {
    return std::any_of(of.measurements.begin(), of.measurements.end(),
                       [](const Measurement& one) { return one.at_seconds && one.time_ns; });
  });
}

std::string ChartDataOf(const ReportPage& page) {
  Json charts = Json::array();
  if (HasErrorsBefore(page)) {
    charts.push_back(ErrorsChart(page, "before", &Calibrant::error_before_ppm));
  }
  if (HasErrorsAfter(page)) charts.push_back(ErrorsChart(page, "after", &Calibrant::error_ppm));
  if (page.effect.not_measured.empty()) charts.push_back(EffectChart(page));
  if (HasMeasurementTimes(page)) charts.push_back(DriftChart(page));
  for (std::size_t i = 0; i < page.calibrants.size(); ++i) {
    const Calibrant& calibrant = page.calibrants[i];
    if (!calibrant.survey.empty() || !calibrant.choosing.empty()) {
      charts.push_back(SurveyChart(calibrant, i));
    }
    if (SpreadOf(calibrant.measurements).mean_ns) charts.push_back(TimesChart(calibrant, i));
  }
  return charts.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace tof::report
