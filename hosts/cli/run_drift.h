// `tofcal drift`.
#pragma once

#include "hosts/cli/exit_code.h"
#include "hosts/cli/options.h"
#include "hosts/cli/run_calibrate.h"

namespace tof::cli {

// Prints the tables, or the JSON document when that goes to standard output. Raises an InputError
// for a file that can't be read; rows that can't be are counted and shown.
ExitCode RunDrift(const DriftOptions& options, const Terminal& terminal);

}  // namespace tof::cli
