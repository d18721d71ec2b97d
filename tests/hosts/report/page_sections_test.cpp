// Every figure of a page stands where it belongs, for every mass, setpoint, stage and file.
#include "hosts/report/page_sections.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace tof::report {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

Calibrant LightCalibrant() {
  Calibrant of;
  of.expected = 90.97664;
  of.time_ns = 14'974.5;
  of.calculated = 90.97665;
  of.error_before_ppm = 12.5;
  of.error_ppm = -0.25;
  of.voltage = 61.5;
  of.abundance = 150'000.0;
  of.remark = "below the band";
  of.survey = {{20.0, 14'974.25, 1'000.0}, {40.0, std::nullopt, 2'000.0}};
  of.choosing = {{61.5, 14'974.75, 150'500.0}};
  of.band_low = 100'000.0;
  of.band_high = 200'000.0;
  of.measurements = {{1, 10'000.0, 5'000.0, 1.5}, {2, 10'000.02, 6'000.0, 2.5}};
  return of;
}

// Two calibrants, the second of which only has a mean time.
ReportPage SamplePage() {
  ReportPage page;
  page.calibrants = {LightCalibrant(), {}};
  page.calibrants[1].time_ns = 20'000.0;
  page.before_means = "Before: the coefficients <from> then.";
  page.rms_ppm = 0.125;
  page.max_ppm = 0.5;
  page.loo_ppm = 0.75;
  page.coefficients.before = CoefficientRecord{0.00065, 300.0};
  page.coefficients.after =
      CoefficientRecord{0.0006500065, 300.5, 0.001, 0.0, 0.0, 0.0, 0.0, 0.002};
  page.coefficients.terms = 0b100001;
  page.setpoints = {
      {{"83", "RF voltage", "75", "20, 40", "75", true}, {"149", "gain", "1", "", "2", false}}};
  page.stages = {{{1, "surveying", 12.5, 0.25, 8}, {2, "fitting", 0.5, 0.125, 0}}};
  page.counts = {{"spectra", "Spectra", 11}, {"settle_calls", "Waits", std::nullopt}};
  page.instrument_seconds = 33.25;
  page.wall_seconds = 1.5;
  page.files = {"a.txt", "b<1>.txt"};
  page.problems = {{"c.txt", 3, "cut"}, {"d.txt", 0, "missing"}};
  page.runs = {{1, "yesterday", "calibrated", false}, {2, "today", "failed", true}};
  return page;
}

TEST(MassesSection, HasARowForEachCalibrant) {
  const std::string html = MassesSection(SamplePage());
  EXPECT_THAT(
      html,
      HasSubstr(
          "<tr><th scope=\"row\">0</th>"
          "<td class=\"number\" data-key=\"masses.0.expected\">"
          "<data value=\"90.97664\">90.97664</data></td>"
          "<td class=\"number\" data-key=\"masses.0.time_ns\">"
          "<data value=\"14974.5\">14974.5000</data></td>"
          "<td class=\"number\" data-key=\"masses.0.calculated\">"
          "<data value=\"90.97665\">90.97665</data></td>"
          "<td class=\"number\"><data value=\"12.5\">+12.500</data></td>"
          "<td class=\"number\" data-key=\"masses.0.error_ppm\">"
          "<data value=\"-0.25\">-0.250</data></td>"
          "<td class=\"number\" data-key=\"masses.0.voltage\">"
          "<data value=\"61.5\">61.50</data></td>"
          "<td class=\"number\" data-key=\"masses.0.abundance\">"
          "<data value=\"150000\">150000</data></td><td>below the band</td></tr>\n"
          "<tr><th scope=\"row\">1</th><td class=\"number\" data-key=\"masses.1.expected\">"));
  EXPECT_THAT(html, HasSubstr("data-key=\"masses.1.time_ns\"><data value=\"20000\">20000.0000<"));
  EXPECT_THAT(html,
              HasSubstr("root mean square <span data-key=\"rms_ppm\"><data value=\"0.125\">"
                        "0.125</data></span> ppm, largest <span data-key=\"max_ppm\"><data "
                        "value=\"0.5\">0.500</data></span> ppm, leave-one-out <span "
                        "data-key=\"loo_ppm\"><data value=\"0.75\">0.750</data></span> ppm."));
  EXPECT_THAT(html, HasSubstr("<p>Before: the coefficients &lt;from&gt; then.</p>"));
  EXPECT_THAT(html, HasSubstr("Mass errors before, ppm."));
  EXPECT_THAT(html, HasSubstr("Mass errors after, ppm,"));
}

TEST(MassesSection, LeavesOutWhatThereIsNone) {
  ReportPage page = SamplePage();
  page.rms_ppm.reset();
  page.calibrants[0].error_before_ppm.reset();
  page.calibrants[0].error_ppm.reset();
  const std::string html = MassesSection(page);
  EXPECT_THAT(html, Not(HasSubstr("root mean square")));
  EXPECT_THAT(html, Not(HasSubstr("Mass errors")));
  page.calibrants.clear();
  EXPECT_THAT(MassesSection(page), HasSubstr("Masses</h2>\n<p>Not recorded.</p>"));
}

TEST(CalibrantsSection, HasAPartForEachCalibrant) {
  const std::string html = CalibrantsSection(SamplePage());
  EXPECT_THAT(html, HasSubstr("<h3>m/z 90.97664</h3>"));
  EXPECT_THAT(html, HasSubstr("<h3>calibrant 1</h3>"));
  EXPECT_THAT(html, HasSubstr("Abundance over the RF voltage. The target band is 100000 to 200000 "
                              "counts. Chosen: 61.50 V, where 150000 counts were measured (below "
                              "the band)."));
  EXPECT_THAT(html, HasSubstr("<tr><td class=\"number\">20.00</td><td class=\"number\">14974.2500"
                              "</td><td class=\"number\">1000</td><td>the survey</td></tr>\n"));
  EXPECT_THAT(html, HasSubstr("<tr><td class=\"number\">61.50</td><td class=\"number\">14974.7500"
                              "</td><td class=\"number\">150500</td><td>the choice</td></tr>\n"));
  EXPECT_THAT(html, HasSubstr("2 measurements, mean 10000.0100 ns, standard deviation 0.0141 ns "
                              "(1.414 ppm), drift from the first to the last +2.000 ppm."));
  EXPECT_THAT(html, HasSubstr("<tr><th scope=\"row\">1</th><td class=\"number\">1.5</td>"
                              "<td class=\"number\">10000.0000</td><td class=\"number\">-1.000</td>"
                              "<td class=\"number\">5000</td></tr>\n"
                              "<tr><th scope=\"row\">2</th><td class=\"number\">2.5</td>"
                              "<td class=\"number\">10000.0200</td><td class=\"number\">1.000</td>"
                              "<td class=\"number\">6000</td></tr>\n"));
  EXPECT_THAT(html, HasSubstr("<p>No survey of voltages is recorded.</p>"));
  EXPECT_THAT(html, HasSubstr("<p>No measurements are recorded.</p>"));
}

TEST(CalibrantsSection, SaysWhatIsKnownOfBandAndChoice) {
  ReportPage page = SamplePage();
  Calibrant& of = page.calibrants[0];
  of.band_low.reset();
  of.remark.clear();
  EXPECT_THAT(CalibrantsSection(page), HasSubstr("The target band ends at 200000 counts; its "
                                                 "beginning is not recorded. Chosen: 61.50 V, "
                                                 "where 150000 counts were measured."));
  of.band_high.reset();
  of.abundance.reset();
  EXPECT_THAT(CalibrantsSection(page),
              HasSubstr("The target band is not recorded. Chosen: 61.50 V."));
  of.voltage.reset();
  EXPECT_THAT(CalibrantsSection(page), HasSubstr("No voltage was chosen."));
  of.survey.clear();
  EXPECT_THAT(CalibrantsSection(page), HasSubstr("<td>the choice</td>"));
  page.calibrants.clear();
  EXPECT_THAT(CalibrantsSection(page), HasSubstr("Calibrants</h2>\n<p>Not recorded.</p>"));
}

ReportPage WithEffect() {
  ReportPage page = SamplePage();
  page.effect.points = 30;
  page.effect.calibrants = 2;
  page.effect.slopes = {{1e3, 1e5, 12, -0.5, 0.25, 0.0, -1.0},
                        {1e5, 1e6, 18, -2.5, 0.125, -1.0, -3.5}};
  page.effect.errors = {{1, 1'500.0, -0.25}, {0, 90'000.0, -1.5}};
  return page;
}

TEST(EffectSection, TellsTheSlopesInWordsAndInTables) {
  const std::string html = EffectSection(WithEffect());
  EXPECT_THAT(html, HasSubstr("At the top of the target band: <strong>-2.50 \xC2\xB1 0.12 ppm of "
                              "m/z per decade between 100000 and 1000000 counts</strong>"));
  EXPECT_THAT(html, HasSubstr("Where it is steepest: <strong>-2.50 \xC2\xB1"));
  EXPECT_THAT(html, HasSubstr("peaks, 1000 to 1000000 counts: <strong>-3.5 ppm of m/z</strong>"));
  EXPECT_THAT(html, HasSubstr("data-key=\"effect.1.ppm_per_decade\"><data value=\"-2.5\">-2.50<"));
  EXPECT_THAT(
      html,
      HasSubstr("data-key=\"effect.1.standard_uncertainty\"><data value=\"0.125\">0.12</data></td>"
                "<td class=\"number\"><data value=\"18\">18</data></td></tr>"));
  EXPECT_THAT(html, HasSubstr("<tr><td>calibrant 1</td><td class=\"number\">1500</td>"
                              "<td class=\"number\">-0.250</td></tr>\n"
                              "<tr><td>m/z 90.97664</td><td class=\"number\">90000</td>"
                              "<td class=\"number\">-1.500</td></tr>\n"));
  EXPECT_THAT(html, HasSubstr("from 30 points of 2 calibrants"));
}

TEST(EffectSection, FindsTheSlopeAtTheTopOfTheBandIfThereIsOne) {
  const auto at_band = [](std::optional<double> top) {
    ReportPage page = WithEffect();
    page.calibrants.front().band_high = top;
    const std::string html = EffectSection(page);
    const std::string head = "target band: <strong>";
    const auto begin = html.find(head) + head.size();
    return html.substr(begin, html.find("</strong>", begin) - begin);
  };
  EXPECT_EQ(at_band(std::nullopt), "not measured");
  EXPECT_EQ(at_band(999.0), "not measured");
  EXPECT_THAT(at_band(1'000.0), ::testing::StartsWith("-0.50"));
  EXPECT_THAT(at_band(1e6), ::testing::StartsWith("-2.50"));
  EXPECT_EQ(at_band(1'000'001.0), "not measured");
}

// A steep slope that is hardly known is no steep one.
TEST(EffectSection, TakesTheSteepestSlopeThatIsCertain) {
  ReportPage page = WithEffect();
  page.effect.slopes[1].standard_uncertainty = 1.0;
  EXPECT_THAT(EffectSection(page), HasSubstr("Where it is steepest: <strong>-0.50"));
  page.effect.slopes[1].standard_uncertainty = 0.8;
  EXPECT_THAT(EffectSection(page), HasSubstr("Where it is steepest: <strong>-2.50"));
}

TEST(EffectSection, SaysWhyItWasNotMeasured) {
  ReportPage page = WithEffect();
  page.effect.not_measured = "no <survey>";
  EXPECT_THAT(EffectSection(page),
              HasSubstr("effect</h2>\n<p>Not measured: no &lt;survey&gt;.</p>"));
}

TEST(CoefficientsSection, TellsTheChangeOfEach) {
  const std::string html = CoefficientsSection(SamplePage());
  EXPECT_THAT(html,
              HasSubstr("<tr><th scope=\"row\">A</th><td>sqrt(u)/ns</td>"
                        "<td class=\"number\"><data value=\"0.00065\">0.00065</data></td>"
                        "<td class=\"number\" data-key=\"coefficients.A\">"
                        "<data value=\"0.0006500065\">0.0006500065</data></td>"
                        "<td class=\"number\">+6.5e-09 (+10.000 ppm)</td><td>fitted</td></tr>"));
  EXPECT_THAT(html,
              HasSubstr("<td class=\"number\">+0.5 (+1666.667 ppm)</td><td>fitted</td></tr>"));
  EXPECT_THAT(html, HasSubstr("<td class=\"number\">+0.001</td><td>fitted</td></tr>"));
  EXPECT_THAT(html, HasSubstr("data-key=\"coefficients.D\"><data value=\"0\">0</data></td>"
                              "<td class=\"number\">+0</td><td></td></tr>"));
  EXPECT_THAT(html, HasSubstr("<td class=\"number\">+0.002</td><td>fitted</td></tr>"));
}

TEST(CoefficientsSection, ShowsThoseThatAreRecorded) {
  ReportPage page = SamplePage();
  page.coefficients.after.reset();
  page.coefficients.terms.reset();
  EXPECT_THAT(CoefficientsSection(page),
              HasSubstr("<data value=\"0.00065\">0.00065</data></td><td class=\"number\" "
                        "data-key=\"coefficients.A\"><span class=\"absent\""));
  EXPECT_THAT(CoefficientsSection(page), Not(HasSubstr("fitted")));
  page.coefficients.before.reset();
  EXPECT_THAT(CoefficientsSection(page), HasSubstr("Coefficients</h2>\n<p>Not recorded.</p>"));
}

TEST(StateSection, MarksWhatIsNotAsBefore) {
  EXPECT_THAT(StateSection(SamplePage()),
              HasSubstr("<tr><th scope=\"row\">83</th><td>RF voltage</td><td>75</td><td>20, 40</td>"
                        "<td>75</td><td>as before</td></tr>\n"
                        "<tr class=\"marked\"><th scope=\"row\">149</th><td>gain</td><td>1</td>"
                        "<td></td><td>2</td><td>\xE2\x9A\xA0 changed</td></tr>\n"));
}

TEST(EffortSection, TellsCountsTimesAndStages) {
  const std::string html = EffortSection(SamplePage());
  EXPECT_THAT(html,
              HasSubstr("<tr><th scope=\"row\">Spectra</th><td class=\"number\" "
                        "data-key=\"counts.spectra\"><data value=\"11\">11</data></td></tr>"));
  EXPECT_THAT(html, HasSubstr("data-key=\"counts.settle_calls\"><span class=\"absent\""));
  EXPECT_THAT(html, HasSubstr("<span data-key=\"instrument_seconds\"><data value=\"33.25\">33.2<"));
  EXPECT_THAT(html, HasSubstr("<span data-key=\"wall_seconds\"><data value=\"1.5\">1.50<"));
  EXPECT_THAT(html, HasSubstr("<tr><th scope=\"row\">surveying</th>"
                              "<td class=\"number\"><data value=\"1\">1</data></td>"
                              "<td class=\"number\"><data value=\"12.5\">12.5</data></td>"
                              "<td class=\"number\"><data value=\"8\">8</data></td>"
                              "<td class=\"number\"><data value=\"0.25\">0.250</data></td></tr>"));
  ReportPage page = SamplePage();
  page.instrument_seconds.reset();
  EXPECT_THAT(EffortSection(page), HasSubstr("<span data-key=\"wall_seconds\"><data"));
  page.wall_seconds.reset();
  EXPECT_THAT(EffortSection(page), HasSubstr("<h3>Time</h3>\n<p>Not recorded.</p>"));
}

TEST(FilesSection, ListsThemOrSaysNone) {
  EXPECT_THAT(FilesSection(SamplePage()),
              HasSubstr("<ul>\n<li><code>a.txt</code></li>\n<li><code>b&lt;1&gt;.txt</code></li>\n"
                        "</ul>"));
  EXPECT_THAT(FilesSection({}), HasSubstr("<p>None.</p>"));
}

TEST(ProblemsSection, NamesFileLineAndProblem) {
  EXPECT_THAT(ProblemsSection(SamplePage()),
              HasSubstr("<tr><th scope=\"row\">c.txt</th><td>3</td><td>cut</td></tr>\n"
                        "<tr><th scope=\"row\">d.txt</th><td></td><td>missing</td></tr>\n"));
  EXPECT_EQ(ProblemsSection({}), "");
}

TEST(RunsSection, MarksTheOneThatIsShown) {
  EXPECT_THAT(
      RunsSection(SamplePage()),
      HasSubstr("<tr><th scope=\"row\">1</th><td>yesterday</td><td>calibrated</td><td>--run 1</td>"
                "</tr>\n<tr class=\"shown\" aria-current=\"true\"><th scope=\"row\">2</th>"
                "<td>today</td><td>failed</td><td>this page</td></tr>\n"));
  EXPECT_EQ(RunsSection({}), "");
}

}  // namespace
}  // namespace tof::report
