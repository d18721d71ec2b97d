// The RF voltage that abundance-immune calibration moves.
#pragma once

#include <cstdint>

#include "component/automation/convert.h"
#include "component/calibrator/instrument.h"

namespace tof {

class RfVoltage {
 public:
  RfVoltage(Instrument& instrument, HostServices& host, std::int32_t setpoint_id)
      : instrument_(instrument), host_(host), setpoint_id_(setpoint_id) {}

  std::int32_t setpoint_id() const { return setpoint_id_; }
  double Read() const { return ToDouble(ReadSetpoint(instrument_, setpoint_id_)); }
  void Write(double volts) const {
    WriteSetpoint(instrument_, setpoint_id_, ValueType::kDouble, Variant(volts));
  }
  // After every change; raises error 1 on an abort.
  void Settle() const {
    WaitForSettlingAndCheckAbort(instrument_, host_, instrument_.settling_time_sec);
  }
  // The value that a display shows, through the table's read of current values.
  Variant ReadCurrent() const {
    return Need(PreparedSetpointTable(instrument_)).GetCurrentValue(setpoint_id_);
  }

 private:
  Instrument& instrument_;
  HostServices& host_;
  std::int32_t setpoint_id_;
};

}  // namespace tof
