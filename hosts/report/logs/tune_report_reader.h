// The file that the instrument's own tune report is made from.
#pragma once

#include <optional>
#include <vector>

#include "hosts/report/logs/log_lines.h"
#include "hosts/report/report_page.h"

namespace tof::report {

// A number for each mass.
struct TuneReportContent {
  std::vector<double> times_ns;
  std::vector<double> widths_ns;
  std::vector<double> errors_before;  // as the parser reports them; of tofcal's: ppm
};

// None when the three lines that are always there cannot be read.
std::optional<TuneReportContent> ReadTuneReport(const LogSource& source,
                                                std::vector<Problem>& problems);

}  // namespace tof::report
