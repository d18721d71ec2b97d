#include "instruments/standin/instrument_access.h"

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

Variant ReadSetpoint(InstrumentState& state, std::int32_t id) {
  const description::Setpoint& setpoint = SetpointOf(state, id);
  ++state.counters.setpoint_reads;
  return setpoint.value;
}

void WriteSetpoint(InstrumentState& state, std::int32_t id, ValueType type, const Variant& value) {
  const ValueType own_type = SetpointOf(state, id).type;
  const Variant stored = AsType(own_type, AsType(type, value));
  const std::int32_t own_id = OwnSetpointId(state.description, id);
  const double began_sec = state.clock->Seconds();
  state.source->SetpointWritten(own_id, ToDouble(stored));
  state.setpoints.at(own_id).value = stored;
  ++state.counters.setpoint_writes;
  if (state.observer != nullptr) {
    state.observer->SetpointWritten(own_id, ToDouble(stored), began_sec);
  }
}

spectra::SpectrumSource::SpectrumPtr AcquireSpectrum(InstrumentState& state) {
  const double began_sec = state.clock->Seconds();
  spectra::SpectrumSource::SpectrumPtr spectrum = state.source->Acquire();
  ++state.counters.spectra;
  if (state.observer != nullptr) state.observer->SpectrumTaken(began_sec);
  return spectrum;
}

double CalibrationSettingOf(const InstrumentState& state, const std::string& key) {
  const auto& settings = state.description.settings;
  const auto section = settings.find("Calibration");
  if (section == settings.end()) return 0.0;
  const auto setting = section->second.find(key);
  return setting == section->second.end() ? 0.0 : setting->second;
}

AbundanceBand TargetBandOf(const InstrumentState& state) {
  const double scale = state.description.acquisition.scale_factor;
  return {scale * CalibrationSettingOf(state, "AIC_TargetMinAb"),
          scale * CalibrationSettingOf(state, "AIC_TargetMaxAb")};
}

}  // namespace tof::standin
