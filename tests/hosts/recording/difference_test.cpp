// A calibrator that does something else than the recording says is shown where it leaves it. A
// recording that was altered stands for a calibrator that was.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "instruments/spectra/input_error.h"
#include "tests/hosts/recording/recorded_run.h"
#include "tests/hosts/recording/tampering.h"

namespace tof::recording {
namespace {

using ::testing::HasSubstr;

// Each line that is altered is a replay; a stride that shares no factor with the few lines of a
// setpoint access meets every kind of them.
constexpr std::size_t kStride = 7;

Scenario ScenarioOf(const std::string& name) {
  for (const Scenario& scenario : Scenarios()) {
    if (scenario.name == name) return scenario;
  }
  ADD_FAILURE() << name;
  return {};
}

class ReplayDifference : public ::testing::Test {
 protected:
  explicit ReplayDifference(const std::string& scenario = "RampByMeasurementShownTraced")
      : run(ScenarioOf(scenario)), original(ObjectsOf(run.Recorded())) {}

  static ReplayResult ReplayOf(const std::vector<Json>& objects) {
    return Replay(RecordingOf(Sealed(objects), "r.jsonl"));
  }
  // The index of the first line whose operation begins so, from `from` on.
  std::size_t FirstOf(const std::string& operation, std::size_t from = 0) const {
    std::size_t i = from;
    while (i < original.size() && original[i].value("do", "") != operation) ++i;
    EXPECT_LT(i, original.size()) << operation;
    return i;
  }

