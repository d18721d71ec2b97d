// A small vocabulary for the journal that a test expects.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "component/calibrator/collaborators.h"

namespace tof::fakes {

using Calls = std::vector<std::string>;

inline Calls InOrder(std::initializer_list<Calls> parts) {
  Calls calls;
  for (const Calls& part : parts) calls.insert(calls.end(), part.begin(), part.end());
  return calls;
}

inline Calls Repeated(int times, const Calls& part) {
  Calls calls;
  for (int i = 0; i < times; ++i) calls.insert(calls.end(), part.begin(), part.end());
  return calls;
}

inline Calls SetpointAccess(const std::string& access) {
  return {"AcqController.PrepareSetpointAccess", "AcqController.PrepareSetpointTable",
          "DataDictionary.GetSetpointTable", "SetpointTable." + access};
}

inline Calls SetpointRead(std::int32_t id) {
  return SetpointAccess("GetSetpoint(" + std::to_string(id) + ")");
}

inline Calls SetpointWritten(std::int32_t id, ValueType type, const std::string& value) {
  return SetpointAccess("SetSetpoint(" + std::to_string(id) + "," +
                        std::to_string(static_cast<int>(type)) + "," + value + ")");
}

inline Calls FlagRead(const std::string& key) {
  return {"TuneFlags.GetFlag(" + key + ",-1)"};
}

// `key` with its section, as in "Calibration/UseThisPowerFlag".
inline Calls SettingRead(const std::string& key) {
  return {"CalibSettings.GetValue(" + key + ",0)"};
}

// Of "AIC_TargetMaxAb" or "AIC_TargetMinAb".
inline Calls BandLimitRead(const std::string& key) {
  return InOrder({SettingRead("Calibration/" + key), {"AcqController.GetScaleFactor"}});
}

// What WriteToAICLog asks before it writes a line, and while the flags let it write.
inline Calls AicLogAsked(const std::string& flag_key) {
  return {"DataDictionary.GetFlagKey", "TuneFlags.GetFlag(" + flag_key + ",-1)"};
}
inline Calls AicLogAllowed(const std::string& flag_key) {
  return {"DataDictionary.GetFlagKey", "TuneFlags.GetFlag(" + flag_key + ",-1)",
          "TuneFlags.GetFlag(AICLoggingEnabled,-1)"};
}

}  // namespace tof::fakes
