// The folder that the calibrator writes its logs into.
#pragma once

#include <string>

namespace tof::cli {

// Makes <base_folder>/Logfiles when it is missing and tries whether a file can be made there.
// Raises an InputError when not: a calibration would only find that out at its first log.
void PrepareLogFolder(const std::string& base_folder);

}  // namespace tof::cli
