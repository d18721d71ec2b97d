#include "hosts/recording/taped_configuration.h"

namespace tof::recording {

std::string TapedTuneFlags::GetFlag(const std::string& key, std::int32_t minus_one) {
  return object_.Ask("TuneFlags.GetFlag", Arguments(key, minus_one),
                     [&] { return inner_->GetFlag(key, minus_one); });
}

void TapedCalibSettings::GetValue(const std::string& section, const std::string& key,
                                  std::int32_t zero, double& value) {
  value = object_.Ask("CalibSettings.GetValue", Arguments(section, key, zero, value), [&] {
    double setting = value;
    inner_->GetValue(section, key, zero, setting);
    return setting;
  });
}

std::string TapedInstrumentPaths::GetBaseFolder() {
  return object_.Ask("InstrumentPaths.GetBaseFolder", Arguments(),
                     [&] { return inner_->GetBaseFolder(); });
}

float TapedFirmwareLibrary::BinarySearchForTargetAb(
    std::int32_t argument1, float target_min_abundance, float target_max_abundance,
    float speed_up_factor, float argument5, float argument6, float argument7,
    std::int32_t argument8, float window_start_ns, float window_end_ns) {
  return object_.Ask(
      "FirmwareLibrary.BinarySearchForTargetAb",
      Arguments(argument1, target_min_abundance, target_max_abundance, speed_up_factor, argument5,
                argument6, argument7, argument8, window_start_ns, window_end_ns),
      [&] {
        return inner_->BinarySearchForTargetAb(
            argument1, target_min_abundance, target_max_abundance, speed_up_factor, argument5,
            argument6, argument7, argument8, window_start_ns, window_end_ns);
      });
}

}  // namespace tof::recording
