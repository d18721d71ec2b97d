#include "hosts/report/html_page.h"

#include <fmt/format.h>

#include "hosts/report/chart_data.h"
#include "hosts/report/html_text.h"
#include "hosts/report/page_frame.h"
#include "hosts/report/page_sections.h"

namespace tof::report {
namespace {

std::string TitleOf(const ReportPage& page) {
  return page.instrument.empty() ? "Calibration" : "Calibration of " + page.instrument;
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

}  // namespace

std::string HtmlOf(const ReportPage& page) {
  return InFrame({TitleOf(page), "masses", page.program, ChartDataOf(page)},
                 Header(page) + Contents() + "<main>\n" + RunsSection(page) +
                     ProblemsSection(page) + MassesSection(page) + EffectSection(page) +
                     CalibrantsSection(page) + CoefficientsSection(page) + StateSection(page) +
                     EffortSection(page) + FilesSection(page) + "</main>\n");
}

}  // namespace tof::report
