// `tofcal apply`.
#pragma once

#include "hosts/cli/exit_code.h"
#include "hosts/cli/options.h"
#include "hosts/cli/run_calibrate.h"

namespace tof::cli {

// Writes the spectrum with m/z and prints what was applied to it. The output is whole or not there;
// raises an InputError for anything that can't be used.
ExitCode RunApply(const ApplyOptions& options, const Terminal& terminal);

}  // namespace tof::cli
