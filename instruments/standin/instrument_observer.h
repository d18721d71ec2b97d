// Who wants to know what an instrument does, its own searches included.
#pragma once

#include <cstdint>

namespace tof::standin {

// Called behind each act that is counted, with the moment at which it began, in seconds of the
// instrument's clock; it ends now. Raises nothing.
class InstrumentObserver {
 public:
  virtual ~InstrumentObserver() = default;
  virtual void SpectrumTaken(double began_sec) = 0;
  virtual void SetpointWritten(std::int32_t id, double value, double began_sec) = 0;
};

}  // namespace tof::standin
