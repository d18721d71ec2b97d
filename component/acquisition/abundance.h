// Abundances: the profile that scales the target band per mass, the averaged abundance of a peak,
// and the word on masses outside the band.
#pragma once

#include <cstdint>

#include "component/calibrator/aic_log.h"
#include "component/calibrator/peak_records.h"

namespace tof {

// Rewrites `ab_scalars`, one per mass of the instrument's own calibrant list, which may be longer
// or shorter than the masses of the calibration: 1 each, or with the flag "AIC_UseAbScalars" the
// settings "AIC_ScalarForMass0" and so on, a missing one being 0. A failure is passed on and leaves
// the scalars as far as they were filled.
void ReadAbundanceScalarsFromXML(Instrument& instrument, AicLog& aic_log,
                                 BoundedArray<double>& ab_scalars);

// The mean abundance of the peak at `dMass` over `nSpectra` readings of the newest spectrum,
// rounded halves to even. 0 readings are a division of 0 by 0.
std::int32_t GetAveragedPeakAbundance(Instrument& instrument, double dMass, std::int32_t nSpectra);

// One line in the AIC log for a mass whose chosen abundance lies outside the band: the search could
// do no better, and nothing else is done about it. Whether it is above the maximum the search
// itself says, as only it knows the maximum that it compared with; the minimum is not scaled.
// Nothing of the instrument's band is read while the log takes no lines.
void LogIfOutsideBand(Instrument& instrument, AicLog& aic_log, std::int32_t massIdx,
                      const CalibMassPeakData& record, bool above_maximum);

}  // namespace tof
