// The page of a run that log files tell of.
#pragma once

#include <cstddef>

#include "hosts/report/logs/log_folder_runs.h"
#include "hosts/report/report_page.h"

namespace tof::report {

// `shown` counts from 0. Everything but the program's name.
ReportPage LogPageOf(const LoggedRuns& logged, std::size_t shown);

// All runs, for a list of them.
std::vector<RunRow> RunRowsOf(const LoggedRuns& logged, std::size_t shown);

}  // namespace tof::report
