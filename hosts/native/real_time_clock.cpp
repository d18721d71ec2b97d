#include "hosts/native/real_time_clock.h"

#include <thread>

namespace tof::native {

double RealTimeClock::Seconds() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
}

void RealTimeClock::Advance(double seconds) {
  if (seconds > 0.0) std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

}  // namespace tof::native
