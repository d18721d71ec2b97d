// `tofcal calibrate`.
#pragma once

#include <ostream>

#include "hosts/cli/exit_code.h"
#include "hosts/cli/options.h"

namespace tof::cli {

// Where the program speaks to its user.
struct Terminal {
  std::ostream& out;
  std::ostream& err;
  bool err_is_terminal = false;  // progress is shown there
};

// Raises an InputError for input that can't be used and for output that can't be written; nothing
// has been started, nor any file replaced, unless it is the result that did not fit.
ExitCode RunCalibrate(const CalibrateOptions& options, const Terminal& terminal);

}  // namespace tof::cli
