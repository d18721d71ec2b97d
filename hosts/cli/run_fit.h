// `tofcal fit`.
#pragma once

#include <ostream>

#include "hosts/cli/exit_code.h"
#include "hosts/cli/options.h"

namespace tof::cli {

// Prints the table, or the JSON document when that goes to standard output. Raises an InputError
// for input that can't be used; answers kFailed, with the reason on `err`, when nothing can be
// fitted.
ExitCode RunFit(const FitOptions& options, std::ostream& out, std::ostream& err);

}  // namespace tof::cli
