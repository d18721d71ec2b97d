// One call of the calibrator.
#pragma once

#include <cstdint>
#include <vector>

#include "component/calibrator/tof_calibrator.h"
#include "hosts/cli/run_outcome.h"
#include "hosts/recording/tape.h"

namespace tof::cli {

struct CalibrationCall {
  std::int16_t spectra = 10;
  std::vector<double> masses;  // m/z
  bool suppress_aic = false;
  OptionalCalibrationArguments optional;
};

// Makes a calibrator of its own for the call. Nothing is thrown: what goes wrong is in the outcome.
// With a `tape`, all that passes between the calibrator and the outside goes over it.
RunOutcome Calibrate(CalibrationCall call, InstrumentFactory& instrument, HostServices& host,
                     recording::Tape* tape = nullptr);

}  // namespace tof::cli
