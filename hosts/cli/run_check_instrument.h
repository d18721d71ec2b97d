// `tofcal check-instrument`.
#pragma once

#include "hosts/cli/exit_code.h"
#include "hosts/cli/options.h"
#include "hosts/cli/terminal.h"

namespace tof::cli {

// Runs the conformance suite and prints the table, or the JSON document when that goes to standard
// output. Answers kFailed, with their number on standard error, when checks failed. Raises an
// InputError for input that can't be used and for output that can't be written.
ExitCode RunCheckInstrument(const CheckOptions& options, const Terminal& terminal);

}  // namespace tof::cli
