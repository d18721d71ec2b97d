// What is kept of a parsed spectrum.
#pragma once

#include <cstdint>

#include "component/calibrator/peak_records.h"

namespace tof {

// Copies mass `mass_index` of a parsed spectrum into its record as measurement `measurement`: from
// row 0 the flight time and the attribute at byte 48, from row 1 the attribute at byte 32, the
// assigned mass and the abundance. No other field is kept, deliberately. Error 9 outside the
// bounds.
inline void StoreAttributes(const PeakAttribsTable& parsed, std::int32_t mass_index,
                            std::int32_t measurement, CalibMassPeakData& record) {
  PeakAttribs& row0 = record.SpectrumAttribs(measurement, 0);
  row0.time = parsed(0, mass_index).time;
  row0.attribute48 = parsed(0, mass_index).attribute48;
  PeakAttribs& row1 = record.SpectrumAttribs(measurement, 1);
  row1.attribute32 = parsed(1, mass_index).attribute32;
  row1.time = parsed(1, mass_index).time;
  row1.abundance = parsed(1, mass_index).abundance;
}

}  // namespace tof
