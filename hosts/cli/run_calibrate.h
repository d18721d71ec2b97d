// `tofcal calibrate`.
#pragma once

#include "hosts/cli/exit_code.h"
#include "hosts/cli/options.h"
#include "hosts/cli/terminal.h"

namespace tof::cli {

// Raises an InputError for input that can't be used and for output that can't be written; nothing
// has been started, nor any file replaced, unless it is the result that did not fit.
ExitCode RunCalibrate(const CalibrateOptions& options, const Terminal& terminal);

}  // namespace tof::cli
