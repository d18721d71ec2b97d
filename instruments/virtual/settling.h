// A setpoint's true value on its way to the one that was written.
#pragma once

namespace tof::virtual_instrument {

// Approaches what was last set exponentially. Times are the caller's, in seconds, never decreasing.
class SettlingValue {
 public:
  // `time_constant_sec`: 0 settles at once.
  SettlingValue(double value, double time_constant_sec)
      : start_(value), target_(value), time_constant_sec_(time_constant_sec) {}

  // The value sets out from wherever it is at `now_sec`.
  void Set(double target, double now_sec);

  double At(double now_sec) const;

 private:
  double start_;
  double target_;
  double set_at_sec_ = 0.0;
  double time_constant_sec_;
};

}  // namespace tof::virtual_instrument
