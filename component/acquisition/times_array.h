// The store of the calibrants' peak attributes.
#pragma once

#include <cstdint>

#include "component/automation/variant.h"
#include "component/calibrator/peak_records.h"

namespace tof {

// Sizes `peaks` afresh, all zero: one record per expected mass with `nAvgSpectra` measurements. 0
// measurements is an empty array; a negative number error 9.
void InitializeTimesArray(std::int32_t nAvgSpectra, const Variant& expected_masses,
                          PeakTable& peaks);

}  // namespace tof
