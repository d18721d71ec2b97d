#include "instruments/standin/data_dictionary.h"

#include "component/automation/error.h"
#include "instruments/standin/setpoint_table.h"
#include "instruments/standin/spectrum_display.h"
#include "instruments/standin/status_reader.h"

namespace tof::standin {

void StandInDataDictionary::Initialize() {
  state_->gate.Enter(Operation::kDataDictionaryInitialize);
}

std::shared_ptr<SetpointTable> StandInDataDictionary::GetSetpointTable() {
  state_->gate.Enter(Operation::kDataDictionaryGetSetpointTable);
  return std::make_shared<StandInSetpointTable>(state_);
}

std::shared_ptr<SpectrumDisplay> StandInDataDictionary::GetConfigObject() {
  state_->gate.Enter(Operation::kDataDictionaryGetConfigObject);
  return std::make_shared<StandInSpectrumDisplay>(state_);
}

std::string StandInDataDictionary::GetFlagKey() {
  state_->gate.Enter(Operation::kDataDictionaryGetFlagKey);
  return state_->description.aic_flag_key;
}

double StandInDataDictionary::GetTimeValue() {
  state_->gate.Enter(Operation::kDataDictionaryGetTimeValue);
  return state_->description.acquisition.time_s;
}

std::int32_t StandInDataDictionary::GetAcqStartTime() {
  state_->gate.Enter(Operation::kDataDictionaryGetAcqStartTime);
  return state_->description.acquisition.start_us;
}

std::int32_t StandInDataDictionary::GetAcqEndTime() {
  state_->gate.Enter(Operation::kDataDictionaryGetAcqEndTime);
  return state_->description.acquisition.end_us;
}

std::shared_ptr<StatusReader> StandInDataDictionary::GetStatusReader() {
  state_->gate.Enter(Operation::kDataDictionaryGetStatusReader);
  return std::make_shared<StandInStatusReader>(state_);
}

std::string StandInDataDictionary::GetModeName() {
  state_->gate.Enter(Operation::kDataDictionaryGetModeName);
  return state_->description.mode;
}

bool StandInDataDictionary::ModeUsesRfSetpoints(const std::string& mode_name) {
  state_->gate.Enter(Operation::kDataDictionaryModeUsesRfSetpoints);
  if (mode_name != state_->description.mode) {
    throw AutomationError(static_cast<std::int32_t>(RunTimeError::kInvalidCall),
                          "The instrument has no mode " + mode_name);
  }
  return state_->description.mode_uses_rf_setpoints;
}

}  // namespace tof::standin
