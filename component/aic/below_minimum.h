// A finishing step over all masses whose abundance stayed below the target minimum.
#pragma once

#include "component/aic/target_search.h"

namespace tof {

// Searches a better voltage for each mass below the minimum that had reached it in the survey, then
// writes the final table to the AIC log. Never raises. The survey flow does not call it: it is kept
// as the object's own operation.
void ReplaceAnyVoltagesForAbundancesBelowMinimum(const TargetSearch& search, const Survey& survey,
                                                 double stepSize, PeakTable& peaks);

}  // namespace tof
