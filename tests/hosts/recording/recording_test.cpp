// Reading recordings: cut, changed, of another version, or none at all.
#include "hosts/recording/recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "instruments/spectra/input_error.h"
#include "tests/hosts/recording/recorded_run.h"
#include "tests/hosts/recording/tampering.h"

namespace tof::recording {
namespace {

using spectra::InputError;
using ::testing::HasSubstr;

// Small enough to do something to each byte of it.
std::string SmallRecording() {
  const testing::TemporaryFolder folder;
  ScenarioRun run(Scenarios().front());
  RecordingFile file(folder / "recording", "a test");
  Recorder recorder(file);
  {
    TapedCalibrator calibrator(recorder, &run.instrument, &run.host, &run.events);
    calibrator.TestNewStuff();
  }
  file.Close(recorder.calls());
  return testing::BytesOf(folder / "recording");
}

std::size_t LineAt(const std::string& text, std::size_t offset) {
  return static_cast<std::size_t>(
             std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(offset), '\n')) +
         1;
}

void ExpectError(const std::string& text, std::size_t line, const std::string& message) {
  try {
    RecordingOf(text, "r.jsonl");
    ADD_FAILURE() << "was taken: " << message;
  } catch (const InputError& error) {
    EXPECT_EQ(error.Place().source, "r.jsonl");
    EXPECT_EQ(error.Place().line, line);
    EXPECT_THAT(error.what(), HasSubstr(message));
  }
}

TEST(Recording, IsReadToWhereItWasCut) {
  const std::string whole = SmallRecording();
  const std::size_t header = whole.find('\n') + 1;
  for (std::size_t length = 0; length < whole.size(); ++length) {
    const std::string text = whole.substr(0, length);
    if (length < header) {
      EXPECT_THROW(RecordingOf(text, "r.jsonl"), InputError) << length;
      continue;
    }
    const Recording recording = RecordingOf(text, "r.jsonl");
    ASSERT_TRUE(recording.cut.has_value()) << text;
    EXPECT_EQ(recording.cut->line, LineAt(text, length));
    EXPECT_FALSE(Replay(recording).difference.has_value()) << text;
  }
  EXPECT_FALSE(RecordingOf(whole, "r.jsonl").cut.has_value());
}

TEST(Recording, SaysInWhichCallItEnds) {
  const testing::TemporaryFolder folder;
  RecordingFile file(folder / "recording", "a test");
  Recorder recorder(file);
  recorder.Exchange({{}, "Parser.Parse", Arguments(1.5)}, [&](std::int64_t) {
    const Recording recording = ReadRecording(folder / "recording");
    EXPECT_TRUE(recording.cut.has_value());
    EXPECT_EQ(recording.cut->found, "a call of Parser.Parse without its answer");
    EXPECT_EQ(recording.entries.size(), 1U);
    EXPECT_EQ(recording.entries.back().arguments, Arguments(1.5));
    EXPECT_FALSE(recording.entries.back().answer.has_value());
    return Json();
  });
}

TEST(Recording, SaysInWhichOfManyCallsItEnds) {
  const testing::TemporaryFolder folder;
  RecordingFile file(folder / "recording", "a test");
  Recorder recorder(file);
  recorder.Exchange({{}, "First.Call", Arguments()}, [](std::int64_t) { return Json(); });
  recorder.Exchange({{}, "Second.Call", Arguments()}, [&](std::int64_t) {
    EXPECT_EQ(ReadRecording(folder / "recording").cut->found,
              "a call of Second.Call without its answer");
    return Json();
  });
}

TEST(Recording, NoticesEachByteThatWasChanged) {
  const std::string whole = SmallRecording();
  for (std::size_t i = 0; i + 1 < whole.size(); ++i) {
    for (const char other : {static_cast<char>(whole[i] ^ 1), '\n'}) {
      if (other == whole[i]) continue;
      std::string altered = whole;
      altered[i] = other;
      try {
        RecordingOf(altered, "r.jsonl");
        ADD_FAILURE() << "byte " << i << " of line " << LineAt(whole, i);
      } catch (const InputError& error) {
        EXPECT_EQ(error.Place().line, LineAt(whole, i)) << error.what();
      }
    }
  }
}

TEST(Recording, NoticesLinesThatAreGoneMovedOrAdded) {
  const std::vector<std::string> lines = LinesOf(SmallRecording());
  for (std::size_t i = 1; i + 1 < lines.size(); ++i) {
    std::vector<std::string> altered = lines;
    altered.erase(altered.begin() + static_cast<std::ptrdiff_t>(i));
    ExpectError(TextOf(altered), i + 1, "found the check sum of another text, expected that of");
    altered = lines;
    std::swap(altered[i], altered[i + 1]);
    ExpectError(TextOf(altered), i + 1, "found the check sum of another text");
  }
  std::vector<std::string> altered = lines;
  altered.push_back(lines.back());
  ExpectError(TextOf(altered), lines.size() + 1, "expected nothing behind the closing line");
}

TEST(Recording, NoticesCallsThatAreNotNumberedOneByOne) {
  std::vector<Json> objects = ObjectsOf(SmallRecording());
  std::vector<std::string> lines;
  std::uint32_t sum = 0;
  for (Json& object : objects) {
    object.erase("crc");
    if (object.value("call", 0) == 3) object["call"] = 4;
    std::string line = object.dump();
    line.pop_back();
    sum = Continued(sum, line);
    lines.push_back(line + SealOf(sum));
  }
  ExpectError(TextOf(lines), 5, "found call 4, expected call 3");
}

TEST(Recording, RefusesAnotherVersionBeforeAnythingElse) {
  std::string text = SmallRecording();
  text.replace(text.find(":1,"), 3, ":2,");
  ExpectError(text, 1, "r.jsonl:1:1: found a recording of version 2, expected version 1");
}

TEST(Recording, RefusesWhatIsNone) {
  ExpectError("", 1, "found an empty file, expected the first line of a recording");
  ExpectError("mass,time\n1,2\n", 1, "found \"mass,time\", expected the first line of a recording");
  ExpectError("{\"ok\":true}\n", 1, "expected the first line of a recording");
  ExpectError("[1]", 1, "expected the first line of a recording");
  ExpectError(Sealed({Json{{"tof_recording", 1}}}), 1, "expected an object with \"program\"");
  EXPECT_THROW(ReadRecording("/nowhere/recording"), InputError);
}

TEST(Recording, RefusesEntriesThatAreNone) {
  const std::vector<Json> objects = ObjectsOf(SmallRecording());
  for (const Json& odd :
       {Json{{"what", 1}}, Json{{"call", 1}}, Json{{"call", 1}, {"do", "x"}, {"with", {1}}},
        Json{{"begin", "new"}}, Json{{"end", 5}, {"gives", 1}},
        Json{{"end", "x"}, {"raises", {{"number", "no"}}}}}) {
    ExpectError(Sealed({objects.front(), odd}), 2, "found an entry that can't be read, expected");
  }
}

}  // namespace
}  // namespace tof::recording
