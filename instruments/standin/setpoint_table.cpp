#include "instruments/standin/setpoint_table.h"

#include "component/automation/convert.h"
#include "component/automation/error.h"

namespace tof::standin {
namespace {

Variant AsType(ValueType type, const Variant& value) {
  switch (type) {
    case ValueType::kInt16:
      return ToInt16(value);
    case ValueType::kInt32:
      return ToInt32(value);
    case ValueType::kDouble:
      return ToDouble(value);
    case ValueType::kBoolean:
      return ToBool(value);
  }
  Raise(RunTimeError::kTypeMismatch);
}

}  // namespace

Variant StandInSetpointTable::GetSetpoint(std::int32_t id) {
  state_->gate.Enter(Operation::kSetpointTableGetSetpoint);
  return SetpointOf(*state_, id).value;
}

void StandInSetpointTable::SetSetpoint(std::int32_t id, ValueType type, const Variant& value) {
  state_->gate.Enter(Operation::kSetpointTableSetSetpoint);
  const ValueType own_type = SetpointOf(*state_, id).type;
  const Variant stored = AsType(own_type, AsType(type, value));
  const std::int32_t own_id = OwnSetpointId(state_->description, id);
  state_->source->SetpointWritten(own_id, ToDouble(stored));
  state_->setpoints.at(own_id).value = stored;
}

Variant StandInSetpointTable::GetCurrentValue(std::int32_t id) {
  state_->gate.Enter(Operation::kSetpointTableGetCurrentValue);
  const Variant& written = SetpointOf(*state_, id).value;
  const std::optional<double> true_value =
      state_->source->TrueValue(OwnSetpointId(state_->description, id));
  return true_value ? Variant(*true_value) : written;
}

}  // namespace tof::standin
