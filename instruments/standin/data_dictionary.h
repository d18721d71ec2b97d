#pragma once

#include <memory>
#include <string>

#include "component/calibrator/collaborators.h"
#include "instruments/standin/instrument_state.h"

namespace tof::standin {

class StandInDataDictionary : public DataDictionary {
 public:
  explicit StandInDataDictionary(std::shared_ptr<InstrumentState> state)
      : state_(std::move(state)) {}

  void Initialize() override;
  std::shared_ptr<SetpointTable> GetSetpointTable() override;
  std::shared_ptr<SpectrumDisplay> GetConfigObject() override;  // always there
  std::string GetFlagKey() override;
  double GetTimeValue() override;
  std::int32_t GetAcqStartTime() override;
  std::int32_t GetAcqEndTime() override;
  std::shared_ptr<StatusReader> GetStatusReader() override;
  std::string GetModeName() override;
  bool ModeUsesRfSetpoints(const std::string& mode_name) override;  // error 5 for another mode

 private:
  std::shared_ptr<InstrumentState> state_;
};

}  // namespace tof::standin
