// The calibration log: coefficients before and after every fit.
#pragma once

#include <string>
#include <vector>

#include "component/calibrator/mass_time_library.h"
#include "hosts/report/logs/log_lines.h"
#include "hosts/report/report_page.h"

namespace tof::report {

struct CoefficientDump {
  std::string time;  // "YYYYMMDD hh:mm:ss"
  CoefficientRecord coefficients{};
  std::int32_t terms = 0;  // a bit each, C lowest
};

// What one process wrote.
struct CalibrationLogPart {
  std::string file;
  std::string began;  // as the header has it
  std::vector<CoefficientDump> dumps;
  bool damaged = false;  // dumps of this file may be missing
};

// A file holds several parts when processes opened it in the same second. A dump that is damaged is
// complained about and left out.
std::vector<CalibrationLogPart> ReadCalibrationLog(const LogSource& source,
                                                   std::vector<Problem>& problems);

// One fit: the coefficients it started from (dumped twice when the fit was reached) and its result.
struct FittingPass {
  CoefficientDump start;
  std::optional<CoefficientDump> fitted;
};

// The dumps of a part as passes. Where a pass broke off before its fit, there is one dump of it.
std::vector<FittingPass> PassesOf(const std::vector<CoefficientDump>& dumps);

}  // namespace tof::report
