#pragma once

#include <memory>
#include <string>

#include "component/calibrator/collaborators.h"
#include "instruments/standin/instrument_state.h"

namespace tof::standin {

class StandInCalibSettings : public CalibSettings {
 public:
  explicit StandInCalibSettings(std::shared_ptr<InstrumentState> state)
      : state_(std::move(state)) {}

  void GetValue(const std::string& section, const std::string& key, std::int32_t,
                double& value) override {
    state_->gate.Enter(Operation::kCalibSettingsGetValue);
    const auto& settings = state_->description.settings;
    const auto keys = settings.find(section);
    if (keys == settings.end()) return;
    const auto setting = keys->second.find(key);
    if (setting != keys->second.end()) value = setting->second;
  }

 private:
  std::shared_ptr<InstrumentState> state_;
};

}  // namespace tof::standin
