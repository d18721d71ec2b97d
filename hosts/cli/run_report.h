// `tofcal report`.
#pragma once

#include <ostream>

#include "hosts/cli/exit_code.h"
#include "hosts/cli/options.h"

namespace tof::cli {

// Makes the page of a run from the log files that it left, and lists the runs on `out`. What could
// not be read is said on the page and on `err`; it costs nothing else. Raises an InputError for a
// folder without a run, a run that is not there, or a page that cannot be written.
ExitCode RunReport(const ReportOptions& options, std::ostream& out, std::ostream& err);

}  // namespace tof::cli
