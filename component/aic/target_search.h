// Finding, volt by volt, a voltage whose abundance is closer to the target band.
#pragma once

#include "component/aic/set_and_measure.h"

namespace tof {

// What a search for a better voltage reads and moves.
struct TargetSearch {
  Instrument& instrument;
  HostServices& host;
  const RfVoltage& rf;
  const Variant& expected_masses;
  const BoundedArray<double>& ab_scalars;
  AicLog& aic_log;
};

// Walks the voltage one volt at a time through the step above the mass's chosen voltage and moves
// the choice to the volt with the highest abundance that is not above the scaled target maximum
// plus 10 %. Never raises: replacements made before a failure stay, an abort is met again by the
// next wait. The RF voltage is left at the last volt measured.
void FindRFVoltageCloserToTargetAbundance(const TargetSearch& search, PeakTable& peaks,
                                          std::int32_t massIdx, double stepSize);

// Whether the mass reached the target minimum at some surveyed voltage. False on a failure.
bool bThisMassHasHadAnAbundanceAboveTheMin(Instrument& instrument, AicLog& aic_log,
                                           const Survey& survey, std::int32_t massIdx);

}  // namespace tof
