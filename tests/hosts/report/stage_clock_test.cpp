#include "hosts/report/stage_clock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hosts/native/followed_trace.h"

namespace tof::report {
namespace {

class StageClockTest : public ::testing::Test {
 protected:
  void Pass(double seconds) { moment_.instrument_seconds += seconds; }
  double SecondsOf(std::int32_t pass, Stage stage) const {
    for (const StageTime& time : seen_.stages) {
      if (time.pass == pass && time.stage == stage) return time.instrument_seconds;
    }
    return 0.0;
  }

  Moment moment_;
  Observation seen_;
  StageClock clock_{[this] { return moment_; }, seen_};
};

TEST_F(StageClockTest, GivesEachStageItsTime) {
  clock_.Enter("calibrateTOFMassAxis", 9);
  Pass(1.0);
  clock_.Enter("ApplyLikelyAAt0Coefficients", 9);
  Pass(2.0);
  clock_.Leave();
  clock_.Enter("GetAveragedTimesForCalibration", 9);
  Pass(4.0);
  clock_.Leave();
  Pass(8.0);
  clock_.Leave();
  EXPECT_EQ(SecondsOf(1, Stage::kPreparing), 9.0);
  EXPECT_EQ(SecondsOf(1, Stage::kEstimating), 2.0);
  EXPECT_EQ(SecondsOf(1, Stage::kCollecting), 4.0);
}

TEST_F(StageClockTest, CountsARoutineWithoutAStageToItsCaller) {
  clock_.Enter("WriteCalibrationLoggingInfo", 9);
  clock_.Enter("SomethingNew", 9);
  Pass(3.0);
  clock_.Leave();
  clock_.Leave();
  EXPECT_EQ(SecondsOf(1, Stage::kRecording), 3.0);
}

TEST_F(StageClockTest, TellsTheFitByItsTwoLines) {
  clock_.Enter("calibrateTOFMassAxis", 9);
  clock_.Print("Calling Calibrate()");
  EXPECT_EQ(clock_.stage(), Stage::kFitting);
  Pass(5.0);
  clock_.Print("Back from Calibrate()");
  EXPECT_EQ(clock_.stage(), Stage::kChecking);
  EXPECT_EQ(SecondsOf(1, Stage::kFitting), 5.0);
  clock_.Print("1.9");
  EXPECT_EQ(clock_.stage(), Stage::kRecording);
  clock_.Print("8");
  EXPECT_EQ(clock_.stage(), Stage::kRestoring);
}

TEST_F(StageClockTest, HearsTheDecisionOnAbundanceImmuneCalibration) {
  EXPECT_FALSE(seen_.aic);
  clock_.Print("bEnableAbImmuneCalib[False]");
  EXPECT_EQ(seen_.aic, false);
  clock_.Print("bEnableAbImmuneCalib[True]");
  EXPECT_EQ(seen_.aic, true);
}

TEST_F(StageClockTest, KeepsThePassesApart) {
  for (int pass = 1; pass <= 2; ++pass) {
    clock_.Enter("ApplyLikelyAAt0Coefficients", 9);
    Pass(1.0);
    clock_.Leave();
  }
  EXPECT_EQ(seen_.passes, 2);
  EXPECT_EQ(SecondsOf(1, Stage::kEstimating), 1.0);
  EXPECT_EQ(SecondsOf(2, Stage::kEstimating), 1.0);
}

TEST_F(StageClockTest, RemembersWhereTheFirstErrorWas) {
  clock_.Enter("calibrateTOFMassAxis", 9);
  clock_.Enter("SetTheseVoltagesAndGetTimesAndAbundances", 9);
  clock_.Print("error[1] in SetTheseVoltagesAndGetTimesAndAbundances(): User aborted");
  clock_.Leave();
  clock_.Print("error[13] in calibrateTOFMassAxis(): Type mismatch");
  EXPECT_EQ(seen_.failed_in, Stage::kSurveying);
}

class CountingTrace : public LateBoundObject {
 public:
  Variant GetProperty(std::string_view) override { return false; }
  void PutProperty(std::string_view, const Variant&) override { ++calls; }
  Variant Call(std::string_view, const std::vector<Variant>&) override {
    ++calls;
    return {};
  }
  int calls = 0;
};

TEST_F(StageClockTest, HearsTheTraceAndHandsItOn) {
  const auto next = std::make_shared<CountingTrace>();
  const auto stages = std::make_shared<StageClock>([this] { return moment_; }, seen_);
  native::FollowedTrace trace(*stages, next);
  trace.Call("Entry", {Variant("WriteCalibrationLoggingInfo"), Variant(std::int32_t{9})});
  EXPECT_EQ(stages->stage(), Stage::kRecording);
  trace.Call("TracePrint", {Variant("1.1"), Variant("x"), Variant(std::int32_t{9})});
  trace.Call("Exit", {Variant("WriteCalibrationLoggingInfo"), Variant(std::int32_t{9})});
  EXPECT_EQ(stages->stage(), Stage::kPreparing);
  EXPECT_EQ(next->calls, 3);
}

}  // namespace
}  // namespace tof::report
