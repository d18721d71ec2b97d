// The data set of all abundance-immune calibrations on a computer.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "hosts/report/logs/aic_log_reader.h"
#include "hosts/report/logs/log_lines.h"
#include "hosts/report/report_page.h"

namespace tof::report {

// The rows that one run appended.
struct DataSetRun {
  std::string date;                             // "YYYYMMDD"
  std::string time;                             // "HHmmss"
  CollectedTimes times_ns;                      // [mass][measurement]
  std::vector<std::vector<double>> abundances;  // [mass][measurement]
};

// Hands out one run after the other, so that a data set of years needs no more room than one of
// them. Rows that cannot be read are complained about and left out.
void ReadDataSet(const LogSource& source, std::vector<Problem>& problems,
                 const std::function<void(DataSetRun)>& take);

}  // namespace tof::report
