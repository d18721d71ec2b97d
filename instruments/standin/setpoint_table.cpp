#include "instruments/standin/setpoint_table.h"

#include "instruments/standin/instrument_access.h"

namespace tof::standin {

Variant StandInSetpointTable::GetSetpoint(std::int32_t id) {
  state_->gate.Enter(Operation::kSetpointTableGetSetpoint);
  return ReadSetpoint(*state_, id);
}

void StandInSetpointTable::SetSetpoint(std::int32_t id, ValueType type, const Variant& value) {
  state_->gate.Enter(Operation::kSetpointTableSetSetpoint);
  WriteSetpoint(*state_, id, type, value);
}

Variant StandInSetpointTable::GetCurrentValue(std::int32_t id) {
  state_->gate.Enter(Operation::kSetpointTableGetCurrentValue);
  const Variant written = ReadSetpoint(*state_, id);
  const std::optional<double> true_value =
      state_->source->TrueValue(OwnSetpointId(state_->description, id));
  return true_value ? Variant(*true_value) : written;
}

}  // namespace tof::standin
