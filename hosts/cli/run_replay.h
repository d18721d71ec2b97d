// `tofcal replay`.
#pragma once

#include <ostream>

#include "hosts/cli/exit_code.h"
#include "hosts/cli/options.h"

namespace tof::cli {

// kDone: the calibrator does what the recording says. kFailed: there is a difference. kBadInput:
// the recording ends early, and up to there is none. Raises an InputError for what is no recording,
// or no longer the one that was made.
ExitCode RunReplay(const ReplayOptions& options, std::ostream& out, std::ostream& err);

}  // namespace tof::cli
