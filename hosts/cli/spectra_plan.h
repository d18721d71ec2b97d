// How many spectra a calibration will take, as far as its settings say.
#pragma once

#include <cstddef>
#include <cstdint>

#include "instruments/standin/instrument_state.h"

namespace tof::cli {

struct SpectraPlan {
  std::int64_t spectra = 0;
  bool or_more = false;  // how many a search for a voltage takes shows only while it searches
};

SpectraPlan TraditionalPlan(std::int16_t spectra_per_mass);
SpectraPlan AbundanceImmunePlan(const standin::InstrumentState& state, std::size_t masses,
                                std::int16_t spectra_per_mass);

}  // namespace tof::cli
