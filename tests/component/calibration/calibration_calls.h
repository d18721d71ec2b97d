// The calls that several routines of a calibration make in the same way.
#pragma once

#include <string>

#include "tests/support/expected_calls.h"

namespace tof::fakes {

inline Calls InstrumentStateStored() {
  return InOrder({SetpointRead(128), SetpointRead(18), SetpointRead(150), SetpointRead(149)});
}

inline Calls InstrumentStateRestored(const std::string& sample_rate, const std::string& high_res,
                                     const std::string& gain_channel,
                                     const std::string& setpoint128) {
  return InOrder({SetpointWritten(18, ValueType::kInt16, sample_rate),
                  SetpointWritten(150, ValueType::kBoolean, high_res),
                  SetpointWritten(149, ValueType::kInt16, gain_channel),
                  SetpointWritten(128, ValueType::kInt16, setpoint128)});
}

// The check of coefficients, without the "_FPS" mode.
inline Calls CoefficientsVerified() {
  return InOrder({FlagRead("Calibration_VerifyCalibCoefficients"),
                  {"MassCalCoefficients.GetCoefficientRecord"},
                  FlagRead("Calibration_t0ToUseToStartLookingforA_usec"),
                  SettingRead("Calibration/Targett0PercentError"),
                  {"AcqController.GetCurrentA"},
                  SetpointRead(162),
                  SettingRead("Calibration/TargetAPercentError")});
}

inline Calls LineWritten(const std::string& file) {
  return {"TextStream.WriteLine(" + file + ")"};
}

inline Calls CalibrationLogOpened(const std::string& file) {
  return InOrder({{"Host.CreateFileSystem"},
                  {"Create.InstrumentPaths"},
                  {"InstrumentPaths.GetBaseFolder"},
                  {"Host.Now"},
                  {"FileSystem.OpenForAppending(" + file + ")"},
                  {"Create.AcqController"},
                  {"AcqController.ReadSetpoint(149)"},
                  {"Host.Now"},
                  {"Host.DateTimeText"},
                  LineWritten(file)});
}

// A dump into a calibration log that is open, with tracing off.
inline Calls CoefficientsDumped(const std::string& file) {
  return InOrder({{"MassCalCoefficients.GetCoefficientRecord"},
                  {"MassCalCoefficients.GetCalInfo"},
                  {"Host.Now"},
                  LineWritten(file),
                  {"MassCalCoefficients.GetCoefficientRecord"},
                  {"MassCalCoefficients.GetCalInfo"},
                  Repeated(13, LineWritten(file))});
}

}  // namespace tof::fakes
