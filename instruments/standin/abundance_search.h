// How the parser and the firmware of a virtual instrument search for a voltage.
#pragma once

#include <functional>

#include "instruments/spectra/spectrum.h"
#include "instruments/standin/instrument_state.h"
#include "instruments/standin/voltage_search.h"

namespace tof::standin {

using AbundanceIn = std::function<double(const spectra::Spectrum&)>;

// Moves the setpoint that controls the abundances until `abundance_in` a spectrum lies in the band,
// or as near to it as can be, and leaves it there, settled. Every voltage costs the time of a
// write, of settling and of a spectrum. Raises error 445, naming `searcher`, for an instrument
// whose spectra depend on no setpoint, and whatever FindVoltageInBand does.
double SearchOnInstrument(InstrumentState& state, const char* searcher,
                          const AbundanceIn& abundance_in, const AbundanceBand& band,
                          const VoltageRange& range);

}  // namespace tof::standin
