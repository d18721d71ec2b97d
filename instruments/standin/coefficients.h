// The mass-time library's coefficients as objects of this instrument.
#pragma once

#include <memory>

#include "component/calibrator/mass_time_library.h"
#include "instruments/standin/instrument_state.h"

namespace tof::standin {

// A coefficients object of the instrument's window and bin width whose operations pass the
// instrument's gate.
std::shared_ptr<MassCalCoefficients> MakeCoefficients(const std::shared_ptr<InstrumentState>& state,
                                                      const Calibration& calibration);

}  // namespace tof::standin
