#include "hosts/com/standin/hosted_instrument.h"

#include <system_error>

#include "component/automation/convert.h"
#include "component/automation/error.h"
#include "hosts/com/automation/text.h"
#include "instruments/spectra/input_error.h"
#include "instruments/standin/instrument_access.h"

namespace tof::com {
namespace {

// What the firmware is told of electrode and polarity, which there is one of each.
constexpr std::int32_t kElectrode = 22;
constexpr std::int32_t kPolarity = 1;

standin::InstrumentOptions OptionsOf(const InstrumentChoice& choice) {
  standin::InstrumentOptions options;
  options.data_folder = choice.data_folder;
  options.seed = choice.seed;
  return options;
}

float AicSetpoint(const standin::InstrumentState& state, float absent) {
  const auto id = ToInt32(standin::CalibrationSettingOf(state, "AIC_SetpointToUse"));
  const auto setpoint = state.setpoints.find(OwnSetpointId(state.description, id));
  if (setpoint == state.setpoints.end()) return absent;
  return static_cast<float>(ToDouble(setpoint->second.value));
}

}  // namespace

// The state of an instrument holds its clock; that reference holds the host as well.
HostedInstrument::HostedInstrument(const InstrumentChoice& choice)
    : host_(std::make_shared<StandInHost>(MakeStandInHost(choice.real_time))),
      instrument_(choice.description, OptionsOf(choice), *host_->services,
                  std::shared_ptr<spectra::InstrumentClock>(host_, host_->clock.get())) {}

void HostedInstrument::MakeLogFolder() const {
  const std::string folder = instrument_.State().description.base_folder + "\\Logfiles";
  std::error_code error;
  std::filesystem::create_directories(Wide(folder), error);
  if (!error) return;
  throw spectra::InputError({folder}, error.message(), "a folder that can be made");
}

float HostedInstrument::SearchTargetAbundance(const Search& search) {
  try {
    search_error_.clear();
    return instrument_.GetFirmwareLibrary()->BinarySearchForTargetAb(
        kElectrode, search.minimum, search.maximum, search.speed_up_factor, search.precision_volts,
        search.low_volts, search.high_volts, kPolarity, search.window_start_ns,
        search.window_end_ns);
  } catch (const AutomationError& error) {
    search_error_ = error.description();
    return AicSetpoint(instrument_.State(), search.low_volts);
  }
}

}  // namespace tof::com
