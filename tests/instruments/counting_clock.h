// A clock that only counts.
#pragma once

#include "instruments/spectra/instrument_clock.h"

namespace tof::spectra {

class CountingClock : public InstrumentClock {
 public:
  double Seconds() const override { return seconds_; }
  void Advance(double seconds) override {
    if (seconds > 0.0) seconds_ += seconds;
  }

 private:
  double seconds_ = 0.0;
};

}  // namespace tof::spectra
