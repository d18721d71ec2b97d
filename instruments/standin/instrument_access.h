// What the collaborators of an instrument do with its state, counted.
#pragma once

#include <string>

#include "instruments/standin/instrument_state.h"
#include "instruments/standin/voltage_search.h"

namespace tof::standin {

// What was written to the setpoint last. Raises error 5, naming the id, for one that the instrument
// doesn't have.
Variant ReadSetpoint(InstrumentState& state, std::int32_t id);

// Takes the time of a write. `value` becomes `type`, then the setpoint's own type; error 6 or 13
// when it can't. A write that fails has changed nothing.
void WriteSetpoint(InstrumentState& state, std::int32_t id, ValueType type, const Variant& value);

// One spectrum that begins now.
spectra::SpectrumSource::SpectrumPtr AcquireSpectrum(InstrumentState& state);

// A setting of the section "Calibration"; an absent one is 0, as the calibrator takes it.
double CalibrationSettingOf(const InstrumentState& state, const std::string& key);

// "AIC_TargetMinAb" to "AIC_TargetMaxAb" times the scale factor, as the calibrator takes them.
AbundanceBand TargetBandOf(const InstrumentState& state);

}  // namespace tof::standin
