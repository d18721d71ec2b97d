// The virtual physics, coupled to a clock and to setpoints.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "instruments/spectra/instrument_clock.h"
#include "instruments/spectra/spectrum_source.h"
#include "instruments/virtual/parameters.h"
#include "instruments/virtual/settling.h"
#include "instruments/virtual/virtual_physics.h"

namespace tof::virtual_instrument {

struct VirtualSourceParameters {
  Parameters physics;
  std::uint64_t seed = 1;
  std::int32_t rf_setpoint = 0;     // the setpoint that is the ion guide's RF voltage
  double setpoint_write_sec = 0.0;  // how long a write takes, of whatever setpoint
};

// Setpoint values that hold before any is written.
struct InitialSetpoints {
  double rf_volts = 0.0;
  double gain_channel = 1.0;
};

// The setpoint that selects the detector's gain channel, numbered from 1.
inline constexpr std::int32_t kGainChannelSetpoint = 149;

class VirtualSource : public spectra::SpectrumSource {
 public:
  // Throws std::invalid_argument for parameters that no instrument can have.
  VirtualSource(VirtualSourceParameters parameters, const InitialSetpoints& initial,
                std::shared_ptr<spectra::InstrumentClock> clock);

  // Both take the RF voltage on its way to the setpoint as it is when the spectrum begins: a
  // spectrum taken too early shows it. A gain channel that the detector doesn't have is an
  // AutomationError.
  SpectrumPtr Acquire() override;
  SpectrumPtr Newest() override;

  void SetpointWritten(std::int32_t id, double value) override;
  std::optional<double> TrueValue(std::int32_t id) const override;
  std::optional<spectra::AbundanceControl> Control() const override;  // the ion guide's voltage
  double BinWidthNs() const override;

  // For judging a calibration: the true law, and the mean drift in m/z ppm of the last `spectra`
  // acquired (of all when there are not as many, 0 before the first).
  const Parameters& parameters() const { return physics_.parameters(); }
  double MeanDriftPpm(std::int64_t spectra) const;

 private:
  SpectrumPtr Take();

  VirtualPhysics physics_;
  std::int32_t rf_setpoint_;
  double setpoint_write_sec_;
  SettlingValue rf_volts_;
  double gain_channel_;
  std::shared_ptr<spectra::InstrumentClock> clock_;
  std::vector<double> drifts_ppm_;  // of every spectrum acquired, for as long as the source lives
};

}  // namespace tof::virtual_instrument
