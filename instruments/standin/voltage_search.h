// The search for a voltage at which a peak's abundance lies in a band.
#pragma once

#include <functional>

namespace tof::standin {

// The peak's abundance at a voltage: sets it, waits, takes a spectrum. Noisy.
using AbundanceAt = std::function<double(double volts)>;

struct AbundanceBand {
  double minimum = 0.0;
  double maximum = 0.0;
};

struct VoltageRange {
  double low_volts = 0.0;
  double high_volts = 0.0;
  double coarse_step_volts = 20.0;  // at most 100 steps are made, longer ones if need be
  double precision_volts = 0.1;     // where bisecting ends
};

// The voltage whose abundance is in the band, or the nearest to it that was found. The abundance
// may rise with the voltage, fall with it, or both, one after the other, as an ion guide's
// transmission does. A coarse pass over the range finds the greatest abundance. From there the side
// towards low voltages is bisected, where the abundance rises; the other side when the abundance is
// too great even at the low end. The aim is the geometric middle of the band, and the first reading
// well inside it is taken: so near its limits that noise may take the next reading out of it, a
// reading does not end the search. Without a reading as great as the aim the greatest one is taken.
//
// Raises error 5 for a band or a range that cannot be searched, before anything is measured.
double FindVoltageInBand(const AbundanceAt& abundance_at, const AbundanceBand& band,
                         const VoltageRange& range);

}  // namespace tof::standin
