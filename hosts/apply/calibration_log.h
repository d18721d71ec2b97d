// What a calibration log says of the coefficients.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "component/calibrator/mass_time_library.h"

namespace tof::apply {

// One block of the log: the coefficients as they were at a moment.
struct CoefficientDump {
  std::string date;  // "20240229 13:05:09", local time of the instrument
  CoefficientRecord coefficients{};
  std::uint32_t terms = 0;  // PolyTermsFlags: those that the last fit did fit
};

// The blocks in the order of the log. A block that is not whole, as a crash leaves it, is left out;
// so is one in microseconds, which no calibration writes. Raises an InputError for a file that is
// no calibration log.
std::vector<CoefficientDump> ReadCalibrationLog(const std::filesystem::path& path);
std::vector<CoefficientDump> ParseCalibrationLog(std::string_view text, const std::string& source);

// Those that are the result of a fit. A calibration writes three blocks per fit: what it starts
// from, the same right before the fit, and the fitted ones. So a result follows two equal blocks,
// differs from them, and comes at once: within a minute of the block before it. The log does not
// say whether a result was put in force.
std::vector<CoefficientDump> FitResults(const std::vector<CoefficientDump>& dumps);

}  // namespace tof::apply
