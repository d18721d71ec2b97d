// Where the error of a calibration began.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "hosts/native/followed_trace.h"

namespace tof::cli {

// Keeps the first line of the trace that tells of an error: the one that ends a calibration may be
// a consequence of it.
class FirstError : public native::RoutineFollower {
 public:
  void Enter(std::string_view /*routine*/, std::int32_t /*level*/) override {}
  void Leave() override {}
  void Print(std::string_view line) override {
    if (line_.empty() && native::TellsOfAnError(line)) line_ = line;
  }

  const std::string& line() const { return line_; }  // empty: there was none

 private:
  std::string line_;
};

}  // namespace tof::cli
