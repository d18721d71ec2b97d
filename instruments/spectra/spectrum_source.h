// Where an instrument's spectra come from: physics or files.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "instruments/spectra/spectrum.h"

namespace tof::spectra {

// The setpoint that moves the abundances of the peaks, and how long it takes to act.
struct AbundanceControl {
  std::int32_t setpoint = 0;
  double settling_sec = 0.0;  // after which no spectrum shows the old value any more
};

// Every operation may raise an AutomationError and has then changed nothing.
class SpectrumSource {
 public:
  using SpectrumPtr = std::shared_ptr<const Spectrum>;  // never null

  virtual ~SpectrumSource() = default;

  // One spectrum whose acquisition begins now. It takes the time that a spectrum takes.
  virtual SpectrumPtr Acquire() = 0;

  // The newest spectrum there is. The instrument runs on by itself, so that each call may give
  // another one; it takes none of the caller's time.
  virtual SpectrumPtr Newest() = 0;

  // Setpoint `id` was written. It takes the time that a write takes.
  virtual void SetpointWritten(std::int32_t id, double value) = 0;

  // What a setpoint really is at the moment, where that may differ from what was written to it.
  virtual std::optional<double> TrueValue(std::int32_t id) const = 0;

  // None when the spectra depend on no setpoint.
  virtual std::optional<AbundanceControl> Control() const = 0;

  virtual double BinWidthNs() const = 0;
};

}  // namespace tof::spectra
