// The abundance-immune (AIC) way of measuring calibrant flight times.
#pragma once

#include <cstdint>

#include "component/automation/variant.h"

namespace tof {

// Averaged flight times per mass, or Empty on a failure. This version has no survey of RF voltages
// yet: it answers Empty, and the trace says so.
Variant GetTimeSpannedCalibrantPeakTimes(std::int16_t nAvgSpectra, double& dPeakFindWindow);

}  // namespace tof
