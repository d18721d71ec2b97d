// The setpoints of special tunes: applied before a calibration, put back after it.
#pragma once

#include "component/calibrator/instrument.h"

namespace tof {

// The values in force before, zeros on a new object.
// Written by: ApplySmallMoleculeCalibSetpoints.  Read by: RestoreSmallMoleculeCalibSetpoints.
// Lives: with the object; not cleared by a restore.
struct SavedTuneSetpoints {
  double hprf = 0.0;        // setpoint 190
  double lprf = 0.0;        // setpoint 191
  double fragmentor = 0.0;  // setpoint 101
  double ccdv = 0.0;        // setpoint 85
};

// Both do nothing unless the flag "Enable1700mzTune" is exactly "Yes". Neither writes a trace
// entry.
void ApplySmallMoleculeCalibSetpoints(Instrument& instrument, SavedTuneSetpoints& saved);

// Asks for the mode again instead of remembering it: when it has changed since the apply, the other
// setpoints are restored. Without an earlier apply the zeros of a new object are written. Both are
// deliberate.
void RestoreSmallMoleculeCalibSetpoints(Instrument& instrument, const SavedTuneSetpoints& saved);

}  // namespace tof
