#include <fmt/format.h>

#include <algorithm>

#include "hosts/cli/drift_report.h"
#include "hosts/cli/json_document.h"
#include "hosts/report/html_text.h"
#include "hosts/report/page_frame.h"
#include "hosts/report/page_sections.h"

namespace tof::cli {
namespace {

using drift::InstrumentDrift;
using drift::JointJump;
using drift::Jump;
using drift::MassDrift;
using drift::Quantity;
using report::Escape;

constexpr std::size_t kMostJumpRows = 200;
constexpr std::size_t kMostMarks = 500;
constexpr std::int64_t kMilliseconds = 1000;

std::string ChartId(const char* quantity, std::size_t instrument) {
  return fmt::format("chart-{}-{}", quantity, instrument);
}

Json CurvesOf(const InstrumentDrift& instrument, double drift::CurvePoint::*value) {
  Json series = Json::array();
  for (const MassDrift& mass : instrument.masses) {
    Json points = Json::array();
    for (const drift::CurvePoint& point : mass.curve) {
      points.push_back({point.moment * kMilliseconds, point.*value});
    }
    series.push_back({{"name", fmt::format("mass {}", mass.mass)}, {"points", points}});
  }
  return series;
}

Json MarksOf(const InstrumentDrift& instrument, Quantity quantity) {
  Json marks = Json::array();
  for (const Jump& jump : instrument.jumps) {
    if (jump.quantity != quantity || marks.size() == kMostMarks) continue;
    marks.push_back({jump.moment * kMilliseconds, jump.value});
  }
  return marks;
}

std::string ChartData(const DriftReport& report) {
  Json charts = Json::array();
  for (std::size_t i = 0; i < report.instruments.size(); ++i) {
    const InstrumentDrift& instrument = report.instruments[i];
    if (instrument.masses.empty()) continue;
    charts.push_back({{"id", ChartId("drift", i)},
                      {"kind", "history"},
                      {"quantity", "drift of the flight time, ppm"},
                      {"series", CurvesOf(instrument, &drift::CurvePoint::drift_ppm)},
                      {"jumps", MarksOf(instrument, Quantity::kFlightTime)}});
    charts.push_back({{"id", ChartId("abundance", i)},
                      {"kind", "history"},
                      {"quantity", "abundance, counts"},
                      {"series", CurvesOf(instrument, &drift::CurvePoint::abundance)},
                      {"jumps", MarksOf(instrument, Quantity::kAbundance)}});
  }
  return charts.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string MassTable(const InstrumentDrift& instrument) {
  std::string rows;
  for (const MassDrift& mass : instrument.masses) {
    rows += "<tr>" + report::RowHead(std::to_string(mass.mass)) +
            report::NumberCell("first_time_ns", mass.first_time_ns, 4) +
            report::NumberCell("last_time_ns", mass.last_time_ns, 4) +
            report::SignedCell("drift_ppm", mass.last_ppm, 2) +
            report::SignedCell("lowest_ppm", mass.lowest_ppm, 2) +
            report::SignedCell("highest_ppm", mass.highest_ppm, 2) +
            report::NumberCell("noise_ppm", mass.noise_ppm, 2) +
            report::NumberCell("first_abundance", mass.first_abundance, 0) +
            report::NumberCell("last_abundance", mass.last_abundance, 0) + "</tr>\n";
  }
  return report::Table(
      "Masses, by their index in the calibration",
      {"Mass", "first flight time, ns", "last flight time, ns", "drift, ppm", "lowest, ppm",
       "highest, ppm", "noise from run to run, ppm", "first abundance", "last abundance"},
      rows);
}

std::string PeriodTable(const InstrumentDrift& instrument) {
  std::string rows;
  for (const MassDrift& mass : instrument.masses) {
    for (const drift::PeriodRow& row : mass.periods) {
      rows += (row.jumps > 0 ? "<tr class=\"marked\">" : "<tr>") + report::RowHead(row.period) +
              report::TextCell(std::to_string(mass.mass)) +
              report::TextCell(std::to_string(row.runs)) + report::PlainCell(row.time_ns, 4) +
              report::PlainCell(row.abundance, 0) + report::PlainCell(row.drift_ppm, 2) +
              report::TextCell(row.jumps > 0 ? fmt::format("{} jumps", row.jumps) : "") + "</tr>\n";
    }
  }
  return report::FoldedTable(
      "Flight time, abundance and drift over dates",
      {"Date", "mass", "runs", "flight time, ns", "abundance", "drift, ppm", "jumps"}, rows);
}

std::string JumpRow(const JointJump& joint) {
  const Jump& jump = *joint.first;
  const bool is_time = jump.quantity == Quantity::kFlightTime;
  const std::string masses = joint.masses == 1 ? fmt::format("mass {}", jump.mass)
                                               : fmt::format("{} masses", joint.masses);
  const std::string step = joint.masses == 1
                               ? fmt::format("{:+.2f}", joint.lowest)
                               : fmt::format("{:+.2f} to {:+.2f}", joint.lowest, joint.highest);
  return "<tr>" + report::RowHead(drift::MomentText(jump.moment)) +
         report::TextCell(drift::MomentText(jump.before)) + report::TextCell(masses) +
         report::TextCell(is_time ? "flight time" : "abundance") +
         report::TextCell(step + (is_time ? " ppm" : " %")) + "</tr>\n";
}

std::string JumpTable(const InstrumentDrift& instrument) {
  const std::vector<JointJump> joint = drift::JointJumps(instrument.jumps);
  if (joint.empty()) return "<p>No jumps.</p>\n";
  std::string rows;
  const std::size_t shown = std::min(joint.size(), kMostJumpRows);
  for (std::size_t i = 0; i < shown; ++i) rows += JumpRow(joint[i]);
  std::string html = report::Table(
      "Jumps", {"First run after it", "last run before it", "masses", "of", "step"}, rows);
  if (joint.size() > shown) html += fmt::format("<p>And {} more.</p>\n", joint.size() - shown);
  return html;
}

std::string InstrumentSection(const InstrumentDrift& instrument, std::size_t i) {
  std::string html =
      fmt::format("<section id=\"instrument-{}\">\n<h2>{}</h2>\n", i, Escape(instrument.label));
  if (instrument.masses.empty()) return html + "<p>No rows.</p>\n</section>\n";
  html += fmt::format("<p>{} runs from {} to {}.</p>\n", instrument.runs,
                      drift::MomentText(instrument.first_moment),
                      drift::MomentText(instrument.last_moment));
  html += "<div class=\"pair\">\n" +
          report::ChartFigure(ChartId("drift", i),
                              "Drift of the flight time in ppm over dates, a curve per mass.",
                              "Drift of the flight time since the first run, ppm. In m/z it is "
                              "twice as large. Pins mark jumps.") +
          report::ChartFigure(ChartId("abundance", i),
                              "Abundance in counts over dates, a curve per mass.",
                              "Abundance, counts. Pins mark jumps.") +
          "</div>\n";
  return html + MassTable(instrument) + JumpTable(instrument) + PeriodTable(instrument) +
         "</section>\n";
}

std::string FilesSection(const DriftReport& report) {
  std::string rows;
  for (const DriftFile& file : report.files) {
    rows += "<tr>" + report::RowHead(file.path) + report::TextCell(file.label) +
            report::TextCell(std::to_string(file.read.rows)) +
            report::TextCell(std::to_string(file.read.bad_rows)) + "</tr>\n";
  }
  std::string html =
      "<section id=\"files\">\n<h2>Files</h2>\n" +
      report::Table("Files that were read", {"File", "instrument", "rows", "bad rows"}, rows);
  std::string bad_rows;
  for (const DriftFile& file : report.files) {
    for (const drift::BadRow& bad : file.read.first_bad_rows) {
      bad_rows += "<tr>" + report::RowHead(file.path) + report::TextCell(std::to_string(bad.line)) +
                  report::TextCell(bad.why) + "</tr>\n";
    }
  }
  if (!bad_rows.empty()) {
    html += report::Table("Bad rows, the first of each file", {"File", "line", "why"}, bad_rows);
  }
  return html + "</section>\n";
}

std::string Header(const DriftReport& report) {
  std::uint64_t runs = 0;
  std::size_t jumps = 0;
  std::string contents;
  for (std::size_t i = 0; i < report.instruments.size(); ++i) {
    const InstrumentDrift& instrument = report.instruments[i];
    runs += instrument.runs;
    jumps += drift::JointJumps(instrument.jumps).size();
    contents +=
        fmt::format("<li><a href=\"#instrument-{}\">{}</a></li>\n", i, Escape(instrument.label));
  }
  std::string html = fmt::format(
      "<header>\n<h1>Drift over calibrations</h1>\n<p id=\"verdict\" class=\"neither\">"
      "Instruments: {}; runs: {}; jumps: {}.</p>\n<p class=\"about\">A jump is a step from one run "
      "to the next that is more than {} robust standard deviations away from the median step, and "
      "more than {} ppm in flight time or {} % in abundance.",
      report.instruments.size(), runs, jumps, report.options.jump_sigmas, report.options.jump_ppm,
      report.options.jump_percent);
  if (report.runs_per_point > 1) {
    html += fmt::format(" There are so many runs that {} were joined to a point.",
                        report.runs_per_point);
  }
  return html + "</p>\n</header>\n<nav aria-label=\"Contents\"><ul>\n" + contents +
         "<li><a href=\"#files\">Files</a></li>\n</ul></nav>\n";
}

}  // namespace

std::string HtmlOf(const DriftReport& report) {
  std::string body = Header(report) + "<main>\n";
  for (std::size_t i = 0; i < report.instruments.size(); ++i) {
    body += InstrumentSection(report.instruments[i], i);
  }
  return report::InFrame(
      {"Drift over calibrations", "instrument-0", "tofcal " TOF_VERSION, ChartData(report)},
      body + FilesSection(report) + "</main>\n");
}

}  // namespace tof::cli
