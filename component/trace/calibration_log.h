// The calibration log: one text file per module state, opened on first use, to which every dump of
// coefficients is appended.
#pragma once

#include "component/calibrator/instrument.h"

namespace tof {

// Opens "\Logfiles\CalibrationLog_<date>_<time>.txt" and writes its header. Raises when the file
// cannot be opened or written; the log then stays closed.
void OpenCalibrationLog(Instrument& instrument, HostServices& host);

// Writes the coefficients to the trace and to the calibration log, which it opens if need be. The
// flag only chooses the unit that is named, "usecs" or "nsecs". Raises what a read or a write
// raises.
void TraceDumpCoefficients(Instrument& instrument, HostServices& host,
                           const std::shared_ptr<MassCalCoefficients>& coefficients,
                           bool times_in_usecs);

}  // namespace tof
