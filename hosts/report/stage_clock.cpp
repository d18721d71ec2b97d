#include "hosts/report/stage_clock.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace tof::report {
namespace {

struct StageOfRoutine {
  std::string_view routine;
  Stage stage;
};

// Other routines are details of these.
constexpr std::array<StageOfRoutine, 12> kStages{{
    {"calibrateTOFMassAxis", Stage::kPreparing},
    {"ApplyLikelyAAt0Coefficients", Stage::kEstimating},
    {"GetAveragedTimesForCalibration", Stage::kCollecting},
    {"GetTimeSpannedCalibrantPeakTimes", Stage::kPreparing},
    {"UseFirstSpectrumToFindTimesAndVoltages", Stage::kChoosing},
    {"SetTheseVoltagesAndGetTimesAndAbundances", Stage::kSurveying},
    {"CollectAdditionalPointsForPurposesOfAveraging_byMass", Stage::kCollecting},
    {"CollectAdditionalPointsForPurposesOfAveraging_byMeasurement", Stage::kCollecting},
    {"AverageThePeakAttributes", Stage::kAveraging},
    {"WriteDataToSpotFireLog", Stage::kAveraging},
    {"WriteCalibrationLoggingInfo", Stage::kRecording},
    {"RestorePreAutotuneInstrumentState", Stage::kRestoring},
}};

// Lines of the driver that say which of its own steps is next.
struct StageOfLine {
  std::string_view text;
  Stage stage;
};
constexpr std::array<StageOfLine, 5> kStagesOfLines{{
    {"Calling Calibrate()", Stage::kFitting},
    {"Back from Calibrate()", Stage::kChecking},
    {"Calibrate() returned bad coefficients.  Re-attempting calibration", Stage::kPreparing},
    {"1.9", Stage::kRecording},
    {"8", Stage::kRestoring},
}};

std::optional<Stage> OwnStageOf(std::string_view routine) {
  const auto* const found = std::find_if(
      kStages.begin(), kStages.end(), [&](const auto& entry) { return entry.routine == routine; });
  if (found == kStages.end()) return std::nullopt;
  return found->stage;
}

}  // namespace

StageClock::StageClock(std::function<Moment()> now, Observation& seen)
    : now_(std::move(now)), seen_(seen), last_(now_()) {}

Stage StageClock::stage() const {
  return frames_.empty() ? Stage::kPreparing : frames_.back().stage;
}

const std::string& StageClock::routine() const {
  static const std::string none;
  return frames_.empty() ? none : frames_.back().routine;
}

void StageClock::Enter(std::string_view routine, std::int32_t /*level*/) {
  Attribute();
  if (const std::optional<Stage> own = OwnStageOf(routine)) {
    frames_.push_back({std::string(routine), *own});
    // Each fitting pass begins with the estimate.
    if (*own == Stage::kEstimating) ++seen_.passes;
  } else {
    frames_.push_back(frames_.empty() ? Frame{} : frames_.back());
  }
}

void StageClock::Leave() {
  Attribute();
  if (!frames_.empty()) frames_.pop_back();
}

void StageClock::Print(std::string_view line) {
  Attribute();
  if (line == "bEnableAbImmuneCalib[True]") seen_.aic = true;
  if (line == "bEnableAbImmuneCalib[False]") seen_.aic = false;
  const auto* const known = std::find_if(kStagesOfLines.begin(), kStagesOfLines.end(),
                                         [&](const auto& entry) { return entry.text == line; });
  if (known != kStagesOfLines.end() && !frames_.empty()) frames_.back().stage = known->stage;
  if (native::TellsOfAnError(line) && !seen_.failed_in) seen_.failed_in = stage();
}

void StageClock::Attribute() {
  const Moment now = now_();
  const std::int32_t pass = std::max(seen_.passes, 1);
  const auto found = std::find_if(
      seen_.stages.begin(), seen_.stages.end(),
      [&](const StageTime& time) { return time.pass == pass && time.stage == stage(); });
  StageTime& time = found != seen_.stages.end()
                        ? *found
                        : seen_.stages.emplace_back(StageTime{.pass = pass, .stage = stage()});
  time.instrument_seconds += now.instrument_seconds - last_.instrument_seconds;
  time.wall_seconds += now.wall_seconds - last_.wall_seconds;
  time.spectra += now.spectra - last_.spectra;
  last_ = now;
}

}  // namespace tof::report
