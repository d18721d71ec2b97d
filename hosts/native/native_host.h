// The host of a calibration in real time.
#pragma once

#include <ostream>

#include "hosts/native/portable_host.h"

namespace tof::native {

class NativeHost : public PortableHost {
 public:
  explicit NativeHost(std::ostream& messages) : PortableHost(messages) {}

  DateTime Now() override;              // the machine's local time
  std::uint32_t RandomSeed() override;  // from the machine's clock

 private:
  void Wait(std::int32_t milliseconds) override;

  std::uint32_t seeds_given_ = 0;
};

}  // namespace tof::native
