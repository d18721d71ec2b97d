// What the drift command says, to people and to programs.
#include "hosts/cli/drift_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

namespace tof::cli {
namespace {

using drift::Quantity;
using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr std::int64_t kFirst = 1'704'110'400;  // 2024-01-01 12:00:00
constexpr std::int64_t kDay = 86'400;

// Two masses over three days. On the second day both times jump, on the third one abundance does.
DriftReport SampleReport() {
  drift::InstrumentDrift instrument;
  instrument.label = "lab <1>";
  instrument.runs = 7;
  instrument.first_moment = kFirst;
  instrument.last_moment = kFirst + 2 * kDay;
  instrument.period = drift::Period::kDay;
  drift::MassDrift light{.mass = 0,
                         .first_time_ns = 20'000.25,
                         .last_time_ns = 20'001.5,
                         .first_abundance = 5'000.0,
                         .last_abundance = 9'000.0,
                         .last_ppm = 62.5,
                         .lowest_ppm = -1.25,
                         .highest_ppm = 64.0,
                         .noise_ppm = 0.75,
                         .periods = {{"2024-01-01", 3, 20'000.25, 5'000.0, 0.0, 0},
                                     {"2024-01-02", 4, 20'001.5, 9'000.0, 62.5, 2}},
                         .curve = {{kFirst, 0.0, 5'000.0}, {kFirst + kDay, 62.5, 9'000.0}}};
  drift::MassDrift heavy{.mass = 12,
                         .first_time_ns = 40'000.0,
                         .last_time_ns = 40'003.0,
                         .first_abundance = 100.0,
                         .last_abundance = 200.0,
                         .last_ppm = 75.0,
                         .lowest_ppm = 0.0,
                         .highest_ppm = 75.0,
                         .noise_ppm = 0.25,
                         .periods = {{"2024-01-03", 1, 40'003.0, 200.0, 75.0, 0}},
                         .curve = {{kFirst, 0.0, 100.0}}};
  instrument.masses = {light, heavy};
  instrument.jumps = {
      {kFirst, kFirst + kDay, 0, Quantity::kFlightTime, 62.5, 62.5},
      {kFirst, kFirst + kDay, 12, Quantity::kFlightTime, 75.0, 75.0},
      {kFirst + kDay, kFirst + 2 * kDay, 12, Quantity::kAbundance, -51.5, 200.0},
      {kFirst + kDay, kFirst + 2 * kDay, 12, Quantity::kFlightTime, -8.25, 66.75},
  };
  DriftReport report;
  report.files = {{"a.csv", "lab <1>", {21, 3, {{7, "a bad date"}, {9, "a bad time"}}}},
                  {"b.csv", "b.csv", {0, 0, {}}}};
  drift::InstrumentDrift empty;
  empty.label = "b.csv";
  report.instruments = {instrument, empty};
  report.options = {6.5, 4.0, 40.0, std::nullopt};
  return report;
}

TEST(DriftText, TellsAllOfIt) {
  EXPECT_EQ(
      TableOf(SampleReport()),
      "a.csv: 21 rows of lab <1>, 3 bad rows\n"
      "  line 7: a bad date\n"
      "  line 9: a bad time\n"
      "  and 1 more\n"
      "b.csv: 0 rows\n"
      "\n"
      "lab <1>: 7 runs, 2024-01-01 12:00:00 to 2024-01-03 12:00:00\n"
      "\n"
      " mass       first, ns        last, ns  drift ppm     lowest    highest  noise ppm"
      "  first abund.   last abund.\n"
      "    0      20000.2500      20001.5000     +62.50      -1.25     +64.00       0.75"
      "          5000          9000\n"
      "   12      40000.0000      40003.0000     +75.00      +0.00     +75.00       0.25"
      "           100           200\n"
      "\n"
      "date                 mass     runs flight time, ns     abundance  drift ppm\n"
      "2024-01-01              0        3      20000.2500          5000      +0.00\n"
      "2024-01-02              0        4      20001.5000          9000     +62.50  jump x2\n"
      "2024-01-03             12        1      40003.0000           200     +75.00\n"
      "\n"
      "3 jumps:\n"
      "  2024-01-01 12:00:00 to 2024-01-02 12:00:00: 2 masses, flight time +62.50 to +75.00 ppm\n"
      "  2024-01-02 12:00:00 to 2024-01-03 12:00:00: mass 12, abundance -51.50 %\n"
      "  2024-01-02 12:00:00 to 2024-01-03 12:00:00: mass 12, flight time -8.25 ppm\n"
      "\n"
      "b.csv: 0 runs\n"
      "\n"
      "drift: of the flight time, from the first run on; in m/z it is twice as large\n"
      "jump: a step of more than 6.5 robust deviations of the steps, and of 4 ppm or 40 %\n");
}

TEST(DriftText, SaysWhenRunsWereJoinedAndWhenThereIsNoJump) {
  DriftReport report = SampleReport();
  report.instruments[0].jumps.clear();
  report.runs_per_point = 2;
  EXPECT_THAT(TableOf(report), HasSubstr("\n\nno jumps\n\n"));
  EXPECT_THAT(TableOf(report), ::testing::EndsWith("so many runs that 2 were joined to a point\n"));
}

// One flight time after the other, a day each.
DriftReport WithJumps(std::size_t count) {
  DriftReport report = SampleReport();
  auto& jumps = report.instruments[0].jumps;
  jumps.clear();
  for (std::size_t i = 0; i < count; ++i) {
    const auto moment = kFirst + static_cast<std::int64_t>(i) * kDay;
    jumps.push_back({moment, moment + kDay, 0, Quantity::kFlightTime, 10.0, 10.0});
  }
  return report;
}

TEST(DriftText, ShowsFiftyJumpsAtMost) {
  EXPECT_THAT(TableOf(WithJumps(50)), Not(HasSubstr(" more\n\n")));
  const std::string text = TableOf(WithJumps(52));
  EXPECT_THAT(text, HasSubstr("52 jumps:\n"));
  EXPECT_THAT(text, HasSubstr("2024-02-20 12:00:00: mass 0, flight time +10.00 ppm\n"
                              "  and 2 more\n"));
}

TEST(DriftJson, TellsAllOfIt) {
  const json expected = json::parse(R"({
    "ok": true,
    "files": [
      {"path": "a.csv", "instrument": "lab <1>", "rows": 21, "bad_rows": 3, "first_bad_rows":
        [{"line": 7, "why": "a bad date"}, {"line": 9, "why": "a bad time"}]},
      {"path": "b.csv", "instrument": "b.csv", "rows": 0, "bad_rows": 0, "first_bad_rows": []}],
    "jump_rule": {"sigmas": 6.5, "smallest_ppm": 4.0, "smallest_percent": 40.0},
    "runs_per_point": 1,
    "instruments": [
      {"label": "lab <1>", "runs": 7, "from": "2024-01-01 12:00:00", "to": "2024-01-03 12:00:00",
       "period": "day", "jump_count": 4,
       "masses": [
         {"mass_index": 0, "first_time_ns": 20000.25, "last_time_ns": 20001.5,
          "first_abundance": 5000.0, "last_abundance": 9000.0, "drift_ppm": 62.5,
          "lowest_ppm": -1.25, "highest_ppm": 64.0, "noise_ppm": 0.75, "periods": [
            {"period": "2024-01-01", "runs": 3, "time_ns": 20000.25, "abundance": 5000.0,
             "drift_ppm": 0.0, "jumps": 0},
            {"period": "2024-01-02", "runs": 4, "time_ns": 20001.5, "abundance": 9000.0,
             "drift_ppm": 62.5, "jumps": 2}]},
         {"mass_index": 12, "first_time_ns": 40000.0, "last_time_ns": 40003.0,
          "first_abundance": 100.0, "last_abundance": 200.0, "drift_ppm": 75.0,
          "lowest_ppm": 0.0, "highest_ppm": 75.0, "noise_ppm": 0.25, "periods": [
            {"period": "2024-01-03", "runs": 1, "time_ns": 40003.0, "abundance": 200.0,
             "drift_ppm": 75.0, "jumps": 0}]}],
       "jumps": [
         {"before": "2024-01-01 12:00:00", "after": "2024-01-02 12:00:00", "mass_index": 0,
          "quantity": "flight_time", "step_ppm": 62.5},
         {"before": "2024-01-01 12:00:00", "after": "2024-01-02 12:00:00", "mass_index": 12,
          "quantity": "flight_time", "step_ppm": 75.0},
         {"before": "2024-01-02 12:00:00", "after": "2024-01-03 12:00:00", "mass_index": 12,
          "quantity": "abundance", "step_percent": -51.5},
         {"before": "2024-01-02 12:00:00", "after": "2024-01-03 12:00:00", "mass_index": 12,
          "quantity": "flight_time", "step_ppm": -8.25}]},
      {"label": "b.csv", "runs": 0, "from": null, "to": null, "period": "run", "jump_count": 0,
       "masses": [], "jumps": []}]})");
  EXPECT_EQ(json::parse(JsonOf(SampleReport())), expected);
}

TEST(DriftJson, CountsAllJumpsAndListsTenThousand) {
  const json result = json::parse(JsonOf(WithJumps(10'001)));
  EXPECT_EQ(result["instruments"][0]["jump_count"], 10'001);
  EXPECT_EQ(result["instruments"][0]["jumps"].size(), 10'000u);
}

// The list of charts that the page's script draws.
json ChartsOf(const std::string& page) {
  const std::string tag = "id=\"chart-data\">";
  const auto begin = page.find(tag) + tag.size();
  return json::parse(page.substr(begin, page.find("</script>", begin) - begin));
}

TEST(DriftPage, HandsItsCurvesAndJumpsToTheCharts) {
  const json expected = json::parse(R"([
    {"id": "chart-drift-0", "kind": "history", "quantity": "drift of the flight time, ppm",
     "series": [{"name": "mass 0", "points": [[1704110400000, 0.0], [1704196800000, 62.5]]},
                {"name": "mass 12", "points": [[1704110400000, 0.0]]}],
     "jumps": [[1704196800000, 62.5], [1704196800000, 75.0], [1704283200000, 66.75]]},
    {"id": "chart-abundance-0", "kind": "history", "quantity": "abundance, counts",
     "series": [{"name": "mass 0", "points": [[1704110400000, 5000.0], [1704196800000, 9000.0]]},
                {"name": "mass 12", "points": [[1704110400000, 100.0]]}],
     "jumps": [[1704283200000, 200.0]]}])");
  EXPECT_EQ(ChartsOf(HtmlOf(SampleReport())), expected);
}

TEST(DriftPage, MarksFiveHundredJumpsAndListsTwoHundred) {
  const std::string page = HtmlOf(WithJumps(501));
  EXPECT_EQ(ChartsOf(page)[0]["jumps"].size(), 500u);
  EXPECT_THAT(page, HasSubstr("<p>And 301 more.</p>"));
  EXPECT_THAT(HtmlOf(WithJumps(200)), Not(HasSubstr(" more.</p>")));
}

TEST(DriftPage, TellsAllOfItInTables) {
  const std::string page = HtmlOf(SampleReport());
  for (const char* part : {
           "<a class=\"skip\" href=\"#instrument-0\">",
           "<title>Drift over calibrations</title>",
           "Instruments: 2; runs: 7; jumps: 3.</p>",
           "more than 6.5 robust standard deviations away from the median step, and more than 4 "
           "ppm in flight time or 40 % in abundance.</p>",
           "<li><a href=\"#instrument-0\">lab &lt;1&gt;</a></li>\n"
           "<li><a href=\"#instrument-1\">b.csv</a></li>\n<li><a href=\"#files\">Files</a></li>",
           "<section id=\"instrument-0\">\n<h2>lab &lt;1&gt;</h2>\n"
           "<p>7 runs from 2024-01-01 12:00:00 to 2024-01-03 12:00:00.</p>",
           "<section id=\"instrument-1\">\n<h2>b.csv</h2>\n<p>No rows.</p>\n</section>",
           "<th scope=\"row\">0</th>"
           "<td class=\"number\" data-key=\"first_time_ns\"><data value=\"20000.25\">20000.2500<",
           "data-key=\"last_time_ns\"><data value=\"20001.5\">20001.5000<",
           "data-key=\"drift_ppm\"><data value=\"62.5\">+62.50<",
           "data-key=\"lowest_ppm\"><data value=\"-1.25\">-1.25<",
           "data-key=\"highest_ppm\"><data value=\"64\">+64.00<",
           "data-key=\"noise_ppm\"><data value=\"0.75\">0.75<",
           "data-key=\"first_abundance\"><data value=\"5000\">5000<",
           "data-key=\"last_abundance\"><data value=\"9000\">9000<",
           "<tr><th scope=\"row\">2024-01-01</th><td>0</td><td>3</td>"
           "<td class=\"number\">20000.2500</td><td class=\"number\">5000</td>"
           "<td class=\"number\">0.00</td><td></td></tr>",
           "<tr class=\"marked\"><th scope=\"row\">2024-01-02</th><td>0</td><td>4</td>"
           "<td class=\"number\">20001.5000</td><td class=\"number\">9000</td>"
           "<td class=\"number\">62.50</td><td>2 jumps</td></tr>",
           "<tr><th scope=\"row\">2024-01-02 12:00:00</th><td>2024-01-01 12:00:00</td>"
           "<td>2 masses</td><td>flight time</td><td>+62.50 to +75.00 ppm</td></tr>",
           "<td>mass 12</td><td>abundance</td><td>-51.50 %</td></tr>",
           "<th scope=\"row\">a.csv</th><td>lab &lt;1&gt;</td><td>21</td><td>3</td></tr>",
           "<th scope=\"row\">a.csv</th><td>7</td><td>a bad date</td></tr>",
       }) {
    EXPECT_THAT(page, HasSubstr(part));
  }
  EXPECT_THAT(page, Not(HasSubstr("were joined")));
}

TEST(DriftPage, SaysWhatThereIsNone) {
  DriftReport report = SampleReport();
  report.instruments[0].jumps.clear();
  for (DriftFile& file : report.files) file.read.first_bad_rows.clear();
  report.runs_per_point = 4;
  const std::string page = HtmlOf(report);
  EXPECT_THAT(page, HasSubstr("<p>No jumps.</p>"));
  EXPECT_THAT(page, HasSubstr(" There are so many runs that 4 were joined to a point.</p>"));
  EXPECT_THAT(page, Not(HasSubstr("Bad rows, the first of each file")));
}

}  // namespace
}  // namespace tof::cli
