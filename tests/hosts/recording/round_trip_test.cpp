// What is recorded is what happened, and a replay finds the same again.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "tests/hosts/recording/recorded_run.h"

namespace tof::recording {
namespace {

std::map<std::string, std::string> FilesOf(const FakeHost& host) {
  std::map<std::string, std::string> files;
  for (const auto& [path, file] : host.files) files[path] = file.bytes;
  return files;
}

void ExpectSame(const ScenarioRun& recorded, const ScenarioRun& plain) {
  EXPECT_EQ(recorded.journal.entries(), plain.journal.entries());
  EXPECT_EQ(FilesOf(recorded.host), FilesOf(plain.host));
  EXPECT_EQ(recorded.host.message_boxes, plain.host.message_boxes);
  EXPECT_EQ(recorded.host.OpenStreams(), plain.host.OpenStreams());
  EXPECT_EQ(recorded.events.events, plain.events.events);
  EXPECT_EQ(recorded.has_coefficients, plain.has_coefficients);
  EXPECT_EQ(recorded.creation_failed, plain.creation_failed);
  EXPECT_EQ(Encoded(recorded.times), Encoded(plain.times));
  EXPECT_EQ(Encoded(recorded.averaged), Encoded(plain.averaged));
  EXPECT_EQ(recorded.optional.dPeakFindTimeWindow, plain.optional.dPeakFindTimeWindow);
  EXPECT_EQ(Encoded(recorded.instrument.in_force->record),
            Encoded(plain.instrument.in_force->record));
}

void ExpectNoDifference(const std::string& recording, std::size_t calls) {
  const ReplayResult result = Replay(RecordingOf(recording, "a recording"));
  if (result.difference) {
    ADD_FAILURE() << "line " << result.difference->line << ": expected "
                  << result.difference->expected << ", came " << result.difference->came;
  }
  EXPECT_EQ(result.counts.calls, static_cast<std::int64_t>(calls));
}

class RoundTrip : public ::testing::TestWithParam<Scenario> {};

TEST_P(RoundTrip, RecordingChangesNothing) {
  ScenarioRun plain(GetParam());
  plain.Plainly();
  ScenarioRun recorded(GetParam());
  recorded.Recorded();
  ExpectSame(recorded, plain);
}

TEST_P(RoundTrip, ReplayFindsNoDifference) {
  ScenarioRun run(GetParam());
  const std::string recording = run.Recorded();
  // The event is a call to the outside as well.
  ExpectNoDifference(recording, run.journal.count() + run.events.events.size());
}

TEST_P(RoundTrip, TheSameRunGivesTheSameBytes) {
  EXPECT_EQ(ScenarioRun(GetParam()).Recorded(), ScenarioRun(GetParam()).Recorded());
}

// Each call fails once, then an abort is asked for before it: sampled, as each is a whole run.
TEST_P(RoundTrip, HoldsForFaultsAndAborts) {
  ScenarioRun whole(GetParam());
  whole.Plainly();
  const std::size_t calls = whole.journal.count();
  constexpr std::size_t kRuns = 40;
  for (std::size_t n = 0; n < calls; n += calls / kRuns + 1) {
    SCOPED_TRACE(whole.journal.entries()[n]);
    ScenarioRun faulty(GetParam());
    faulty.journal.fail_from = n;
    const std::string recording = faulty.Recorded();
    ExpectNoDifference(recording, faulty.journal.count() + faulty.events.events.size());
    ScenarioRun plain(GetParam());
    plain.journal.fail_from = n;
    plain.Plainly();
    ExpectSame(faulty, plain);

    ScenarioRun aborted(GetParam());
    aborted.journal.abort_before = n;
    aborted.journal.request_abort = [&] { aborted.instrument.abort_requested = -1; };
    const std::string of_aborted = aborted.Recorded();
    ExpectNoDifference(of_aborted, aborted.journal.count() + aborted.events.events.size());
  }
}

INSTANTIATE_TEST_SUITE_P(Scenarios, RoundTrip, ::testing::ValuesIn(Scenarios()),
                         [](const auto& one) { return one.param.name; });

TEST(Recorder, KeepsNumberSourceAndDescriptionOfAnError) {
  ScenarioRun run(Scenarios().front());
  run.journal.fail_operation = "DataDictionary.Initialize";
  const std::string recording = run.Recorded();
  EXPECT_TRUE(run.creation_failed);
  EXPECT_THAT(recording,
              ::testing::HasSubstr("\"do\":\"DataDictionary.Initialize\",\"with\":[],\"raises\":"
                                   "{\"number\":4711,\"source\":\"\",\"description\":"
                                   "\"Injected fault\"}"));
}

// A host that works off its messages may be called again by its own windows.
TEST(Recorder, LeavesOutWhatHappensInsideACall) {
  Scenario scenario = Scenarios().back();
  ScenarioRun run(scenario);
  const testing::TemporaryFolder folder;
  RecordingFile file(folder / "recording", "a test");
  Recorder recorder(file);
  TapedHost other(recorder, &run.host);
  run.host.on_messages = [&] { other.Now(); };
  run.On(recorder);
  file.Close(recorder.calls());
  const Recording recording = ReadRecording(folder / "recording");
  EXPECT_EQ(Replay(recording).difference.has_value(), false);
  EXPECT_EQ(recording.cut.has_value(), false);
}

// A full disk ends the recording, not the calibration.
TEST(Recorder, LosesTheRecordingRatherThanTheCalibration) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no /dev/full on this machine";
  ScenarioRun run(Scenarios().front());
  RecordingFile file("/dev/full", "a test");
  Recorder recorder(file);
  run.On(recorder);
  file.Close(recorder.calls());
  EXPECT_TRUE(run.has_coefficients);
  ASSERT_TRUE(file.failure().has_value());
  EXPECT_THAT(*file.failure(), ::testing::HasSubstr("space"));
}

}  // namespace
}  // namespace tof::recording
