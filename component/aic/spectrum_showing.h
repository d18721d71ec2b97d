// Showing the live spectrum now and then while a frozen display hides the search.
#pragma once

#include <cstdint>

#include "component/aic/rf_voltage.h"
#include "component/calibrator/aic_log.h"

namespace tof {

// Shows the live spectrum for some six seconds and freezes the display again. Never raises.
void ShowSpectrum(Instrument& instrument, HostServices& host, const RfVoltage& rf, AicLog& aic_log);

// With the flag "ObfuscateCalibAlg" at "2": counts, and shows the spectrum at every fifth count.
void ShowSpectrumPeriodically(Instrument& instrument, HostServices& host, const RfVoltage& rf,
                              AicLog& aic_log, std::int32_t& counter);

}  // namespace tof
