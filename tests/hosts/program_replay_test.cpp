// The program recording a calibration and replaying it.
#include <nlohmann/json.hpp>

#include "tests/hosts/program_test_fixture.h"
#include "tests/hosts/recording/tampering.h"

namespace tof::testing {
namespace {

using nlohmann::json;
using recording::Json;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class ReplayProgram : public ProgramTest {
 protected:
  // A quick calibration that is recorded; its exit code is `expected`.
  void Record(std::vector<std::string> arguments = {}, int expected = 0) const {
    arguments.insert(arguments.end(), {"--record", recording_});
    const ProgramResult run = Calibrate(std::move(arguments));
    ASSERT_EQ(run.exit_code, expected) << run.err;
  }
  ProgramResult Replay(std::vector<std::string> arguments = {}) const {
    arguments.insert(arguments.begin(), {"replay", recording_});
    return RunTofcal(arguments);
  }
  // `alter` changes the lines, which are sealed again.
  template <class Alter>
  void Tamper(Alter alter) const {
    std::vector<Json> objects = recording::ObjectsOf(BytesOf(recording_));
    alter(objects);
    WriteBytes(recording_, recording::Sealed(objects));
  }

  const std::string recording_ = folder_ / "run.jsonl";
};

TEST_F(ReplayProgram, FindsNoDifferenceInWhatItRecorded) {
  Record();
  const auto before = Contents();
  const ProgramResult run = Replay();
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(run.out, StartsWith(recording_ + ": no difference\n"));
  EXPECT_THAT(run.out, HasSubstr(" calls are the same, of them "));
  EXPECT_EQ(Contents(), before) << "a replay writes nothing";
}

TEST_F(ReplayProgram, NeedsNoInstrument) {
  Record();
  std::filesystem::remove(folder_ / "instrument.xml");
  std::filesystem::remove_all(folder_ / "Logfiles");
  EXPECT_EQ(Replay().exit_code, 0);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "Logfiles"));
}

TEST_F(ReplayProgram, RepeatsFailuresAbortsAndMessageBoxes) {
  Record({"--fail", "SetpointTable.GetSetpoint:5"}, 1);
  EXPECT_THAT(BytesOf(recording_), HasSubstr("HostServices.ShowMessageBox"));
  const ProgramResult run = Replay();
  EXPECT_EQ(run.exit_code, 0) << run.out;
  EXPECT_EQ(run.err, "") << "a replay shows no message box";
  Record({"--abort-after", "0.5"}, 1);
  EXPECT_EQ(Replay().exit_code, 0);
  Record({"--fail", "DataDictionary.Initialize:1"}, 1);
  EXPECT_EQ(Replay().exit_code, 0);
}

TEST_F(ReplayProgram, RepeatsAnAbundanceImmuneCalibration) {
  const ProgramResult run =
      CalibrateVirtual({"--spectra", "2", "--set", "Calibration/AIC_RF_Step=10", "--flag",
                        "AIC_MinimizeImpactOfDriftOnCalibPointCollection=Yes", "--flag",
                        "ObfuscateCalibAlg=2", "--record", recording_});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  EXPECT_THAT(BytesOf(recording_), HasSubstr("HostServices.RandomSeed"));
  EXPECT_EQ(Replay().exit_code, 0);
}

TEST_F(ReplayProgram, GivesTheSameResultWithARecordingAsWithout) {
  const auto result = [this](std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--json", "-"});
    json parsed = json::parse(Calibrate(std::move(arguments)).out);
    parsed.erase("wall_seconds");
    parsed.erase("date");
    parsed.erase("files");  // whose names tell the runs apart
    return parsed;
  };
  // The first run leaves files that the second finds.
  result({});
  EXPECT_EQ(result({"--record", recording_}), result({}));
}

TEST_F(ReplayProgram, ShowsTheFirstDifference) {
  Record();
  std::size_t line = 0;
  Tamper([&line](std::vector<Json>& objects) {
    while (objects[line].value("do", "") != "AcqController.SetLikelyAAndT0") ++line;
    objects[line++]["with"][1] = 0.5;
  });
  const ProgramResult run = Replay();
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(run.out, StartsWith(recording_ + ":" + std::to_string(line) + ": differs at call "));
  EXPECT_THAT(run.out, HasSubstr(", in ApplyLikelyAAt0Coefficients\n"
                                 "  expected: AcqController.SetLikelyAAndT0("));
  EXPECT_THAT(run.out, HasSubstr(", 0.5)\n  came:     AcqController.SetLikelyAAndT0("));
  EXPECT_THAT(run.out, HasSubstr("  first difference in the arguments[1]: 0.5 against "));
}

