// Averaging the peak attributes of each calibrant, and the file that the tune report reads.
#pragma once

#include <cstdint>

#include "component/calibrator/aic_log.h"
#include "component/calibrator/peak_records.h"

namespace tof {

// Adds every measurement of each mass to its averaged attributes and divides by their number, which
// is that of mass 0 for all masses; then replaces "\Logfiles\TuneReportCalibData.txt". Expects
// averaged attributes of zero: they are not cleared here, so that a second call doubles the sums.
// Never raises; a mass whose averaging is interrupted keeps its earlier averages. Answers how many
// masses, from the first on, have their averages.
std::int32_t AverageThePeakAttributes(Instrument& instrument, HostServices& host, AicLog& aic_log,
                                      const Variant& expected_masses, PeakTable& peaks);

// The averaged flight time of a mass, of which the first `n_averaged` were averaged: NaN for one
// that was measured and not averaged, as its stored 0 would pass for a measured time.
double AveragedTime(const PeakTable& peaks, std::int32_t mass_index, std::int32_t n_averaged);

}  // namespace tof
