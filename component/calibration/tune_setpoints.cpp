#include "component/calibration/tune_setpoints.h"

#include <string>

#include "component/automation/convert.h"

namespace tof {
namespace {

bool TuneIsEnabled(Instrument& instrument) {
  return FlagIs(instrument, "Enable1700mzTune", "Yes");
}

double ReadDouble(Instrument& instrument, std::int32_t id) {
  return ToDouble(ReadSetpoint(instrument, id));
}

void WriteDouble(Instrument& instrument, std::int32_t id, double value) {
  WriteSetpoint(instrument, id, ValueType::kDouble, Variant(value));
}

bool PresentModeUsesRfSetpoints(Instrument& instrument) {
  const std::string mode = instrument.data_dictionary->GetModeName();
  return instrument.data_dictionary->ModeUsesRfSetpoints(mode);
}

}  // namespace

void ApplySmallMoleculeCalibSetpoints(Instrument& instrument, SavedTuneSetpoints& saved) {
  if (!TuneIsEnabled(instrument)) return;
  saved.hprf = ReadDouble(instrument, setpoint::kHighPressureRf);
  saved.lprf = ReadDouble(instrument, setpoint::kLowPressureRf);
  saved.ccdv = ReadDouble(instrument, setpoint::kCollisionCellVoltage);
  saved.fragmentor = ReadDouble(instrument, setpoint::kFragmentor);

  const std::string suffix = instrument.acq_controller->GetConfigurationName();
  const auto apply = [&](std::int32_t id, const std::string& key_prefix) {
    WriteDouble(instrument, id, CalibrationSetting(instrument, key_prefix + suffix));
  };
  if (PresentModeUsesRfSetpoints(instrument)) {
    apply(setpoint::kHighPressureRf, "SmallMoleculeCalib_HPRF_");
    apply(setpoint::kLowPressureRf, "SmallMoleculeCalib_LPRF_");
  } else {
    apply(setpoint::kFragmentor, "SmallMoleculeCalib_Fragmentor_");
  }
  apply(setpoint::kCollisionCellVoltage, "SmallMoleculeCalib_CCdV_");
}

void RestoreSmallMoleculeCalibSetpoints(Instrument& instrument, const SavedTuneSetpoints& saved) {
  if (!TuneIsEnabled(instrument)) return;
  if (PresentModeUsesRfSetpoints(instrument)) {
    WriteDouble(instrument, setpoint::kHighPressureRf, saved.hprf);
    WriteDouble(instrument, setpoint::kLowPressureRf, saved.lprf);
  } else {
    WriteDouble(instrument, setpoint::kFragmentor, saved.fragmentor);
  }
  WriteDouble(instrument, setpoint::kCollisionCellVoltage, saved.ccdv);
}

}  // namespace tof
