#include "hosts/native/native_host.h"

#include <chrono>
#include <thread>

#include "hosts/native/date_time.h"

namespace tof::native {

void NativeHost::Wait(std::int32_t milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

DateTime NativeHost::Now() {
  return LocalTimeNow();
}

std::uint32_t NativeHost::RandomSeed() {
  const auto ticks = std::chrono::system_clock::now().time_since_epoch().count();
  // Two calls within one tick of a coarse clock still differ.
  return static_cast<std::uint32_t>(ticks) + ++seeds_given_;
}

}  // namespace tof::native
