// Where the component's own text files lie.
#pragma once

#include <string>

#include "component/calibrator/instrument.h"

namespace tof {

// A file below "\Logfiles\" of the instrument's base folder.
std::string LogFilePath(Instrument& instrument, const std::string& name);

inline constexpr const char* kTuneReportFile = "TuneReportCalibData.txt";

}  // namespace tof
