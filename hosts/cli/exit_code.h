// How the program ends.
#pragma once

namespace tof::cli {

enum ExitCode : int {
  kDone = 0,      // calibrated, fitted, checked, or skipped on the instrument's own instruction
  kFailed = 1,    // the calibration, the fit or a check of the instrument failed
  kBadInput = 2,  // wrong usage, or input that can't be read; nothing was started
};

}  // namespace tof::cli