TEST_F(ReplayProgram, TellsMachinesToo) {
  Record();
  json result = json::parse(Replay({"--json", "-"}).out);
  EXPECT_EQ(result["same"], true);
  EXPECT_EQ(result["whole"], true);
  EXPECT_TRUE(result["difference"].is_null());
  EXPECT_GT(result["calls"], 100);
  EXPECT_GT(result["trace_calls"], 50);
  EXPECT_GT(result["log_lines"], 10);
  Tamper([](std::vector<Json>& objects) { objects[5]["do"] = "Other.Operation"; });
  result = json::parse(Replay({"--json", "-"}).out);
  EXPECT_EQ(result["same"], false);
  EXPECT_EQ(result["difference"]["line"], 6);
  EXPECT_EQ(result["difference"]["expected"], "Other.Operation()");
}

TEST_F(ReplayProgram, FollowsARecordingThatWasCutAndSaysWhereItEnds) {
  Record();
  const std::string whole = BytesOf(recording_);
  const std::size_t middle = whole.find('\n', whole.size() / 2) + 1;
  WriteBytes(recording_, whole.substr(0, middle + 40));
  const ProgramResult run = Replay();
  EXPECT_EQ(run.exit_code, 2);
  EXPECT_THAT(run.out, HasSubstr("no difference"));
  EXPECT_THAT(run.err, StartsWith("tofcal: " + recording_ + ":"));
  EXPECT_THAT(run.err, HasSubstr(", expected the closing line of the recording; "
                                 "it was followed up to there\n"));
}

TEST_F(ReplayProgram, RefusesARecordingThatWasChangedOrIsNone) {
  Record();
  std::string text = BytesOf(recording_);
  const auto at = text.find("AcqController");
  const auto line = std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n');
  text[at] = 'B';
  WriteBytes(recording_, text);
  const ProgramResult altered = Replay();
  EXPECT_EQ(altered.exit_code, 2);
  EXPECT_EQ(altered.out, "");
  EXPECT_THAT(altered.err, StartsWith("tofcal: " + recording_ + ":" + std::to_string(line + 1) +
                                      ":1: found the check sum of another text, expected "));
  WriteBytes(recording_, "{\"tof_recording\":2,\"program\":\"x\"}\n");
  EXPECT_THAT(Replay().err, HasSubstr("found a recording of version 2, expected version 1"));
  WriteBytes(recording_, "not a recording\n");
  EXPECT_THAT(Replay().err, HasSubstr("expected the first line of a recording"));
  std::filesystem::remove(recording_);
  EXPECT_EQ(Replay().exit_code, 2);
  EXPECT_THAT(RunTofcal({"replay"}).err, HasSubstr("replay: a recording is missing"));
}

TEST_F(ReplayProgram, NeitherReplacesAnInputNorStartsWithoutAFileToRecordInto) {
  const auto before = Contents();
  EXPECT_EQ(Calibrate({"--record", folder_ / "instrument.xml"}).exit_code, 2);
  EXPECT_EQ(Calibrate({"--record", folder_ / "nowhere/run.jsonl"}).exit_code, 2);
  EXPECT_EQ(Calibrate({"--timeline", folder_ / "instrument.xml"}).exit_code, 2);
  EXPECT_EQ(Calibrate({"--timeline", folder_ / "nowhere/t.json"}).exit_code, 2);
  std::filesystem::remove_all(folder_ / "Logfiles");
  EXPECT_EQ(Contents(), before);
}

TEST_F(ReplayProgram, SaysWhenTheRecordingHasNoRoomAndDeliversTheResultAllTheSame) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no /dev/full on this machine";
  const ProgramResult run = Calibrate({"--record", "/dev/full", "--json", "-"});
  EXPECT_EQ(run.exit_code, 2);
  EXPECT_EQ(json::parse(run.out)["ok"], true);
  EXPECT_THAT(run.err, HasSubstr("/dev/full: found "));
  EXPECT_THAT(run.err, HasSubstr("expected room for the recording"));
}

}  // namespace
}  // namespace tof::testing
