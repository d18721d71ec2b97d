// The peaks of the newest spectrum, for the estimate of the likely A.
#pragma once

#include <cstdint>
#include <memory>

#include "component/calibrator/instrument.h"

namespace tof {

// Creates both lists and fills them with up to `nNumPeaksSought` peaks between the acquisition
// start and end times: the first with peak times in ns for the pairing, the second for the count
// and the trace. With the flag "CalcLikelyA_PartitionSpec" the spectrum is split at a mass, so that
// the heavy calibrants get their share of the peaks. Never raises: after a failure, which the trace
// tells, both lists are empty, or none where they could not be created or emptied.
void GetPeakListsForLikelyACalculation(Instrument& instrument,
                                       std::shared_ptr<PeakList>& peakListInNanoseconds,
                                       std::shared_ptr<PeakList>& peakList,
                                       std::int32_t nNumPeaksSought,
                                       const BoundedArray<double>& masses);

}  // namespace tof
