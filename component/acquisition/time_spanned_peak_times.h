// The abundance-immune (AIC) way of measuring calibrant flight times.
#pragma once

#include <cstdint>

#include "component/acquisition/averaged_times.h"
#include "component/calibrator/aic_log.h"

namespace tof {

// Finds a voltage for every mass, collects `nAvgSpectra` measurements there, puts the RF setpoint
// back and averages: flight times (ns) per mass from 0, NaN for a mass whose average was not
// reached, or Empty on a failure. After a failure the RF setpoint and a frozen display stay as they
// are, deliberately. A window of exactly -1 is replaced in the caller's variable.
Variant GetTimeSpannedCalibrantPeakTimes(Instrument& instrument, HostServices& host,
                                         std::int32_t oct_rf_setpoint_id, AicLog& aic_log,
                                         CalibrantData& data, std::int16_t nAvgSpectra,
                                         double& dPeakFindWindow);

}  // namespace tof
