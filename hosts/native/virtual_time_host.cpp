#include "hosts/native/virtual_time_host.h"

#include <chrono>
#include <cstdint>
#include <utility>

#include "hosts/native/date_time.h"

namespace tof::native {

VirtualTimeHost::VirtualTimeHost(std::ostream& messages,
                                 std::shared_ptr<spectra::InstrumentClock> clock,
                                 std::uint32_t seed)
    : PortableHost(messages), clock_(std::move(clock)), seeds_(seed) {}

void VirtualTimeHost::Wait(std::int32_t milliseconds) {
  clock_->Advance(milliseconds / 1000.0);
}

DateTime VirtualTimeHost::Now() {
  const std::chrono::seconds elapsed{static_cast<std::int64_t>(clock_->Seconds())};
  return DateTimeOf(CalendarSecondsOf(kVirtualStart) + elapsed);
}

std::uint32_t VirtualTimeHost::RandomSeed() {
  return static_cast<std::uint32_t>(seeds_());
}

}  // namespace tof::native
