// A clock that tells somebody when the instrument has spent time.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "instruments/spectra/instrument_clock.h"

namespace tof::cli {

class WatchedClock : public spectra::InstrumentClock {
 public:
  WatchedClock(std::shared_ptr<spectra::InstrumentClock> clock, std::function<void()> on_advance)
      : clock_(std::move(clock)), on_advance_(std::move(on_advance)) {}

  double Seconds() const override { return clock_->Seconds(); }
  void Advance(double seconds) override {
    clock_->Advance(seconds);
    on_advance_();
  }

 private:
  std::shared_ptr<spectra::InstrumentClock> clock_;
  std::function<void()> on_advance_;
};

}  // namespace tof::cli
