// The survey by a ramp of the RF voltage.
#pragma once

#include "component/acquisition/first_spectrum_survey.h"
#include "component/trace/trace.h"

namespace tof {

// Surveys the range once for the log, then walks it and keeps for each mass the step with the
// highest abundance below the maximum; a mass that was above it at every step gets the step nearest
// above. As a part of the survey it traces under the survey's name. A range without a step is error
// 9, one of more than 32,767 steps error 6.
void RampVoltage(const SurveyContext& context, TraceObj& trace, const RfRange& range,
                 std::int32_t max_allowable_abundance, double peak_find_window);

}  // namespace tof
