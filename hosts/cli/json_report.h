// The result as JSON.
#pragma once

#include <string>

#include "hosts/cli/calibration_report.h"

namespace tof::cli {

// An object with every key each time; a figure that is not known or not finite is null. `truth` is
// there only when the instrument knows it.
std::string JsonOf(const CalibrationReport& report);

}  // namespace tof::cli
