#pragma once

#include <memory>

#include "component/calibrator/collaborators.h"
#include "instruments/standin/instrument_state.h"

namespace tof::standin {

class StandInSpectrumDisplay : public SpectrumDisplay {
 public:
  explicit StandInSpectrumDisplay(std::shared_ptr<InstrumentState> state)
      : state_(std::move(state)) {}

  void SetDisplayUpdate(bool live) override {
    state_->gate.Enter(Operation::kSpectrumDisplaySetDisplayUpdate);
    state_->display_is_live = live;
  }

 private:
  std::shared_ptr<InstrumentState> state_;
};

}  // namespace tof::standin
