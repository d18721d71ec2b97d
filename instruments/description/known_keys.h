// The keys that a calibration reads. A description that sets any other has a typing error in it,
// which would otherwise go unnoticed: an absent key silently stands for its default.
#pragma once

#include <string_view>

namespace tof::description {

bool IsKnownSetting(std::string_view section, std::string_view key);
bool IsKnownFlag(std::string_view key);

}  // namespace tof::description
