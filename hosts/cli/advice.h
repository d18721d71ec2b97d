// What a user can do about a calibration that failed.
#pragma once

#include <string>

#include "hosts/cli/calibration_report.h"
#include "hosts/native/file_journal.h"

namespace tof::cli {

// Whole lines, for standard error; empty when there is nothing to say beyond the error itself.
// `first_error` is the first line of the trace that tells of one, if any.
std::string AdviceOn(const CalibrationReport& report, const native::FileJournal& files,
                     const std::string& first_error);

}  // namespace tof::cli
