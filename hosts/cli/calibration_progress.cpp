#include "hosts/cli/calibration_progress.h"

#include <algorithm>
#include <array>
#include <string>

namespace tof::cli {
namespace {

struct StageOfRoutine {
  std::string_view routine;
  std::string_view stage;
};

// Any other routine is a detail of the one that called it.
constexpr std::array<StageOfRoutine, 9> kStages{{
    {"calibrateTOFMassAxis", "calibrating"},
    {"ApplyLikelyAAt0Coefficients", "estimating A and t0"},
    {"GetAveragedTimesForCalibration", "collecting flight times"},
    {"UseFirstSpectrumToFindTimesAndVoltages", "choosing the voltages"},
    {"SetTheseVoltagesAndGetTimesAndAbundances", "surveying the voltages"},
    {"CollectAdditionalPointsForPurposesOfAveraging_byMass", "collecting flight times"},
    {"CollectAdditionalPointsForPurposesOfAveraging_byMeasurement", "collecting flight times"},
    {"WriteCalibrationLoggingInfo", "writing the logs"},
    {"RestorePreAutotuneInstrumentState", "putting the instrument back"},
}};
constexpr std::string_view kFirstStage = "preparing";

}  // namespace

CalibrationProgress::CalibrationProgress(Progress& line,
                                         const standin::StandInInstrument& instrument,
                                         std::size_t masses, std::int16_t spectra_per_mass,
                                         native::PortableHost& host)
    : line_(line), instrument_(instrument), masses_(masses), spectra_per_mass_(spectra_per_mass) {
  if (!line.IsShown()) return;
  native::FollowTrace(host, *this);
}

void CalibrationProgress::Show() {
  if (!line_.IsShown()) return;
  const std::string_view stage = stages_.empty() ? kFirstStage : stages_.back();
  line_.Show(
      ProgressText({.stage = std::string(stage),
                    .spectra = instrument_.Counted().spectra - spectra_before_,
                    .plan = plan_,
                    .instrument_seconds = instrument_.State().clock->Seconds() - began_sec_}));
}

void CalibrationProgress::Enter(std::string_view routine, std::int32_t /*level*/) {
  const auto* const known = std::find_if(
      kStages.begin(), kStages.end(), [&](const auto& stage) { return stage.routine == routine; });
  const std::string_view outer = stages_.empty() ? kFirstStage : stages_.back();
  stages_.push_back(known != kStages.end() ? known->stage : outer);
  if (routine == "GetAveragedTimesForCalibration") {
    BeginAcquisition(TraditionalPlan(spectra_per_mass_));
  } else if (routine == "GetTimeSpannedCalibrantPeakTimes") {
    BeginAcquisition(AbundanceImmunePlan(instrument_.State(), masses_, spectra_per_mass_));
  } else if (plan_ && plan_->or_more && routine.rfind("CollectAdditional", 0) == 0) {
    // The search is over: what is left is known.
    plan_->spectra += instrument_.Counted().spectra - spectra_before_;
    plan_->or_more = false;
  }
  Show();
}

void CalibrationProgress::Leave() {
  if (stages_.size() > 1) stages_.pop_back();  // behind the outermost one nothing more is shown
  Show();
}

void CalibrationProgress::BeginAcquisition(const SpectraPlan& plan) {
  plan_ = plan;
  spectra_before_ = instrument_.Counted().spectra;
  began_sec_ = instrument_.State().clock->Seconds();
}

}  // namespace tof::cli
