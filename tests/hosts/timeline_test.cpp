#include "hosts/timeline/timeline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "hosts/native/followed_trace.h"
#include "hosts/native/silent_trace.h"
#include "hosts/native/virtual_clock.h"

namespace tof::timeline {
namespace {

using nlohmann::json;

class TimelineTest : public ::testing::Test {
 protected:
  // Without the names of the tracks.
  json Events() const {
    json events = json::parse(timeline.Document())["traceEvents"];
    events.erase(events.begin(), events.begin() + 4);
    return events;
  }

  std::shared_ptr<native::VirtualClock> clock = std::make_shared<native::VirtualClock>();
  Timeline timeline{clock};
};

TEST_F(TimelineTest, CountsInMicrosecondsOfTheInstrumentsClock) {
  timeline.Enter("Outer", 4);
  clock->Advance(1.5);
  timeline.Enter("Inner", 9);
  timeline.SpectrumTaken(0.5);
  clock->Advance(0.02);
  timeline.SetpointWritten(84, 75.5, 1.5);
  timeline.Leave();
  timeline.Leave();
  EXPECT_EQ(Events(), json::parse(R"([
    {"ph":"B","pid":1,"tid":1,"ts":0,"name":"Outer","args":{"level":4}},
    {"ph":"B","pid":1,"tid":1,"ts":1500000,"name":"Inner","args":{"level":9}},
    {"ph":"X","pid":1,"tid":2,"ts":500000,"dur":1000000,"name":"spectrum","args":{"number":1}},
    {"ph":"X","pid":1,"tid":3,"ts":1500000,"dur":20000,"name":"setpoint 84",
     "args":{"id":84,"value":75.5}},
    {"ph":"E","pid":1,"tid":1,"ts":1520000,"name":"Inner","args":{"level":9}},
    {"ph":"E","pid":1,"tid":1,"ts":1520001,"name":"Outer","args":{"level":4}}])"));
}

TEST_F(TimelineTest, EndsNowWhatStillRuns) {
  timeline.Leave();  // nothing runs
  timeline.Enter("Outer", 4);
  timeline.Enter("Inner", 9);
  clock->Advance(2.0);
  const json events = Events();
  ASSERT_EQ(events.size(), 4U);
  EXPECT_EQ(events[2]["ph"], "E");
  EXPECT_EQ(events[2]["ts"], 2000000);
  EXPECT_EQ(events[3]["ts"], 2000001);
}

TEST_F(TimelineTest, IsValidJsonWhateverTheNumbersAndNames) {
  timeline.Enter("caf\xE9", 1);
  timeline.SetpointWritten(1, std::nan(""), 0.0);
  EXPECT_TRUE(Events()[1]["args"]["value"].is_null());
}

// A trace that fails still says which routine runs, and its error goes to the calibrator.
TEST_F(TimelineTest, HandsEveryCallOnToTheTraceBehindIt) {
  struct Failing : native::SilentTrace {
    Variant Call(std::string_view, const std::vector<Variant>&) override {
      throw AutomationError(61, "Disk full");
    }
  };
  native::FollowedTrace trace(timeline, std::make_shared<Failing>());
  EXPECT_EQ(trace.GetProperty("mtraceFlag"), Variant(true));
  trace.PutProperty("mnameOfModule", "module");
  EXPECT_THROW(trace.Call("Entry", {"Outer", std::int32_t{4}}), AutomationError);
  EXPECT_THROW(trace.Call("TracePrint", {"text", "Outer", std::int32_t{4}}), AutomationError);
  EXPECT_THROW(trace.Call("Exit", {"Outer", std::int32_t{4}}), AutomationError);
  const json events = Events();
  ASSERT_EQ(events.size(), 2U);
  EXPECT_EQ(events[0]["name"], "Outer");
  EXPECT_EQ(events[1]["ph"], "E");
}

}  // namespace
}  // namespace tof::timeline
