// The recordings of tests/recordings: each is a run that the calibrator must repeat.
#include <gtest/gtest.h>

#include <filesystem>

#include "hosts/recording/recording.h"
#include "hosts/recording/replay.h"

namespace tof::recording {
namespace {

TEST(KeptRecordings, AreRepeatedCallByCall) {
  int recordings = 0;
  for (const auto& entry :
       std::filesystem::directory_iterator(TOF_SOURCE_DIR "/tests/recordings")) {
    if (entry.path().extension() != ".jsonl") continue;
    ++recordings;
    const Recording recording = ReadRecording(entry.path());
    EXPECT_FALSE(recording.cut.has_value()) << entry.path() << " is not whole";
    const ReplayResult result = Replay(recording);
    if (!result.difference) continue;
    ADD_FAILURE() << recording.source << ":" << result.difference->line << ": in "
                  << result.difference->routine << ": expected " << result.difference->expected
                  << ", came " << result.difference->came << "; " << result.difference->first_part;
  }
  EXPECT_GE(recordings, 3);
}

}  // namespace
}  // namespace tof::recording
