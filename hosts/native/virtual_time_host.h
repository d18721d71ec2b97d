// The host of a simulated calibration: nothing waits, and the same seed gives the same run.
#pragma once

#include <memory>
#include <ostream>
#include <random>

#include "hosts/native/portable_host.h"
#include "instruments/spectra/instrument_clock.h"

namespace tof::native {

// Local time at the start of every simulated run.
inline constexpr DateTime kVirtualStart{2024, 3, 21, 9, 0, 0};

// Shares its clock with the instrument: a sleep is time for both.
class VirtualTimeHost : public PortableHost {
 public:
  VirtualTimeHost(std::ostream& messages, std::shared_ptr<spectra::InstrumentClock> clock,
                  std::uint32_t seed);

  DateTime Now() override;              // kVirtualStart plus the clock
  std::uint32_t RandomSeed() override;  // the next of a sequence that `seed` determines

 private:
  void Wait(std::int32_t milliseconds) override;  // lets the clock run on

  std::shared_ptr<spectra::InstrumentClock> clock_;
  std::mt19937 seeds_;
};

}  // namespace tof::native
