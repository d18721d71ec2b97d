#include "hosts/report/page_sections.h"

#include <fmt/format.h>

#include <array>
#include <cmath>

#include "hosts/report/chart_data.h"
#include "hosts/report/html_text.h"
#include "hosts/report/page_assets.h"

namespace tof::report {
namespace {

constexpr const char* kNotRecorded = "<p>Not recorded.</p>\n";

std::string Section(const char* id, const char* title, const std::string& content) {
  return fmt::format(
      "<section id=\"{0}\" aria-labelledby=\"{0}-title\">\n<h2 id=\"{0}-title\">"
      "{1}</h2>\n{2}</section>\n",
      id, title, content);
}

std::string HeadRow(const std::vector<std::string>& heads) {
  std::string html = "<thead><tr>";
  for (const std::string& head : heads) html += "<th scope=\"col\">" + head + "</th>";
  return html + "</tr></thead>\n";
}

std::string MassRows(const ReportPage& page) {
  std::string rows;
  for (std::size_t i = 0; i < page.calibrants.size(); ++i) {
    const Calibrant& of = page.calibrants[i];
    const std::string key = fmt::format("masses.{}.", i);
    rows += "<tr>" + RowHead(std::to_string(i)) + NumberCell(key + "expected", of.expected, 5) +
            NumberCell(key + "time_ns", of.time_ns, 4) +
            NumberCell(key + "calculated", of.calculated, 5) +
            SignedCell("", of.error_before_ppm, 3) +
            SignedCell(key + "error_ppm", of.error_ppm, 3) +
            NumberCell(key + "voltage", of.voltage, 2) +
            NumberCell(key + "abundance", of.abundance, 0) + TextCell(of.remark) + "</tr>\n";
  }
  return rows;
}

std::string Summary(const ReportPage& page) {
  if (!page.rms_ppm) return "";
  return "<p>Errors after: root mean square <span data-key=\"rms_ppm\">" + Number(page.rms_ppm, 3) +
         "</span> ppm, largest <span data-key=\"max_ppm\">" + Number(page.max_ppm, 3) +
         "</span> ppm, leave-one-out <span data-key=\"loo_ppm\">" + Number(page.loo_ppm, 3) +
         "</span> ppm.</p>\n";
}

std::string ErrorsFigures(const ReportPage& page) {
  std::string html = "<div class=\"pair\">\n";
  if (HasErrorsBefore(page)) {
    html += ChartFigure("chart-errors-before", "Mass errors before, in ppm over m/z.",
                        "Mass errors before, ppm. The numbers are in the table above.");
  }
  if (HasErrorsAfter(page)) {
    html += ChartFigure("chart-errors-after", "Mass errors after, in ppm over m/z.",
                        "Mass errors after, ppm, on a scale of their own.");
  }
  return html + "</div>\n";
}

struct CoefficientKind {
  const char* name;
  const char* unit;
};
constexpr std::array<CoefficientKind, 8> kCoefficients{{{"A", "sqrt(u)/ns"},
                                                        {"t0", "ns"},
                                                        {"C", "sqrt(u)"},
                                                        {"D", "sqrt(u)"},
                                                        {"E", "sqrt(u)"},
                                                        {"F", "sqrt(u)"},
                                                        {"G", "sqrt(u)"},
                                                        {"H", "sqrt(u)"}}};

std::string ExactCell(const std::string& key, std::optional<double> value) {
  const std::string attribute = key.empty() ? "" : fmt::format(" data-key=\"{}\"", key);
  return fmt::format("<td class=\"number\"{}>{}</td>", attribute, ExactNumber(value));
}

std::optional<double> ChangeOf(const Coefficients& coefficients, std::size_t index) {
  if (!coefficients.before || !coefficients.after) return std::nullopt;
  return (*coefficients.after)[index] - (*coefficients.before)[index];
}

std::string ChangeText(const Coefficients& coefficients, std::size_t index) {
  const std::optional<double> change = ChangeOf(coefficients, index);
  if (!change) return TextCell("");
  const double before = (*coefficients.before)[index];
  std::string text = fmt::format("{:+.6g}", *change);
  if (before != 0.0) text += fmt::format(" ({:+.3f} ppm)", *change / before * 1e6);
  return "<td class=\"number\">" + text + "</td>";
}

// A and t0 are always fitted; bit 0 of the terms is C.
std::string FittedText(const Coefficients& coefficients, std::size_t index) {
  if (!coefficients.terms) return "";
  if (index < 2) return "fitted";
  return (static_cast<std::uint32_t>(*coefficients.terms) >> (index - 2) & 1U) != 0 ? "fitted" : "";
}

std::string SetpointRows(const std::vector<SetpointRow>& setpoints) {
  std::string rows;
  for (const SetpointRow& row : setpoints) {
    rows += (row.as_before ? "<tr>" : "<tr class=\"marked\">") + RowHead(row.id) +
            TextCell(row.name) + TextCell(row.before) + TextCell(row.during) + TextCell(row.after) +
            TextCell(row.as_before ? "as before" : "\xE2\x9A\xA0 changed") + "</tr>\n";
  }
  return rows;
}

std::string StageRows(const std::vector<StageRow>& stages) {
  std::string rows;
  for (const StageRow& row : stages) {
    rows += "<tr>" + RowHead(row.name) + NumberCell("", static_cast<double>(row.pass), 0) +
            NumberCell("", row.instrument_seconds, 1) +
            NumberCell("", static_cast<double>(row.spectra), 0) +
            NumberCell("", row.wall_seconds, 3) + "</tr>\n";
  }
  return rows;
}

std::optional<double> AsDouble(std::optional<std::int64_t> count) {
  if (!count) return std::nullopt;
  return static_cast<double>(*count);
}

std::string CountRows(const ReportPage& page) {
  std::string rows;
  for (const CountRow& row : page.counts) {
    rows += "<tr>" + RowHead(row.name) + NumberCell("counts." + row.key, AsDouble(row.count), 0) +
            "</tr>\n";
  }
  return rows;
}

std::string Times(const ReportPage& page) {
  if (!page.instrument_seconds && !page.wall_seconds) {
    return "<h3>Time</h3>\n" + std::string(kNotRecorded);
  }
  return "<h3>Time</h3>\n<p>Instrument time: <span data-key=\"instrument_seconds\">" +
         Number(page.instrument_seconds, 1) +
         "</span> s; time on the wall clock: <span data-key=\"wall_seconds\">" +
         Number(page.wall_seconds, 2) + "</span> s.</p>\n";
}

}  // namespace

std::string ChartFigure(const std::string& id, const std::string& alternative,
                        const std::string& caption) {
  if (ChartScript().empty()) return "<p>" + caption + "</p>\n";
  return fmt::format(
      "<figure>\n<div class=\"chart\" id=\"{}\" role=\"img\" aria-label=\"{}\">"
      "</div>\n<figcaption>{}</figcaption>\n</figure>\n",
      id, Escape(alternative), caption);
}

std::string Table(const std::string& caption, const std::vector<std::string>& heads,
                  const std::string& rows) {
  return "<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"Table: " + caption +
         "\"><table>\n<caption>" + caption + "</caption>\n" + HeadRow(heads) + "<tbody>\n" + rows +
         "</tbody></table></div>\n";
}

std::string FoldedTable(const std::string& summary, const std::vector<std::string>& heads,
                        const std::string& rows) {
  return "<details><summary>" + summary + "</summary>\n" + Table(summary, heads, rows) +
         "</details>\n";
}

std::string RunsSection(const ReportPage& page) {
  if (page.runs.empty()) return "";
  std::string rows;
  for (const RunRow& run : page.runs) {
    rows += (run.shown ? "<tr class=\"shown\" aria-current=\"true\">" : "<tr>") +
            RowHead(std::to_string(run.number)) + TextCell(run.began) + TextCell(run.told) +
            TextCell(run.shown ? "this page" : fmt::format("--run {}", run.number)) + "</tr>\n";
  }
  return Section("runs", "Runs in the folder",
                 Table("Runs, the oldest first", {"Run", "Began", "Recorded", "Shown by"}, rows));
}

std::string ProblemsSection(const ReportPage& page) {
  if (page.problems.empty()) return "";
  std::string rows;
  for (const Problem& problem : page.problems) {
    rows += "<tr>" + RowHead(problem.file) +
            TextCell(problem.line == 0 ? "" : std::to_string(problem.line)) +
            TextCell(problem.what) + "</tr>\n";
  }
  return Section("problems", "What could not be read",
                 "<p>The rest of this page shows what could be.</p>\n" +
                     Table("Damaged or missing", {"File", "Line", "What"}, rows));
}

std::string MassesSection(const ReportPage& page) {
  if (page.calibrants.empty()) return Section("masses", "Masses", kNotRecorded);
  return Section(
      "masses", "Masses",
      Table("Calibrants",
            {"No.", "expected m/z", "flight time, ns", "calculated m/z", "error before, ppm",
             "error after, ppm", "RF voltage, V", "abundance, counts", "remark"},
            MassRows(page)) +
          Summary(page) + "<p>" + Escape(page.before_means) + "</p>\n" + ErrorsFigures(page));
}

std::string CoefficientsSection(const ReportPage& page) {
  const Coefficients& coefficients = page.coefficients;
  if (!coefficients.before && !coefficients.after) {
    return Section("coefficients", "Coefficients", kNotRecorded);
  }
  std::string rows;
  for (std::size_t i = 0; i < kCoefficients.size(); ++i) {
    const CoefficientKind& kind = kCoefficients[i];
    std::optional<double> before;
    std::optional<double> after;
    if (coefficients.before) before = (*coefficients.before)[i];
    if (coefficients.after) after = (*coefficients.after)[i];
    rows += "<tr>" + RowHead(kind.name) + TextCell(kind.unit) + ExactCell("", before) +
            ExactCell(std::string("coefficients.") + kind.name, after) +
            ChangeText(coefficients, i) + TextCell(FittedText(coefficients, i)) + "</tr>\n";
  }
  return Section("coefficients", "Coefficients",
                 Table("Old and new coefficients",
                       {"Coefficient", "unit", "before", "after", "change", ""}, rows) +
                     "<p>The square root of m/z is A (t - t0) plus C to H times the Legendre "
                     "polynomials P2 to P7 of the flight time t over the acquisition window. " +
                     Escape(page.before_means) + "</p>\n");
}

std::string StateSection(const ReportPage& page) {
  if (!page.setpoints) return Section("state", "Instrument state", kNotRecorded);
  return Section("state", "Instrument state",
                 Table("Setpoints before, during and after",
                       {"Id", "name", "before", "written during the run", "after", ""},
                       SetpointRows(*page.setpoints)));
}

std::string EffortSection(const ReportPage& page) {
  std::string html = Table("Counts", {"What", "how often"}, CountRows(page)) + Times(page);
  if (page.stages) {
    html += Table("Time spent per stage",
                  {"Stage", "pass", "instrument time, s", "spectra", "wall clock, s"},
                  StageRows(*page.stages));
  } else {
    html += "<p>Time per stage: not recorded.</p>\n";
  }
  return Section("effort", "Counts and time", html);
}

std::string FilesSection(const ReportPage& page) {
  if (page.files.empty()) return Section("files", "Files", "<p>None.</p>\n");
  std::string html = "<ul>\n";
  for (const std::string& file : page.files) html += "<li><code>" + Escape(file) + "</code></li>\n";
  return Section("files", "Files", html + "</ul>\n");
}

}  // namespace tof::report
