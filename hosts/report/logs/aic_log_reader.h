// The log of an abundance-immune calibration.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hosts/report/logs/log_lines.h"
#include "hosts/report/report_page.h"

namespace tof::report {

// The flight times (ns) of one acquisition, [mass][measurement]. All logs of a run have the same.
using CollectedTimes = std::vector<std::vector<double>>;

struct AicLogReading {
  std::optional<double> time_ns;
  double abundance = 0.0;
};

struct AicLogSurveyLine {
  double voltage = 0.0;
  std::vector<AicLogReading> masses;
};

// A mass that no voltage brings into the target band.
struct AicLogOutside {
  std::size_t mass = 0;
  std::string remark;
};

struct AicLogContent {
  std::string file;
  std::string began;  // as the header has it
  std::optional<double> threshold;
  std::vector<double> scalars;
  std::vector<AicLogSurveyLine> survey;
  // The stepwise adjustments of a search per mass, in the order they were made.
  std::vector<std::vector<SurveyPoint>> searches;
  std::vector<AicLogOutside> outside;
  std::vector<double> voltages;  // at which the masses were collected
  CollectedTimes times_ns;
  std::vector<std::vector<double>> abundances;  // [mass][measurement]
  bool averaged = false;                        // it goes on to the averages
};

// What can be read; the rest is complained about. A log of a run that failed ends early, which is
// said too.
AicLogContent ReadAicLog(const LogSource& source, std::vector<Problem>& problems);

}  // namespace tof::report
