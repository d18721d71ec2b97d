// The calibration data log: what every spectrum measured, the masses that the new coefficients
// assign and their errors.
#pragma once

#include "component/calibrator/instrument.h"
#include "component/calibrator/peak_records.h"

namespace tof {

// Writes the log through the instrument's log-file opener, and appends two summary lines to the
// tune report if that file exists; it is never created here. Raises the first failure.
void WriteCalibrationLoggingInfo(Instrument& instrument, HostServices& host,
                                 const std::shared_ptr<MassCalCoefficients>& coefficients,
                                 const Variant& expected_masses,
                                 const MeasuredTimes& measured_times);

}  // namespace tof
