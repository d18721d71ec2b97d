// What a replay came to, for the people and programs that read it.
#pragma once

#include <string>

#include "hosts/recording/replay.h"

namespace tof::cli {

struct ReplayReport {
  std::string recording;  // its path
  std::string program;    // that made it
  recording::ReplayResult result;
  std::optional<recording::Cut> cut;  // where the recording ends early
};

std::string TableOf(const ReplayReport& report);
std::string JsonOf(const ReplayReport& report);

}  // namespace tof::cli
