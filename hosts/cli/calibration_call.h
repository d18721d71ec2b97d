// One call of the calibrator.
#pragma once

#include <cstdint>
#include <vector>

#include "component/calibrator/tof_calibrator.h"
#include "hosts/cli/run_outcome.h"

namespace tof::cli {

struct CalibrationCall {
  std::int16_t spectra = 10;
  std::vector<double> masses;  // m/z
  bool suppress_aic = false;
  OptionalCalibrationArguments optional;
};

// Makes a calibrator of its own for the call. Nothing is thrown: what goes wrong is in the outcome.
RunOutcome Calibrate(CalibrationCall call, InstrumentFactory& instrument, HostServices& host);

}  // namespace tof::cli
