// Moments as results and written files show them.
#pragma once

#include <fmt/chrono.h>

#include <chrono>
#include <string>

namespace tof::cli {

// "2026-11-21T17:05:09Z", which says the same in every time zone.
inline std::string UtcDateText(std::chrono::system_clock::time_point moment) {
  return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}",
                     fmt::gmtime(std::chrono::system_clock::to_time_t(moment)));
}

}  // namespace tof::cli
