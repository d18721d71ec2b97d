// The fits that a calibration log tells of.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "hosts/report/logs/calibration_log_reader.h"

namespace tof::apply {

using report::CoefficientDump;

// The blocks of coefficients in the order of the log. A block that is not whole, as a crash leaves
// it, is left out; so is one in microseconds, which no calibration writes. Raises an InputError for
// a text that is no calibration log.
std::vector<CoefficientDump> ParseCalibrationLog(std::string_view text, const std::string& source);

// Those that are the result of a fit. A calibration writes three blocks per fit: what it starts
// from, the same right before the fit, and the fitted ones. So a result follows two equal blocks,
// differs from them, and comes at once: within a minute of the block before it. The log does not
// say whether a result was put in force.
std::vector<CoefficientDump> FitResults(const std::vector<CoefficientDump>& dumps);

}  // namespace tof::apply
