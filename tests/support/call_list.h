// A list of collaborator calls, put together in the words of the instrument.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace tof::fakes {

class CallList {
 public:
  CallList& Call(std::string call) {
    calls_.push_back(std::move(call));
    return *this;
  }
  CallList& Times(int n, const std::string& call) {
    for (int i = 0; i < n; ++i) Call(call);
    return *this;
  }
  // The two preparations, a fresh setpoint table, the access.
  CallList& Access(const std::string& access) {
    return Call("AcqController.PrepareSetpointAccess")
        .Call("AcqController.PrepareSetpointTable")
        .Call("DataDictionary.GetSetpointTable")
        .Call("SetpointTable." + access);
  }
  CallList& Read(std::int32_t id) { return Access("GetSetpoint(" + std::to_string(id) + ")"); }
  // `written`: id, type code, value, as in "149,2,1".
  CallList& Write(const std::string& written) { return Access("SetSetpoint(" + written + ")"); }
  CallList& Flag(const std::string& key) { return Call("TuneFlags.GetFlag(" + key + ",-1)"); }
  CallList& Setting(const std::string& section_and_key) {
    return Call("CalibSettings.GetValue(" + section_and_key + ",0)");
  }
  CallList& Append(const CallList& more) {
    calls_.insert(calls_.end(), more.calls_.begin(), more.calls_.end());
    return *this;
  }

  const std::vector<std::string>& calls() const { return calls_; }

 private:
  std::vector<std::string> calls_;
};

// The store and the restore of the instrument state, and the check of coefficients.
inline CallList StoreCalls() {
  return CallList().Read(128).Read(18).Read(150).Read(149);
}
inline CallList RestoreCalls(const std::string& sample_rate, const std::string& high_res,
                             const std::string& gain_channel, const std::string& setpoint128) {
  return CallList()
      .Write("18,2," + sample_rate)
      .Write("150,11," + high_res)
      .Write("149,2," + gain_channel)
      .Write("128,2," + setpoint128);
}
inline CallList VerifyCalls() {
  return CallList()
      .Flag("Calibration_VerifyCalibCoefficients")
      .Call("MassCalCoefficients.GetCoefficientRecord")
      .Flag("Calibration_t0ToUseToStartLookingforA_usec")
      .Setting("Calibration/Targett0PercentError")
      .Call("AcqController.GetCurrentA")
      .Read(162)
      .Setting("Calibration/TargetAPercentError");
}
// A dump of coefficients with tracing off, into a calibration log that is open.
inline CallList DumpCalls(const std::string& log) {
  const std::string line = "TextStream.WriteLine(" + log + ")";
  return CallList()
      .Call("MassCalCoefficients.GetCoefficientRecord")
      .Call("MassCalCoefficients.GetCalInfo")
      .Call("Host.Now")
      .Call(line)
      .Call("MassCalCoefficients.GetCoefficientRecord")
      .Call("MassCalCoefficients.GetCalInfo")
      .Times(13, line);
}

}  // namespace tof::fakes
