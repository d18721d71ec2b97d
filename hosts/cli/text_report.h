// The result as a table for people.
#pragma once

#include <string>

#include "hosts/cli/calibration_report.h"

namespace tof::cli {

// Masses with their errors, coefficients, summary and log files. Of a failed or skipped
// calibration: what there is.
std::string TableOf(const CalibrationReport& report);

}  // namespace tof::cli
