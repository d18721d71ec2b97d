#include "hosts/recording/taped_data_dictionary.h"

namespace tof::recording {

Variant TapedSetpointTable::GetSetpoint(std::int32_t id) {
  return object_.Ask("SetpointTable.GetSetpoint", Arguments(id),
                     [&] { return inner_->GetSetpoint(id); });
}

void TapedSetpointTable::SetSetpoint(std::int32_t id, ValueType type, const Variant& value) {
  object_.Ask("SetpointTable.SetSetpoint", Arguments(id, type, value),
              [&] { inner_->SetSetpoint(id, type, value); });
}

Variant TapedSetpointTable::GetCurrentValue(std::int32_t id) {
  return object_.Ask("SetpointTable.GetCurrentValue", Arguments(id),
                     [&] { return inner_->GetCurrentValue(id); });
}

void TapedSpectrumDisplay::SetDisplayUpdate(bool live) {
  object_.Ask("SpectrumDisplay.SetDisplayUpdate", Arguments(live),
              [&] { inner_->SetDisplayUpdate(live); });
}

Variant TapedStatusReader::Read(const std::string& name, const std::string& type,
                                std::int32_t zero) {
  return object_.Ask("StatusReader.Read", Arguments(name, type, zero),
                     [&] { return inner_->Read(name, type, zero); });
}

void TapedDataDictionary::Initialize() {
  object_.Ask("DataDictionary.Initialize", Arguments(), [&] { inner_->Initialize(); });
}

std::shared_ptr<SetpointTable> TapedDataDictionary::GetSetpointTable() {
  return object_.AskObject<TapedSetpointTable>("DataDictionary.GetSetpointTable", Arguments(),
                                               [&] { return inner_->GetSetpointTable(); });
}

std::shared_ptr<SpectrumDisplay> TapedDataDictionary::GetConfigObject() {
  return object_.AskObject<TapedSpectrumDisplay>("DataDictionary.GetConfigObject", Arguments(),
                                                 [&] { return inner_->GetConfigObject(); });
}

std::string TapedDataDictionary::GetFlagKey() {
  return object_.Ask("DataDictionary.GetFlagKey", Arguments(),
                     [&] { return inner_->GetFlagKey(); });
}

double TapedDataDictionary::GetTimeValue() {
  return object_.Ask("DataDictionary.GetTimeValue", Arguments(),
                     [&] { return inner_->GetTimeValue(); });
}

std::int32_t TapedDataDictionary::GetAcqStartTime() {
  return object_.Ask("DataDictionary.GetAcqStartTime", Arguments(),
                     [&] { return inner_->GetAcqStartTime(); });
}

std::int32_t TapedDataDictionary::GetAcqEndTime() {
  return object_.Ask("DataDictionary.GetAcqEndTime", Arguments(),
                     [&] { return inner_->GetAcqEndTime(); });
}

std::shared_ptr<StatusReader> TapedDataDictionary::GetStatusReader() {
  return object_.AskObject<TapedStatusReader>("DataDictionary.GetStatusReader", Arguments(),
                                              [&] { return inner_->GetStatusReader(); });
}

std::string TapedDataDictionary::GetModeName() {
  return object_.Ask("DataDictionary.GetModeName", Arguments(),
                     [&] { return inner_->GetModeName(); });
}

bool TapedDataDictionary::ModeUsesRfSetpoints(const std::string& mode_name) {
  return object_.Ask("DataDictionary.ModeUsesRfSetpoints", Arguments(mode_name),
                     [&] { return inner_->ModeUsesRfSetpoints(mode_name); });
}

}  // namespace tof::recording
