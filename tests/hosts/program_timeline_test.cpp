// The program writing a timeline: a file that viewers of the trace-event format can show.
#include <map>
#include <nlohmann/json.hpp>

#include "tests/hosts/program_test_fixture.h"

namespace tof::testing {
namespace {

using nlohmann::json;

constexpr int kRoutines = 1;
constexpr int kSpectra = 2;
constexpr int kSetpoints = 3;

class TimelineProgram : public ProgramTest {
 protected:
  // The events of a run on the built-in instrument, with its result in `result_`.
  json TimelineOf(std::vector<std::string> arguments, int expected_exit_code = 0) {
    arguments.insert(arguments.end(), {"--json", "-", "--timeline", folder_ / "timeline.json"});
    const ProgramResult run = CalibrateVirtual(std::move(arguments));
    EXPECT_EQ(run.exit_code, expected_exit_code) << run.err;
    result_ = json::parse(run.out);
    const json document = json::parse(BytesOf(folder_ / "timeline.json"));
    EXPECT_EQ(document["displayTimeUnit"], "ms");
    return document["traceEvents"];
  }

  std::int64_t CountOf(const json& events, const char* phase, int track) const {
    return std::count_if(events.begin(), events.end(), [&](const json& event) {
      return event["ph"] == phase && event["tid"] == track;
    });
  }

  // Every event is whole, every span is closed in the order it was opened, and on no track does the
  // time go back or beyond the run's, but for a microsecond an event.
  void ExpectWellFormed(const json& events) const {
    std::map<int, std::int64_t> now;
    std::vector<json> open;
    const double end_us = result_["instrument_seconds"].get<double>() * 1e6;
    for (const json& event : events) {
      EXPECT_EQ(event["pid"], 1);
      const int track = event["tid"];
      const std::string phase = event["ph"];
      if (phase == "M") {
        EXPECT_TRUE(event["args"]["name"].is_string());
        continue;
      }
      const std::int64_t at = event["ts"];
      EXPECT_GE(at, now[track]);
      now[track] = at;
      if (phase == "B") {
        EXPECT_TRUE(event["name"].is_string());
        EXPECT_GE(event["args"]["level"], 1);
        open.push_back(event);
      } else if (phase == "E") {
        ASSERT_FALSE(open.empty());
        EXPECT_GT(at, open.back()["ts"]);
        EXPECT_EQ(event["name"], open.back()["name"]);
        EXPECT_EQ(event["args"], open.back()["args"]);
        open.pop_back();
      } else {
        ASSERT_EQ(phase, "X");
        EXPECT_GE(event["dur"], 0);
        EXPECT_TRUE(event["name"].is_string());
        now[track] += event["dur"].get<std::int64_t>();
      }
      EXPECT_LE(static_cast<double>(now[track]), end_us + static_cast<double>(events.size()));
    }
    EXPECT_TRUE(open.empty());
    EXPECT_EQ(CountOf(events, "B", kRoutines), CountOf(events, "E", kRoutines));
    EXPECT_EQ(CountOf(events, "X", kSpectra), result_["counts"]["spectra"]);
    EXPECT_EQ(CountOf(events, "X", kSetpoints), result_["counts"]["setpoint_writes"]);
  }

  json result_;
};

TEST_F(TimelineProgram, ShowsRoutinesSpectraAndSetpointWrites) {
  const json events = TimelineOf({});
  ExpectWellFormed(events);
  EXPECT_GT(result_["counts"]["spectra"], 200);
  const auto first = std::find_if(events.begin(), events.end(),
                                  [](const json& event) { return event["ph"] == "B"; });
  EXPECT_EQ((*first)["name"], "calibrateTOFMassAxis");
  EXPECT_EQ((*first)["args"]["level"], 4);
  // A spectrum of the built-in instrument takes a second.
  for (const json& event : events) {
    if (event["ph"] != "X" || event["tid"] != kSpectra) continue;
    EXPECT_EQ(event["name"], "spectrum");
    EXPECT_EQ(event["dur"], 1000000);
  }
}

TEST_F(TimelineProgram, NamesTheSetpointsAndTheirValues) {
  const json events = TimelineOf({"--suppress-aic"});
  ExpectWellFormed(events);
  const auto write = std::find_if(events.begin(), events.end(), [](const json& event) {
    return event["ph"] == "X" && event["tid"] == kSetpoints;
  });
  ASSERT_NE(write, events.end());
  EXPECT_EQ((*write)["name"], "setpoint " + std::to_string((*write)["args"]["id"].get<int>()));
  EXPECT_TRUE((*write)["args"]["value"].is_number());
}

// The instrument's own searches take spectra and move setpoints that the calibrator does not see.
TEST_F(TimelineProgram, ShowsTheInstrumentsOwnSearchesToo) {
  for (const char* fast : {"AIC_RunFastVersion=No", "AIC_RunFastVersion=Yes"}) {
    ExpectWellFormed(TimelineOf(
        {"--set", "Calibration/AIC_SetpointToUse=83", "--flag", fast, "--spectra", "2"}));
  }
}

TEST_F(TimelineProgram, IsWholeAfterAFailureAndAnAbort) {
  ExpectWellFormed(TimelineOf({"--abort-after", "30"}, 1));
  ExpectWellFormed(TimelineOf({"--fail", "SpecParser.FindPeaks:1"}, 1));
  ExpectWellFormed(TimelineOf({"--fail", "DataDictionary.Initialize:1"}, 1));
}

TEST_F(TimelineProgram, ChangesNeitherTraceNorResult) {
  const auto trace = [this](std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--suppress-aic", "--trace", folder_ / "trace.txt"});
    EXPECT_EQ(CalibrateVirtual(std::move(arguments)).exit_code, 0);
    return BytesOf(folder_ / "trace.txt");
  };
  trace({});  // leaves a tune report, which the next run finds
  const std::string plain = trace({});
  EXPECT_EQ(trace({"--timeline", folder_ / "t.json"}), plain);
  EXPECT_EQ(trace({"--timeline", folder_ / "t.json", "--record", folder_ / "r.jsonl"}), plain);
  EXPECT_EQ(RunTofcal({"replay", folder_ / "r.jsonl"}).exit_code, 0);
}

}  // namespace
}  // namespace tof::testing
