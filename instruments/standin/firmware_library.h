#pragma once

#include <memory>

#include "component/calibrator/collaborators.h"
#include "instruments/standin/instrument_state.h"

namespace tof::standin {

// Searches on the instrument itself, as SearchOnInstrument does. Where the peak may be it is told
// in flight times: it knows nothing of masses.
class StandInFirmwareLibrary : public FirmwareLibrary {
 public:
  explicit StandInFirmwareLibrary(std::shared_ptr<InstrumentState> state)
      : state_(std::move(state)) {}

  // `electrode` and `polarity` are taken as they come: there is one voltage to move, of ions of one
  // sign. `speed_up_factor` lengthens the coarse steps of 20 V; 0, which a setting is that isn't
  // there, and less stand for 1. `precision_volts` is where it stops dividing an interval. Error 5
  // for a window, a band or a range that makes no sense.
  float BinarySearchForTargetAb(std::int32_t electrode, float target_min_abundance,
                                float target_max_abundance, float speed_up_factor,
                                float precision_volts, float low_volts, float high_volts,
                                std::int32_t polarity, float window_start_ns,
                                float window_end_ns) override;

 private:
  std::shared_ptr<InstrumentState> state_;
};

}  // namespace tof::standin
