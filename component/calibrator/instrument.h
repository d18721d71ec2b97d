// The collaborators that the calibrator object owns, and the accesses that every routine makes to
// them in the same way.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "component/automation/variant.h"
#include "component/calibrator/collaborators.h"

namespace tof {

// Created with the calibrator object, in this order; released with it.
struct Instrument {
  std::shared_ptr<DataDictionary> data_dictionary;
  std::shared_ptr<AcqController> acq_controller;
  std::shared_ptr<SpecParser> spec_parser;
  std::shared_ptr<CalibLogFiles> calib_log_files;
  std::shared_ptr<TuneFlags> tune_flags;
  std::shared_ptr<CalibSettings> calib_settings;
  InstrumentFactory* factory = nullptr;  // for new objects and shared ones
  double settling_time_sec = 0.0;        // read once, at creation; 0 without a configuration object
};

// Setpoint ids; those whose meaning the instrument does not state keep their number.
namespace setpoint {
inline constexpr std::int32_t kSampleRate = 18;
inline constexpr std::int32_t kScintillator = 69;
inline constexpr std::int32_t kCollisionCellVoltage = 85;
inline constexpr std::int32_t kFragmentor = 101;
inline constexpr std::int32_t kCalibrantSelection = 117;
inline constexpr std::int32_t k119 = 119;
inline constexpr std::int32_t k128 = 128;
inline constexpr std::int32_t kGainChannelSelect = 149;
inline constexpr std::int32_t kHighResEnabled = 150;
inline constexpr std::int32_t kFpsMode = 162;
inline constexpr std::int32_t kHighPressureRf = 190;
inline constexpr std::int32_t kLowPressureRf = 191;
}  // namespace setpoint

// The object, or error 91 when there is none.
template <class T>
T& Need(const std::shared_ptr<T>& object) {
  if (object == nullptr) Raise(RunTimeError::kObjectVariableNotSet);
  return *object;
}

// The two preparations on the controller, a setpoint table fetched afresh, then the access.
std::shared_ptr<SetpointTable> PreparedSetpointTable(Instrument& instrument);
Variant ReadSetpoint(Instrument& instrument, std::int32_t id);
void WriteSetpoint(Instrument& instrument, std::int32_t id, ValueType type, const Variant& value);

// A text flag.
std::string Flag(Instrument& instrument, const std::string& key);
bool FlagIs(Instrument& instrument, const std::string& key, std::string_view exact_text);

// A numeric setting of a section, 0 when the instrument has none.
double Setting(Instrument& instrument, const std::string& section, const std::string& key);
double CalibrationSetting(Instrument& instrument, const std::string& key);

// Replaces a peak-find window of exactly -1 by "PeakHandling"/"PeakFindWindowInPercentT", in the
// caller's variable; it stays -1, the parser's own window, when the instrument has no such setting.
void ReplaceDefaultPeakFindWindow(Instrument& instrument, double& window);

// "_FPS" when setpoint 162 is True, else empty: the suffix of settings that differ in that mode.
std::string FpsSuffix(Instrument& instrument);

// The instrument's calibrant masses for the present value of setpoint 117, mode and configuration.
BoundedArray<double> InstrumentCalibrantMasses(Instrument& instrument);

// Error 1 "User aborted" when the user has asked for an abort.
void RaiseIfAborted(Instrument& instrument);

// The band getters: setting times the controller's scale factor.
double AIC_TargetMaxAb(Instrument& instrument);
double AIC_TargetMinAb(Instrument& instrument);

// Sleeps in slices of 400 ms, one per second of the setting rounded to whole ones (deliberately
// 0.4 s for each), lets the host work off its messages after each, and raises error 1 "User
// aborted" as soon as an abort is seen. Nothing at all for 0 or less.
void WaitForSettlingAndCheckAbort(Instrument& instrument, HostServices& host,
                                  double settling_time_sec);

}  // namespace tof
