// The survey by a search per mass, for masses whose abundance is above the band.
#pragma once

#include "component/acquisition/first_spectrum_survey.h"
#include "component/trace/trace.h"

namespace tof {

struct PerMassSearch {
  double entry_value = 0.0;  // of the AIC setpoint; each mass is judged there
  double lower_limit = 0.0;  // of the setpoint in the linear adjustment
  std::int32_t max_allowable_abundance = 0;
  double peak_find_window = 0.0;
};

// Judges every mass at the setpoint's value at entry; one above the maximum is searched, by the
// firmware with the flag "AIC_RunFastVersion", else by the spectrum parser, and then lowered in
// steps of 0.1 until its abundance is in the band, unless "AIC_SkipFinalLinearAbAdj" is "Yes". As a
// part of the survey it traces under the survey's name.
void SearchPerMass(const SurveyContext& context, TraceObj& trace, const PerMassSearch& search);

}  // namespace tof
