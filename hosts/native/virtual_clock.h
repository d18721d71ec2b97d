// The time of a simulated run. Host and instrument share one clock: the host lets it run on when
// the calibrator sleeps, the instrument when a spectrum is taken.
#pragma once

namespace tof::native {

class VirtualClock {
 public:
  // Seconds since the start of the run.
  double Seconds() const { return seconds_; }
  // A clock never runs backwards: 0 and less do nothing.
  void Advance(double seconds) {
    if (seconds > 0.0) seconds_ += seconds;
  }

 private:
  double seconds_ = 0.0;
};

}  // namespace tof::native
