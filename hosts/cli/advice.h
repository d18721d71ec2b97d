// What a user can do about a calibration that failed.
#pragma once

#include <string>

#include "hosts/cli/calibration_report.h"
#include "hosts/native/file_journal.h"

namespace tof::cli {

// Whole lines, for standard error; empty when there is nothing to say beyond the error itself.
std::string AdviceOn(const CalibrationReport& report, const native::FileJournal& files);

}  // namespace tof::cli
