#pragma once

#include <memory>
#include <string>

#include "component/calibrator/collaborators.h"
#include "instruments/standin/instrument_state.h"

namespace tof::standin {

// An absent flag is the empty text.
class StandInTuneFlags : public TuneFlags {
 public:
  explicit StandInTuneFlags(std::shared_ptr<InstrumentState> state) : state_(std::move(state)) {}

  std::string GetFlag(const std::string& key, std::int32_t) override {
    state_->gate.Enter(Operation::kTuneFlagsGetFlag);
    const auto flag = state_->description.flags.find(key);
    return flag == state_->description.flags.end() ? std::string() : flag->second;
  }

 private:
  std::shared_ptr<InstrumentState> state_;
};

}  // namespace tof::standin
