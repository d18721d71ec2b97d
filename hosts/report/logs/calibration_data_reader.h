// The calibration data log of a calibration that succeeded.
#pragma once

#include <string>
#include <vector>

#include "hosts/report/logs/aic_log_reader.h"
#include "hosts/report/logs/log_lines.h"
#include "hosts/report/report_page.h"

namespace tof::report {

struct CalibrationDataContent {
  std::string file;
  std::string ended;  // the moment in the header
  // [mass][spectrum]. NaN where a mass was not found.
  CollectedTimes times_ns;
  std::vector<std::vector<double>> masses;      // m/z that the new coefficients give
  std::vector<std::vector<double>> errors_ppm;  // against the expected mass
};

// What can be read; the rest is complained about.
CalibrationDataContent ReadCalibrationData(const LogSource& source, std::vector<Problem>& problems);

}  // namespace tof::report
