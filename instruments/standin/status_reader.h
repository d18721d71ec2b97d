#pragma once

#include <memory>
#include <string>

#include "component/calibrator/collaborators.h"
#include "instruments/standin/instrument_state.h"

namespace tof::standin {

// Knows the two values that say whether the instrument is ready; any other name is error 5.
class StandInStatusReader : public StatusReader {
 public:
  explicit StandInStatusReader(std::shared_ptr<InstrumentState> state) : state_(std::move(state)) {}

  Variant Read(const std::string& name, const std::string& type, std::int32_t zero) override;

 private:
  std::shared_ptr<InstrumentState> state_;
};

}  // namespace tof::standin
