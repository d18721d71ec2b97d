#include "hosts/report/html_page.h"

#include <fmt/format.h>

#include "hosts/report/chart_data.h"
#include "hosts/report/html_text.h"
#include "hosts/report/page_assets.h"
#include "hosts/report/page_sections.h"

namespace tof::report {
namespace {

std::string TitleOf(const ReportPage& page) {
  return page.instrument.empty() ? "Calibration" : "Calibration of " + page.instrument;
}

// Nothing but the page's own style and script is ever loaded or run.
std::string Head(const ReportPage& page) {
  return fmt::format(
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
      "style-src 'unsafe-inline'; script-src {}; base-uri 'none'; form-action 'none'\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<title>{}</title>\n<style>\n{}</style>\n</head>\n",
      ChartScriptHash(), Escape(TitleOf(page)), PageStyle());
}

std::string Contents() {
  return "<nav aria-label=\"Contents\"><ul>\n"
         "<li><a href=\"#masses\">Masses</a></li>\n"
         "<li><a href=\"#effect\">Abundance effect</a></li>\n"
         "<li><a href=\"#calibrants\">Calibrants</a></li>\n"
         "<li><a href=\"#coefficients\">Coefficients</a></li>\n"
         "<li><a href=\"#state\">Instrument state</a></li>\n"
         "<li><a href=\"#effort\">Counts and time</a></li>\n"
         "<li><a href=\"#files\">Files</a></li>\n"
         "</ul></nav>\n";
}

const char* ClassOf(Outcome outcome) {
  switch (outcome) {
    case Outcome::kCalibrated:
      return "good";
    case Outcome::kFailed:
      return "bad";
    default:
      return "neither";
  }
}

// Told apart by its sign, not by its colour alone.
const char* SignOf(Outcome outcome) {
  switch (outcome) {
    case Outcome::kCalibrated:
      return "\xE2\x9C\x93";
    case Outcome::kFailed:
      return "\xE2\x9C\x97";
    default:
      return "?";
  }
}

std::string Header(const ReportPage& page) {
  std::string html = fmt::format(
      "<header>\n<h1>{}</h1>\n<p id=\"verdict\" class=\"{}\"><span aria-hidden=\"true\">{}</span> "
      "{}</p>\n<p class=\"about\">",
      Escape(TitleOf(page)), ClassOf(page.outcome), SignOf(page.outcome),
      Escape(VerdictSentence(page)));
  if (!page.moment.empty()) html += Escape(page.moment) + ". ";
  return html + Escape(page.source) + ".</p>\n</header>\n";
}

std::string Scripts(const ReportPage& page) {
  return "<script type=\"application/json\" id=\"chart-data\">" +
         EscapeForScript(ChartDataOf(page)) + "</script>\n<script>" + std::string(ChartScript()) +
         "</script>\n";
}

std::string Footer(const ReportPage& page) {
  return "<footer>\n<p>Made by " + Escape(page.program) +
         ". A dash stands for what was not recorded or not measured.</p>\n"
         "<details><summary>Licences of the parts of this page</summary>\n<pre>" +
         Escape(ChartLicences()) + "</pre></details>\n</footer>\n";
}

}  // namespace

std::string HtmlOf(const ReportPage& page) {
  return Head(page) + "<body>\n<a class=\"skip\" href=\"#masses\">Skip to the results</a>\n" +
         Header(page) + Contents() + "<main>\n" + RunsSection(page) + ProblemsSection(page) +
         MassesSection(page) + EffectSection(page) + CalibrantsSection(page) +
         CoefficientsSection(page) + StateSection(page) + EffortSection(page) + FilesSection(page) +
         "</main>\n" + Footer(page) + Scripts(page) + "</body>\n</html>\n";
}

}  // namespace tof::report
