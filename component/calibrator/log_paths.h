// Where the component's own text files lie.
#pragma once

#include <string>

#include "component/calibrator/instrument.h"

namespace tof {

// The folder "\Logfiles\" of the instrument's base folder, its separator at the end.
std::string LogFolder(Instrument& instrument);

// A file in that folder.
std::string LogFilePath(Instrument& instrument, const std::string& name);

inline constexpr const char* kTuneReportFile = "TuneReportCalibData.txt";

}  // namespace tof
