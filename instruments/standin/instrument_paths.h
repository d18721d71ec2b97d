#pragma once

#include <memory>
#include <string>

#include "component/calibrator/collaborators.h"
#include "instruments/standin/instrument_state.h"

namespace tof::standin {

class StandInInstrumentPaths : public InstrumentPaths {
 public:
  explicit StandInInstrumentPaths(std::shared_ptr<InstrumentState> state)
      : state_(std::move(state)) {}

  std::string GetBaseFolder() override {
    state_->gate.Enter(Operation::kInstrumentPathsGetBaseFolder);
    return state_->description.base_folder;
  }

 private:
  std::shared_ptr<InstrumentState> state_;
};

}  // namespace tof::standin
