// The time of a run beside a wall clock.
#pragma once

#include <chrono>

#include "instruments/spectra/instrument_clock.h"

namespace tof::native {

// Runs by itself; to let time pass is to wait.
class RealTimeClock : public spectra::InstrumentClock {
 public:
  double Seconds() const override;
  void Advance(double seconds) override;

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace tof::native
