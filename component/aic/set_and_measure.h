// Measuring every calibrant at each of a list of RF voltages.
#pragma once

#include "component/aic/rf_voltage.h"
#include "component/calibrator/aic_log.h"
#include "component/calibrator/peak_records.h"

namespace tof {

// Sets each voltage in turn, takes one spectrum and fills in the flight times and abundances. With
// the flag "ObfuscateCalibAlg" at "2" the order is random and the display is shown now and then.
// The caller sizes the points' arrays. Never raises: what was measured stays, the rest keeps what
// the caller put there. The RF voltage is left at the last point's.
void SetTheseVoltagesAndGetTimesAndAbundances(Instrument& instrument, HostServices& host,
                                              const RfVoltage& rf, const Variant& expected_masses,
                                              AicLog& aic_log, Survey& survey);

// Swaps each position with a random one anywhere in the array. Not a fair shuffle, deliberately:
// only the order of visits depends on it. Never raises.
void RandomizeThisArray(HostServices& host, BoundedArray<std::int32_t>& values);

}  // namespace tof
