#include "hosts/recording/replay.h"

#include <memory>

#include "hosts/recording/taped_calibrator.h"
#include "instruments/spectra/input_error.h"

namespace tof::recording {
namespace {

using spectra::InputError;

// Makes the calls from outside one after the other.
class Caller {
 public:
  Caller(Replayer& replayer, const Recording& recording)
      : replayer_(replayer), recording_(recording) {}

  void Make(const Entry& begin) {
    if (begin.name == kNew) {
      Require(calibrator_ == nullptr, begin, "one calibrator at a time");
      calibrator_ = std::make_unique<TapedCalibrator>(replayer_, nullptr, nullptr, nullptr);
      return;
    }
    Require(calibrator_ != nullptr, begin, "the creation of a calibrator before it");
    if (begin.name == kDelete) {
      calibrator_.reset();
      return;
    }
    try {
      CallRecorded(*calibrator_, begin.name, begin.arguments);
    } catch (const MalformedValue& error) {
      throw InputError({recording_.source, begin.line, 1}, "a call that can't be made",
                       error.what());
    }
  }

 private:
  void Require(bool good, const Entry& begin, const char* expected) const {
    if (!good) throw InputError({recording_.source, begin.line, 1}, begin.name, expected);
  }

  Replayer& replayer_;
  const Recording& recording_;
  std::unique_ptr<TapedCalibrator> calibrator_;
};

}  // namespace

ReplayResult Replay(const Recording& recording) {
  Replayer replayer(recording);
  {
    Caller caller(replayer, recording);
    while (const Entry* const begin = replayer.NextBegin()) {
      try {
        caller.Make(*begin);
      } catch (const AutomationError&) {
        // Recorded like that, or the replay has stopped.
      }
    }
  }
  if (replayer.refused()) throw InputError(*replayer.refused());
  return {replayer.difference(), replayer.counts()};
}

}  // namespace tof::recording
