// The calibrants in a spectrum, as the parser under check delivers them.
#pragma once

#include <vector>

#include "instruments/conformance/subject.h"

namespace tof::conformance {

struct CalibrantPeak {
  double mass = 0.0;  // m/z that was asked for
  PeakAttribs row0;
  PeakAttribs row1;
};

// One spectrum, parsed with the parser's own window. NotApplicable when the table is not of two
// rows and a column for each mass.
PeakAttribsTable Parsed(Subject& subject, const std::vector<double>& masses);

// Those of `masses` that have an abundance, in their order. NotApplicable when there is none.
std::vector<CalibrantPeak> PeaksFound(Subject& subject, const std::vector<double>& masses);

bool AssignedMassIsNear(const CalibrantPeak& peak);

// The calibrant that is strongest now. NotApplicable where its assigned mass can't be relied on,
// by which it is found again whatever the present coefficients are off by.
CalibrantPeak StrongestCalibrant(Subject& subject);

// What the newest spectrum shows of a peak, averaged over a few readings.
double AbundanceNow(Subject& subject, const CalibrantPeak& peak);

// A mass that flies longer than the acquisition lasts, so that no spectrum can show it.
double MassBeyondTheSpectrum(Subject& subject);

// Raises NotApplicable unless a search for a voltage has something to do: the calibrant's abundance
// is above the band.
void RequireAboveTheBand(Subject& subject, const CalibrantPeak& peak);

// Raises Unmet unless a search has ended as it may: in the band, or at the lower limit.
void RequireEndInTheBand(Subject& subject, const CalibrantPeak& peak, double volts);

// Runs `search`. Error 445, that the object does not support this, says that the instrument has no
// such search: NotApplicable.
void SearchIfThereIsOne(const std::function<void()>& search);

}  // namespace tof::conformance
