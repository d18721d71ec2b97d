// The time of a simulated run.
#pragma once

#include "instruments/spectra/instrument_clock.h"

namespace tof::native {

// Counts, and waits for nothing.
class VirtualClock : public spectra::InstrumentClock {
 public:
  double Seconds() const override { return seconds_; }
  void Advance(double seconds) override {
    if (seconds > 0.0) seconds_ += seconds;
  }

 private:
  double seconds_ = 0.0;
};

}  // namespace tof::native
