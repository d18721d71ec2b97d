#include "instruments/virtual/virtual_source.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <stdexcept>
#include <utility>

#include "component/automation/convert.h"
#include "component/automation/error.h"

namespace tof::virtual_instrument {

VirtualSource::VirtualSource(VirtualSourceParameters parameters, const InitialSetpoints& initial,
                             std::shared_ptr<spectra::InstrumentClock> clock)
    : physics_(std::move(parameters.physics), parameters.seed),
      rf_setpoint_(parameters.rf_setpoint),
      setpoint_write_sec_(parameters.setpoint_write_sec),
      rf_volts_(initial.rf_volts, physics_.parameters().settling.time_constant_sec),
      gain_channel_(initial.gain_channel),
      clock_(std::move(clock)) {}

spectra::SpectrumSource::SpectrumPtr VirtualSource::Take() {
  const double now_sec = clock_->Seconds();
  try {
    return std::make_shared<const spectra::Spectrum>(
        physics_.Acquire(now_sec, rf_volts_.At(now_sec), ToInt32(gain_channel_)));
  } catch (const std::invalid_argument& error) {
    throw AutomationError(static_cast<std::int32_t>(RunTimeError::kInvalidCall), error.what());
  }
}

spectra::SpectrumSource::SpectrumPtr VirtualSource::Acquire() {
  SpectrumPtr spectrum = Take();
  clock_->Advance(physics_.parameters().acquisition.spectrum_duration_sec);
  drifts_ppm_.push_back(physics_.drift_ppm());
  return spectrum;
}

spectra::SpectrumSource::SpectrumPtr VirtualSource::Newest() {
  return Take();
}

void VirtualSource::SetpointWritten(std::int32_t id, double value) {
  clock_->Advance(setpoint_write_sec_);
  if (id == rf_setpoint_) rf_volts_.Set(value, clock_->Seconds());
  if (id == kGainChannelSetpoint) gain_channel_ = value;
}

std::optional<double> VirtualSource::TrueValue(std::int32_t id) const {
  if (id != rf_setpoint_) return std::nullopt;
  return rf_volts_.At(clock_->Seconds());
}

std::optional<spectra::AbundanceControl> VirtualSource::Control() const {
  // exp(-6): 0.05 V are left of a step of 20 V.
  constexpr double kTimeConstants = 6.0;
  return spectra::AbundanceControl{
      rf_setpoint_, kTimeConstants * physics_.parameters().settling.time_constant_sec};
}

double VirtualSource::BinWidthNs() const {
  return physics_.parameters().acquisition.bin_ns;
}

double VirtualSource::MeanDriftPpm(std::int64_t spectra) const {
  const auto count =
      static_cast<std::ptrdiff_t>(std::min<std::int64_t>(spectra, std::ssize(drifts_ppm_)));
  if (count <= 0) return 0.0;
  return std::accumulate(drifts_ppm_.end() - count, drifts_ppm_.end(), 0.0) /
         static_cast<double>(count);
}

}  // namespace tof::virtual_instrument
