// Which peaks are isotopes of one ion.
#pragma once

#include <span>
#include <vector>

#include "instruments/masstime/mass_time_model.h"
#include "instruments/peaks/peak_picking.h"

namespace tof::peaks {

// Peaks one carbon-13 apart (1.00335 u, singly charged), by their first, monoisotopic one.
struct Cluster {
  Peak first;
  double abundance = 0.0;  // of all its peaks
};

// Groups `peaks` (ascending time); result in ascending time of the first isotopes. `calibration`
// need not be better than a few per cent: it only gives the spacing. A peak is no isotope of a much
// smaller one, however well the distance fits: the share of the second isotope grows with the mass
// and is bounded by what carbon-rich ions have. Where the spacing is below the peak width, isotopes
// are not resolved and every peak is a cluster of its own.
std::vector<Cluster> GroupIsotopes(std::span<const Peak> peaks,
                                   const masstime::MassTimeModel& calibration,
                                   const PeakWidthModel& width);

// Time from an ion at `time_ns` to the same with one carbon-13 more, ns. 0 when the calibration
// gives no mass there.
double IsotopeSpacing(const masstime::MassTimeModel& calibration, double time_ns);

}  // namespace tof::peaks
