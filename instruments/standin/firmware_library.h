#pragma once

#include <memory>

#include "component/calibrator/collaborators.h"
#include "instruments/standin/instrument_state.h"

namespace tof::standin {

// This instrument's firmware can't search: error 445.
class StandInFirmwareLibrary : public FirmwareLibrary {
 public:
  explicit StandInFirmwareLibrary(std::shared_ptr<InstrumentState> state)
      : state_(std::move(state)) {}

  float BinarySearchForTargetAb(std::int32_t, float, float, float, float, float, float,
                                std::int32_t, float, float) override {
    state_->gate.Enter(Operation::kFirmwareLibraryBinarySearchForTargetAb);
    throw AutomationError(445,
                          "The firmware of this instrument has no search for a target abundance");
  }

 private:
  std::shared_ptr<InstrumentState> state_;
};

}  // namespace tof::standin
