// Runs the calibrator against a recording, without an instrument.
#pragma once

#include <optional>

#include "hosts/recording/difference.h"
#include "hosts/recording/recording.h"
#include "hosts/recording/replayer.h"

namespace tof::recording {

struct ReplayResult {
  std::optional<Difference> difference;  // the first one
  ReplayCounts counts;                   // what agreed before it
};

// Nothing of the machine is touched: no file, no window, no wait. Raises an InputError, with file
// and line, for a recording that no calibrator can have made.
//
// A recording that was cut is followed to where it ends.
ReplayResult Replay(const Recording& recording);

}  // namespace tof::recording
