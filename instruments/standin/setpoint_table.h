#pragma once

#include <memory>

#include "component/calibrator/collaborators.h"
#include "instruments/standin/instrument_state.h"

namespace tof::standin {

// A setpoint keeps the type that the description gives it: what is written is converted to it.
class StandInSetpointTable : public SetpointTable {
 public:
  explicit StandInSetpointTable(std::shared_ptr<InstrumentState> state)
      : state_(std::move(state)) {}

  Variant GetSetpoint(std::int32_t id) override;
  void SetSetpoint(std::int32_t id, ValueType type, const Variant& value) override;
  // A double when the instrument is on its way to the value that was written, else the setpoint.
  Variant GetCurrentValue(std::int32_t id) override;

 private:
  std::shared_ptr<InstrumentState> state_;
};

}  // namespace tof::standin
