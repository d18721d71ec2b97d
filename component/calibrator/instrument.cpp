#include "component/calibrator/instrument.h"

#include "component/automation/arithmetic.h"
#include "component/automation/convert.h"

namespace tof {
namespace {

constexpr std::int32_t kSettleSliceMs = 400;

double BandLimit(Instrument& instrument, const std::string& key) {
  const double value = CalibrationSetting(instrument, key);
  return Multiply(value, instrument.acq_controller->GetScaleFactor());
}

}  // namespace

std::shared_ptr<SetpointTable> PreparedSetpointTable(Instrument& instrument) {
  instrument.acq_controller->PrepareSetpointAccess();
  instrument.acq_controller->PrepareSetpointTable();
  return instrument.data_dictionary->GetSetpointTable();
}

Variant ReadSetpoint(Instrument& instrument, std::int32_t id) {
  return Need(PreparedSetpointTable(instrument)).GetSetpoint(id);
}

void WriteSetpoint(Instrument& instrument, std::int32_t id, ValueType type, const Variant& value) {
  Need(PreparedSetpointTable(instrument)).SetSetpoint(id, type, value);
}

std::string Flag(Instrument& instrument, const std::string& key) {
  return instrument.tune_flags->GetFlag(key, -1);
}

bool FlagIs(Instrument& instrument, const std::string& key, std::string_view exact_text) {
  return Flag(instrument, key) == exact_text;
}

double Setting(Instrument& instrument, const std::string& section, const std::string& key) {
  double value = 0.0;
  instrument.calib_settings->GetValue(section, key, 0, value);
  return value;
}

double CalibrationSetting(Instrument& instrument, const std::string& key) {
  return Setting(instrument, "Calibration", key);
}

void ReplaceDefaultPeakFindWindow(Instrument& instrument, double& window) {
  if (window != -1.0) return;
  instrument.calib_settings->GetValue("PeakHandling", "PeakFindWindowInPercentT", 0, window);
}

std::string FpsSuffix(Instrument& instrument) {
  return EqualsTrue(ReadSetpoint(instrument, setpoint::kFpsMode)) ? "_FPS" : "";
}

BoundedArray<double> InstrumentCalibrantMasses(Instrument& instrument) {
  const std::int32_t selection = ToInt32(ReadSetpoint(instrument, setpoint::kCalibrantSelection));
  const std::string mode = instrument.data_dictionary->GetModeName();
  const std::string configuration = instrument.acq_controller->GetConfigurationName();
  return instrument.acq_controller->GetCalibrantMasses(selection, mode, configuration);
}

void RaiseIfAborted(Instrument& instrument) {
  if (instrument.acq_controller->IsAbortRequested() != 0) throw AutomationError(1, "User aborted");
}

double AIC_TargetMaxAb(Instrument& instrument) {
  return BandLimit(instrument, "AIC_TargetMaxAb");
}
double AIC_TargetMinAb(Instrument& instrument) {
  return BandLimit(instrument, "AIC_TargetMinAb");
}

void WaitForSettlingAndCheckAbort(Instrument& instrument, HostServices& host,
                                  double settling_time_sec) {
  const std::int32_t slices = ToInt32(settling_time_sec);
  for (std::int64_t i = 1; i <= slices; ++i) {
    host.Sleep(kSettleSliceMs);
    host.ProcessPendingMessages();
    RaiseIfAborted(instrument);
  }
}

}  // namespace tof
