// A clock that tells somebody when the instrument begins to spend time.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "instruments/spectra/instrument_clock.h"

namespace tof::cli {

class WatchedClock : public spectra::InstrumentClock {
 public:
  WatchedClock(std::shared_ptr<spectra::InstrumentClock> clock,
               std::function<void()> before_advance)
      : clock_(std::move(clock)), before_advance_(std::move(before_advance)) {}

  double Seconds() const override { return clock_->Seconds(); }
  void Advance(double seconds) override {
    before_advance_();
    clock_->Advance(seconds);
  }

 private:
  std::shared_ptr<spectra::InstrumentClock> clock_;
  std::function<void()> before_advance_;
};

}  // namespace tof::cli
