#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "hosts/report/chart_data.h"
#include "hosts/report/html_text.h"
#include "hosts/report/page_sections.h"
#include "hosts/report/spread.h"

namespace tof::report {
namespace {

std::string SurveyRows(const std::vector<SurveyPoint>& points, const char* walk) {
  std::string rows;
  for (const SurveyPoint& point : points) {
    rows += "<tr>" + PlainCell(point.voltage, 2) + PlainCell(point.time_ns, 4) +
            PlainCell(point.abundance, 0) + TextCell(walk) + "</tr>\n";
  }
  return rows;
}

std::string BandText(const Calibrant& of) {
  if (of.band_low && of.band_high) {
    return fmt::format("The target band is {:.0f} to {:.0f} counts.", *of.band_low, *of.band_high);
  }
  if (of.band_high) {
    return fmt::format("The target band ends at {:.0f} counts; its beginning is not recorded.",
                       *of.band_high);
  }
  return "The target band is not recorded.";
}

std::string ChosenText(const Calibrant& of) {
  if (!of.voltage) return "No voltage was chosen.";
  std::string text = fmt::format("Chosen: {:.2f} V", *of.voltage);
  if (of.abundance) text += fmt::format(", where {:.0f} counts were measured", *of.abundance);
  if (!of.remark.empty()) text += " (" + of.remark + ")";
  return text + ".";
}

std::string SurveyPart(const Calibrant& of, std::size_t index) {
  if (of.survey.empty() && of.choosing.empty())
    return "<p>No survey of voltages is recorded.</p>\n";
  const std::string words = BandText(of) + " " + ChosenText(of);
  return ChartFigure(fmt::format("chart-survey-{}", index),
                     "Abundance over the RF voltage, on a logarithmic scale. " + words,
                     "Abundance over the RF voltage. " + words) +
         FoldedTable("Survey points",
                     {"RF voltage, V", "flight time, ns", "abundance, counts", "taken for"},
                     SurveyRows(of.survey, "the survey") + SurveyRows(of.choosing, "the choice"));
}

std::string SpreadText(const Spread& spread) {
  std::string text = fmt::format("{} measurements", spread.measurements);
  if (!spread.deviation_ns) return text + ".";
  const double to_ppm = 1e6 / *spread.mean_ns;
  text += fmt::format(", mean {:.4f} ns, standard deviation {:.4f} ns ({:.3f} ppm)",
                      *spread.mean_ns, *spread.deviation_ns, *spread.deviation_ns * to_ppm);
  if (spread.drift_ppm) {
    text += fmt::format(", drift from the first to the last {:+.3f} ppm", *spread.drift_ppm);
  }
  return text + ".";
}

std::string MeasurementRows(const Calibrant& of, const Spread& spread) {
  std::string rows;
  for (const Measurement& one : of.measurements) {
    std::optional<double> deviation;
    if (one.time_ns && spread.mean_ns) deviation = DeviationPpm(*one.time_ns, *spread.mean_ns);
    rows += "<tr>" + RowHead(std::to_string(one.number)) + PlainCell(one.at_seconds, 1) +
            PlainCell(one.time_ns, 4) + PlainCell(deviation, 3) + PlainCell(one.abundance, 0) +
            "</tr>\n";
  }
  return rows;
}

std::string TimesPart(const Calibrant& of, std::size_t index) {
  if (of.measurements.empty()) return "<p>No measurements are recorded.</p>\n";
  const Spread spread = SpreadOf(of.measurements);
  const std::string words = SpreadText(spread);
  std::string html;
  if (spread.mean_ns) {
    html = ChartFigure(
        fmt::format("chart-times-{}", index),
        "Flight time over the measurements, as deviation from the mean in ppm. " + words,
        "Flight time over the measurements; one standard deviation is shaded. " + words);
  }
  return html + FoldedTable("Measurements",
                            {"No.", "instrument time, s", "flight time, ns", "from the mean, ppm",
                             "abundance, counts"},
                            MeasurementRows(of, spread));
}

std::string CalibrantPart(const ReportPage& page, std::size_t index) {
  const Calibrant& of = page.calibrants[index];
  return fmt::format(
      "<article>\n<h3>{}</h3>\n<div class=\"pair\">\n<div>{}</div>\n<div>{}</div>\n"
      "</div>\n</article>\n",
      Escape(CalibrantLabel(page, index)), SurveyPart(of, index), TimesPart(of, index));
}

std::string DriftText(const std::vector<Calibrant>& calibrants) {
  const std::optional<Drift> drift = DriftOf(calibrants);
  if (!drift) return "";
  return fmt::format(
      "Drift that all calibrants share: {:+.3f} \xC2\xB1 {:.3f} ppm of the flight time per minute "
      "(one standard deviation), over {:.0f} s. ",
      drift->ppm_per_minute, drift->standard_uncertainty,
      drift->last_seconds - drift->first_seconds);
}

std::string DriftFigure(const ReportPage& page) {
  if (!HasMeasurementTimes(page)) return "";
  const std::string words = DriftText(page.calibrants);
  return ChartFigure("chart-drift",
                     "Flight times of all calibrants over the instrument time, each as deviation "
                     "from its own mean in ppm of the flight time. " +
                         words,
                     words + "The numbers are in the tables of the calibrants.");
}

std::string EffectRows(const ReportPage& page) {
  std::string rows;
  for (const RelativeError& error : page.effect.errors) {
    rows += "<tr>" + TextCell(CalibrantLabel(page, error.calibrant)) +
            PlainCell(error.abundance, 0) + PlainCell(error.error_ppm, 3) + "</tr>\n";
  }
  return rows;
}

std::string SlopeRows(const AbundanceEffect& effect) {
  std::string rows;
  for (std::size_t i = 0; i < effect.slopes.size(); ++i) {
    const AbundanceSlope& slope = effect.slopes[i];
    const std::string key = fmt::format("effect.{}.", i);
    rows += "<tr>" + NumberCell("", slope.from_abundance, 0) +
            NumberCell("", slope.to_abundance, 0) +
            SignedCell(key + "ppm_per_decade", slope.ppm_per_decade, 2) +
            NumberCell(key + "standard_uncertainty", slope.standard_uncertainty, 2) +
            NumberCell("", static_cast<double>(slope.points), 0) + "</tr>\n";
  }
  return rows;
}

// The slope where the calibrants are measured, or none when the survey did not get there.
const AbundanceSlope* SlopeAtBand(const ReportPage& page) {
  const std::optional<double>& top = page.calibrants.front().band_high;
  if (!top) return nullptr;
  const auto& slopes = page.effect.slopes;
  const auto found = std::find_if(slopes.begin(), slopes.end(), [&](const AbundanceSlope& slope) {
    return *top >= slope.from_abundance && *top <= slope.to_abundance;
  });
  return found == slopes.end() ? nullptr : &*found;
}

const AbundanceSlope& SteepestSlope(const AbundanceEffect& effect) {
  constexpr double kCertain = 3.0;  // standard deviations
  const auto certain_size = [](const AbundanceSlope& slope) {
    return std::abs(slope.ppm_per_decade) - kCertain * slope.standard_uncertainty;
  };
  return *std::max_element(effect.slopes.begin(), effect.slopes.end(),
                           [&](const AbundanceSlope& a, const AbundanceSlope& b) {
                             return certain_size(a) < certain_size(b);
                           });
}

std::string InWords(const AbundanceSlope& slope) {
  return fmt::format(
      "{:+.2f} \xC2\xB1 {:.2f} ppm of m/z per decade between {:.0f} and {:.0f} counts",
      slope.ppm_per_decade, slope.standard_uncertainty, slope.from_abundance, slope.to_abundance);
}

std::string EffectFigures(const ReportPage& page) {
  const AbundanceEffect& effect = page.effect;
  const AbundanceSlope* const at_band = SlopeAtBand(page);
  return fmt::format(
      "<ul class=\"figure\">\n<li>At the top of the target band: <strong>{}</strong></li>\n"
      "<li>Where it is steepest: <strong>{}</strong></li>\n<li>From the weakest to the strongest "
      "peaks, {:.0f} to {:.0f} counts: <strong>{:+.1f} ppm of m/z</strong></li>\n</ul>\n",
      at_band ? InWords(*at_band) : "not measured", InWords(SteepestSlope(effect)),
      effect.slopes.front().from_abundance, effect.slopes.back().to_abundance,
      effect.slopes.back().to_ppm);
}

std::string EffectChartFigure(const AbundanceEffect& effect) {
  return ChartFigure(
      "chart-effect",
      "Relative m/z error in ppm over the abundance, on a logarithmic scale, with the fitted "
      "curve. Its steepest part: " +
          InWords(SteepestSlope(effect)) + ".",
      fmt::format("Relative m/z error over the abundance, from {} points of {} calibrants, a sign "
                  "for each; the dashed curve is the fit.",
                  effect.points, effect.calibrants));
}

constexpr const char* kFormula =
    "<p class=\"formula\">2 (t - T) / (T - t0) &times; 10<sup>6</sup> = f(log<sub>10</sub> "
    "abundance) + a constant for each calibrant</p>\n"
    "<p>t is a flight time of the survey in ns, T the calibrant's mean flight time, t0 that of the "
    "coefficients. The left-hand side is the relative error of m/z in ppm, because m/z grows with "
    "the square of t - t0. f is a line with up to nine bends, about as many points between "
    "two of them as between any others; its slopes, in ppm of m/z per factor of ten of abundance, "
    "are fitted "
    "to all calibrants by least squares. Points are weighted with their abundance, which is the "
    "number of ions up to a factor. The uncertainties are one standard deviation, from the "
    "scatter about the curve. A drift during the survey adds to the slopes.</p>\n";

}  // namespace

std::string EffectSection(const ReportPage& page) {
  const AbundanceEffect& effect = page.effect;
  const std::string begin =
      "<section id=\"effect\" aria-labelledby=\"effect-title\">\n<h2 id=\"effect-title\">Abundance "
      "effect</h2>\n";
  if (!effect.not_measured.empty()) {
    return begin + "<p>Not measured: " + Escape(effect.not_measured) + ".</p>\n</section>\n";
  }
  return begin + EffectFigures(page) +
         Table("Abundance effect by abundance",
               {"from, counts", "to, counts", "slope, ppm per decade",
                "standard uncertainty, ppm per decade", "points"},
               SlopeRows(effect)) +
         EffectChartFigure(effect) + kFormula +
         FoldedTable("Points of the fit", {"calibrant", "abundance, counts", "m/z error, ppm"},
                     EffectRows(page)) +
         "</section>\n";
}

std::string CalibrantsSection(const ReportPage& page) {
  std::string html =
      "<section id=\"calibrants\" aria-labelledby=\"calibrants-title\">\n"
      "<h2 id=\"calibrants-title\">Calibrants</h2>\n" +
      DriftFigure(page);
  for (std::size_t i = 0; i < page.calibrants.size(); ++i) html += CalibrantPart(page, i);
  if (page.calibrants.empty()) html += "<p>Not recorded.</p>\n";
  return html + "</section>\n";
}

}  // namespace tof::report
