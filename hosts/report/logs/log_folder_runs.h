// The runs that a folder of log files tells of.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "hosts/report/logs/aic_log_reader.h"
#include "hosts/report/logs/calibration_data_reader.h"
#include "hosts/report/logs/calibration_log_reader.h"
#include "hosts/report/logs/data_set_reader.h"
#include "hosts/report/logs/tune_report_reader.h"

namespace tof::report {

// What the files say of one calibration; each part may be missing.
struct LoggedRun {
  std::string began;            // sorts by time: "YYYYMMDD hh:mm:ss"; empty: no file says when
  std::size_t order = 0;        // among runs that began in the same second, by the calibration log
  std::string calibration_log;  // the file's name
  std::vector<FittingPass> passes;  // from it
  std::optional<AicLogContent> aic_log;
  std::optional<CalibrationDataContent> data;
  std::optional<DataSetRun> data_set;
  std::optional<TuneReportContent> tune_report;
};

struct LoggedRuns {
  std::filesystem::path folder;  // the one that holds the files
  std::vector<LoggedRun> runs;   // the oldest first
  std::vector<Problem> problems;
};

// `folder` holds the logs, or is the base folder with the folder Logfiles in it. Logs are told by
// their first line, whatever their names. Files of one run are brought together by the flight times
// and masses in them, where these say nothing by their times.
LoggedRuns RunsInFolder(const std::filesystem::path& folder);

}  // namespace tof::report
