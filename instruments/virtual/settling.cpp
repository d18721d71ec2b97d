#include "instruments/virtual/settling.h"

#include <cmath>

namespace tof::virtual_instrument {

void SettlingValue::Set(double target, double now_sec) {
  start_ = At(now_sec);
  target_ = target;
  set_at_sec_ = now_sec;
}

double SettlingValue::At(double now_sec) const {
  if (start_ == target_ || time_constant_sec_ <= 0.0) return target_;
  return target_ + (start_ - target_) * std::exp(-(now_sec - set_at_sec_) / time_constant_sec_);
}

}  // namespace tof::virtual_instrument