  ScenarioRun run;
  const std::vector<Json> original;
};

// Changes a leaf of some JSON to another value of its type.
void Alter(Json& json) {
  if (json.is_array() || json.is_object()) {
    for (Json& part : json) return Alter(part);
  }
  if (json.is_string()) {
    json = json.get<std::string>() + "x";
  } else if (json.is_boolean()) {
    json = !json.get<bool>();
  } else if (json.is_number_float()) {
    json = json.get<double>() == 0.0 ? -0.0 : -json.get<double>();
  } else if (json.is_number()) {
    json = json.get<std::int64_t>() + 1;
  } else {
    json = "altered";
  }
}

TEST_F(ReplayDifference, IsFoundAtEachCallWhoseArgumentsAreOthers) {
  for (std::size_t i = 0; i < original.size(); i += kStride) {
    if (!original[i].contains("call") || original[i]["with"].empty()) continue;
    std::vector<Json> altered = original;
    Alter(altered[i]["with"]);
    if (altered[i]["with"] == original[i]["with"] &&
        altered[i]["with"].dump() == original[i]["with"].dump()) {
      continue;  // an empty array inside
    }
    const ReplayResult result = ReplayOf(altered);
    ASSERT_TRUE(result.difference.has_value()) << altered[i];
    EXPECT_EQ(result.difference->line, i + 1) << altered[i];
    EXPECT_EQ(result.difference->call, original[i]["call"].get<std::int64_t>());
    EXPECT_THAT(result.difference->first_part, HasSubstr("arguments["));
    EXPECT_EQ(result.counts.calls + 1, result.difference->call);
  }
}

TEST_F(ReplayDifference, IsFoundAtEachCallThatIsAnother) {
  for (std::size_t i = 0; i < original.size(); i += kStride) {
    if (!original[i].contains("call")) continue;
    std::vector<Json> altered = original;
    altered[i]["do"] = "Something.Else";
    const ReplayResult result = ReplayOf(altered);
    ASSERT_TRUE(result.difference.has_value());
    EXPECT_EQ(result.difference->line, i + 1);
    EXPECT_THAT(result.difference->expected, HasSubstr("Something.Else("));
  }
}

// A call that the recording has not is noticed at the line that stands in its place, unless that
// is the same call again.
TEST_F(ReplayDifference, IsFoundWhereALineIsMissingOrTooMuch) {
  for (std::size_t i = 1; i + 1 < original.size(); i += kStride) {
    if (!original[i].contains("call")) continue;
    const Json& next = original[i + 1];
    const bool twice = next.contains("call") && next["do"] == original[i]["do"] &&
                       next["with"] == original[i]["with"];
    const bool gives_object = original[i]["gives"].is_number_integer();
    if (twice || gives_object) continue;  // objects are called by the numbers of their calls
    std::vector<Json> shorter = original;
    shorter.erase(shorter.begin() + static_cast<std::ptrdiff_t>(i));
    // Numbers of objects that come later are one less, but the calls on them say the old ones.
    const ReplayResult missing = ReplayOf(shorter);
    ASSERT_TRUE(missing.difference.has_value()) << original[i];
    EXPECT_EQ(missing.difference->line, i + 1) << original[i];

    std::vector<Json> longer = original;
    longer.insert(longer.begin() + static_cast<std::ptrdiff_t>(i), original[i]);
    const ReplayResult too_much = ReplayOf(longer);
    ASSERT_TRUE(too_much.difference.has_value()) << original[i];
    EXPECT_EQ(too_much.difference->line, i + 2) << original[i];
  }
}

TEST_F(ReplayDifference, NamesTheRoutineThatRuns) {
  const std::size_t i = FirstOf("SpecParser.GetCalibrantPeakAttributes");
  std::vector<Json> altered = original;
  altered[i]["with"][1] = 12.5;
  const auto difference = ReplayOf(altered).difference;
  ASSERT_TRUE(difference.has_value());
  EXPECT_EQ(difference->routine, "SetTheseVoltagesAndGetTimesAndAbundances");
  EXPECT_THAT(difference->expected, HasSubstr("SpecParser.GetCalibrantPeakAttributes("));
  EXPECT_THAT(difference->expected, HasSubstr("12.5"));
  EXPECT_THAT(difference->first_part, ::testing::StartsWith("arguments[1]: 12.5 against "));
}

TEST_F(ReplayDifference, ShowsTraceLinesAsSuch) {
  std::size_t i = FirstOf("LateBoundObject.Call");
  while (original[i]["with"][0] != "TracePrint") i = FirstOf("LateBoundObject.Call", i + 1);
  std::vector<Json> altered = original;
  const std::string text = altered[i]["with"][1][0];
  altered[i]["with"][1][0] = "something else";
  const auto difference = ReplayOf(altered).difference;
  ASSERT_TRUE(difference.has_value());
  EXPECT_THAT(difference->expected, HasSubstr("trace line \"something else\" of "));
  EXPECT_THAT(difference->came, HasSubstr("trace line " + Json(text).dump()));
}

TEST_F(ReplayDifference, ShowsLogLinesWithTheirFile) {
  const std::size_t opened = FirstOf("FileSystem.OpenForAppending");
  const std::size_t i = FirstOf("TextStream.WriteLine", opened);
  std::vector<Json> altered = original;
  altered[i]["with"][0] = "something else";
  const auto difference = ReplayOf(altered).difference;
  ASSERT_TRUE(difference.has_value());
  EXPECT_EQ(difference->expected,
            "line \"something else\" of " + original[opened]["with"][0].get<std::string>());
}

// The fit depends on the measured times, the times on the peaks: the first call that shows it.
TEST_F(ReplayDifference, FollowsAnAnswerThatIsAnotherToItsFirstEffect) {
  const std::size_t i = FirstOf("SpecParser.GetCalibrantPeakAttributes");
  std::vector<Json> altered = original;
  for (Json& peak : altered[i]["gives"]["values"]) peak[3] = 12345.0;
  const auto difference = ReplayOf(altered).difference;
  ASSERT_TRUE(difference.has_value());
  EXPECT_GT(difference->line, i + 1);
}

TEST_F(ReplayDifference, IsFoundInTheResult) {
  auto end = std::find_if(original.begin(), original.end(), [](const Json& object) {
    return object.value("end", "") == "calibrateTOFMassAxis";
  });
  std::vector<Json> altered = original;
  const auto i = static_cast<std::size_t>(end - original.begin());
  altered[i]["gives"]["nAvgSpectra"] = 77;
  const auto difference = ReplayOf(altered).difference;
  ASSERT_TRUE(difference.has_value());
  EXPECT_EQ(difference->line, i + 1);
  EXPECT_THAT(difference->expected, HasSubstr("end of calibrateTOFMassAxis, which gives "));
  EXPECT_EQ(difference->first_part, "result.nAvgSpectra: 77 against 2");
  EXPECT_EQ(difference->routine, "");
}

TEST_F(ReplayDifference, IsFoundWhereTheCalibratorEndsEarlyOrGoesOn) {
  // The skip flag ends the calibration at once.
  const std::size_t flag = FirstOf("TuneFlags.GetFlag");
  ASSERT_EQ(original[flag]["with"][0], "SkipTOFCalibrationDuringAutotunes");
  std::vector<Json> altered = original;
  altered[flag]["gives"] = "Yes";
  const auto early = ReplayOf(altered).difference;
  ASSERT_TRUE(early.has_value());
  EXPECT_THAT(early->came, HasSubstr("trace line \"1\""));

  altered = original;
  const auto end = std::find_if(altered.begin(), altered.end(), [](const Json& object) {
    return object.value("end", "") == "calibrateTOFMassAxis";
  });
  altered.erase(end - 3, end);
  const auto late = ReplayOf(altered).difference;
  ASSERT_TRUE(late.has_value());
  EXPECT_THAT(late->expected, HasSubstr("end of calibrateTOFMassAxis"));
}

TEST_F(ReplayDifference, TakesMinusZeroForAnotherNumberThanZero) {
  EXPECT_TRUE(AreTheSame(Json(0.0), Json(0.0)));
  EXPECT_FALSE(AreTheSame(Json(0.0), Json(-0.0)));
  EXPECT_FALSE(AreTheSame(Json(5), Json(5.0)));
}

// --- What no calibrator can have made.

void ExpectRefused(const std::vector<Json>& objects, std::size_t line, const std::string& message) {
  try {
    Replay(RecordingOf(Sealed(objects), "r.jsonl"));
    ADD_FAILURE() << "was taken: " << message;
  } catch (const spectra::InputError& error) {
    EXPECT_EQ(error.Place().line, line);
    EXPECT_THAT(error.what(), HasSubstr(message));
  }
}

TEST_F(ReplayDifference, RefusesAnAnswerOfAnotherType) {
  const std::size_t i = FirstOf("DataDictionary.GetFlagKey");
  std::vector<Json> altered = original;
  altered[i]["gives"] = 5;
  ExpectRefused(altered, i + 1,
                "found an answer of another type, expected what the operation gives: found 5, "
                "expected a text");
}

TEST_F(ReplayDifference, RefusesCallsFromOutsideThatAreNone) {
  const auto begin = std::find_if(original.begin(), original.end(), [](const Json& object) {
    return object.value("begin", "") == "calibrateTOFMassAxis";
  });
  const auto line = static_cast<std::size_t>(begin - original.begin()) + 1;
  std::vector<Json> altered = original;
  altered[line - 1]["begin"] = "Destroy";
  ExpectRefused(altered, line, "expected a method of the calibrator");
  altered = original;
  altered[line - 1]["with"].erase("nAvgSpectra");
  ExpectRefused(altered, line, "expected an object with \"nAvgSpectra\"");
  altered = original;
  altered[line - 1]["begin"] = "new";
  ExpectRefused(altered, line, "expected one calibrator at a time");
  altered = {original.front(), *begin, original.back()};
  ExpectRefused(altered, 2, "expected the creation of a calibrator before it");
  altered = original;
  altered.erase(altered.begin() + 1);
  ExpectRefused(altered, 2, "expected a call of the calibrator from outside");
}

}  // namespace
}  // namespace tof::recording
