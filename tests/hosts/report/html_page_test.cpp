#include "hosts/report/html_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "hosts/report/page_assets.h"

namespace tof::report {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

ReportPage GoodPage() {
  ReportPage page;
  page.instrument = "virtual TOF";
  page.outcome = Outcome::kCalibrated;
  page.aic = true;
  page.passes = 1;
  page.restored = "every setpoint is as it was before";
  page.in_force = "the new coefficients are in force";
  page.effect.not_measured = "there is no survey with flight times";
  page.calibrants.emplace_back();
  page.calibrants[0].expected = 90.97664;
  page.calibrants[0].error_ppm = -0.052;
  return page;
}

TEST(Verdict, IsOneSentence) {
  EXPECT_EQ(VerdictSentence(GoodPage()),
            "Calibrated: abundance-immune, in the first fitting pass; every setpoint is as it was "
            "before; the new coefficients are in force.");
}

TEST(Verdict, SaysWhyAndWhereARunFailed) {
  ReportPage page = GoodPage();
  page.outcome = Outcome::kFailed;
  page.reason = "[1] User aborted";
  page.stage = "surveying the voltages";
  page.passes = 2;
  page.aic = false;
  page.in_force = "the coefficients from before are in force";
  EXPECT_EQ(VerdictSentence(page),
            "Not calibrated: [1] User aborted; traditional, not abundance-immune, in the second "
            "fitting pass, as the first gave bad coefficients, while surveying the voltages; every "
            "setpoint is as it was before; the coefficients from before are in force.");
}

TEST(Verdict, SaysWhatIsNotRecorded) {
  ReportPage page;
  page.outcome = Outcome::kCalibrated;
  const std::string verdict = VerdictSentence(page);
  EXPECT_THAT(verdict, HasSubstr("whether abundance-immune is not recorded"));
  EXPECT_THAT(verdict, HasSubstr("what was put back is not recorded"));
}

struct OutcomeRow {
  const char* name;
  Outcome outcome;
  const char* begin;  // of the verdict, with its class and its sign
};

class HtmlPageOf : public ::testing::TestWithParam<OutcomeRow> {};

TEST_P(HtmlPageOf, TellsTheOutcomeBySignAndClass) {
  ReportPage page = GoodPage();
  page.outcome = GetParam().outcome;
  EXPECT_THAT(HtmlOf(page), HasSubstr(std::string("<p id=\"verdict\" class=") + GetParam().begin));
}

INSTANTIATE_TEST_SUITE_P(
    Outcomes, HtmlPageOf,
    ::testing::Values(
        OutcomeRow{"Calibrated", Outcome::kCalibrated,
                   "\"good\"><span aria-hidden=\"true\">\xE2\x9C\x93</span> Calibrated: "},
        OutcomeRow{"Failed", Outcome::kFailed,
                   "\"bad\"><span aria-hidden=\"true\">\xE2\x9C\x97</span> Not calibrated: "},
        OutcomeRow{"Skipped", Outcome::kSkipped,
                   "\"neither\"><span aria-hidden=\"true\">?</span> Not calibrated, because "},
        OutcomeRow{"Unknown", Outcome::kUnknown,
                   "\"neither\"><span aria-hidden=\"true\">?</span> Whether it was "}),
    [](const auto& row) { return row.param.name; });

TEST(HtmlPage, CannotBeEscapedFromByAName) {
  ReportPage page = GoodPage();
  const std::string name = "</script><script>alert(1)</script><img src=x onerror='a()'>\"";
  page.instrument = page.source = page.reason = name;
  page.files = {name};
  page.problems = {{name, 3, name}};
  page.runs = {{1, name, name, true}};
  page.outcome = Outcome::kFailed;
  const std::string html = HtmlOf(page);
  EXPECT_THAT(html, Not(HasSubstr("<script>alert")));
  EXPECT_THAT(html, Not(HasSubstr("<img")));
}

TEST(HtmlPage, LoadsNothing) {
  const std::string html = HtmlOf(GoodPage());
  const std::string without_licences = html.substr(0, html.find("<footer>"));
  EXPECT_THAT(without_licences, Not(HasSubstr("http:")));
  EXPECT_THAT(without_licences, Not(HasSubstr("https:")));
  EXPECT_THAT(html, Not(HasSubstr(" src=")));
  EXPECT_THAT(html, Not(HasSubstr("<link")));
  EXPECT_THAT(html, Not(HasSubstr("@import")));
  EXPECT_THAT(html, HasSubstr("default-src 'none'"));
}

TEST(HtmlPage, HasChartsWithTheLibrarysLicenceOrNeither) {
  const std::string html = HtmlOf(GoodPage());
  const bool has_charts = !ChartScript().empty();
  EXPECT_EQ(html.find("<div class=\"chart\"") != std::string::npos, has_charts);
  EXPECT_EQ(html.find("<script>") != std::string::npos, has_charts);
  EXPECT_EQ(html.find("Apache License") != std::string::npos, has_charts);
  EXPECT_EQ(html.find("The Apache Software Foundation") != std::string::npos, has_charts);
  EXPECT_EQ(html.find("built without charts") == std::string::npos, has_charts);
}

TEST(HtmlPage, SaysNotRecordedOfWhatALogDoesNotTell) {
  const std::string html = HtmlOf(GoodPage());
  EXPECT_THAT(html, HasSubstr("Instrument state</h2>\n<p>Not recorded.</p>"));
  EXPECT_THAT(html, HasSubstr("Time per stage: not recorded."));
}

TEST(HtmlPage, IsTheSameForTheSameRun) {
  EXPECT_EQ(HtmlOf(GoodPage()), HtmlOf(GoodPage()));
}

}  // namespace
}  // namespace tof::report
