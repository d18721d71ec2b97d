// Keeping the instrument's own state whole around a calibration.
#pragma once

#include <cstdint>
#include <functional>

#include "component/calibrator/instrument.h"

namespace tof {

// Four setpoints, zeros and False on a new object.
// Written by: StorePreAutotuneInstrumentState; when it fails half-way the rest keep older values.
// Read by: RestorePreAutotuneInstrumentState.  Lives: with the object; not cleared by a restore.
struct SavedInstrumentState {
  bool high_res_enabled = false;         // setpoint 150
  std::int16_t gain_channel_select = 0;  // setpoint 149
  std::int16_t sample_rate = 0;          // setpoint 18
  std::int16_t setpoint128 = 0;
};

void StorePreAutotuneInstrumentState(Instrument& instrument, SavedInstrumentState& saved);

// Runs one calibration of the same object: masses as the driver takes them, number of spectra.
using Recalibration = std::function<void(const Variant& masses, std::int16_t n_spectra)>;

// Writes the saved state back; without an earlier store that is zeros. With `bRecalibrate` one
// further calibration follows, of the expected masses or, when there are none, the instrument's
// own, with as many spectra as the measured times hold, or 1. Never raises.
void RestorePreAutotuneInstrumentState(Instrument& instrument, const SavedInstrumentState& saved,
                                       bool bRecalibrate, const Variant& expected_masses,
                                       const MeasuredTimes& measured_times,
                                       const Recalibration& recalibrate);

// Gain channel 3 at sample rate 2 becomes gain channel 1: a calibration must not run in that
// combination. Undone by the restore alone. Does nothing with `bSkip`.
void EnsureProperInstrumentStateForCalibration(Instrument& instrument, bool bSkip);

}  // namespace tof
