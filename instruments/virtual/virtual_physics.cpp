#include "instruments/virtual/virtual_physics.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "instruments/virtual/flight_time.h"
#include "instruments/virtual/transmission.h"

namespace tof::virtual_instrument {
namespace {

// One stream of chance for each cause: more noise draws do not change the drift.
enum Stream : std::uint64_t { kDriftStream, kFlickerStream, kIonStream, kNoiseStream };

Parameters Validated(Parameters parameters) {
  Validate(parameters);
  return parameters;
}

TimeBins BinsOf(const AcquisitionParameters& acquisition) {
  const double start_ns = 1e3 * acquisition.window_start_us;
  const double length_ns = 1e3 * acquisition.window_end_us - start_ns;
  // The small allowance keeps a window of a whole number of bins from losing one to rounding.
  const double count = std::floor(length_ns / acquisition.bin_ns + 1e-6);
  return {start_ns, acquisition.bin_ns, static_cast<std::size_t>(count)};
}

std::size_t DeadBinsOf(const DetectorParameters& detector, const TimeBins& bins) {
  const double dead_bins = std::ceil(detector.dead_time_ns / bins.width_ns - 1e-6);
  return static_cast<std::size_t>(std::min(dead_bins, static_cast<double>(bins.count)));
}

// A digitizer delivers whole numbers. (A conversion is much faster than std::round.)
double ToWholeCounts(double counts) {
  const double rounded_half_away = counts < 0.0 ? counts - 0.5 : counts + 0.5;
  return static_cast<double>(static_cast<std::int64_t>(rounded_half_away));
}

}  // namespace

VirtualPhysics::VirtualPhysics(Parameters parameters, std::uint64_t seed)
    : parameters_(Validated(std::move(parameters))),
      bins_(BinsOf(parameters_.acquisition)),
      dead_bins_(DeadBinsOf(parameters_.detector, bins_)),
      drift_(parameters_.drift, Random(seed, kDriftStream)),
      flicker_(parameters_.flicker, Random(seed, kFlickerStream)),
      ion_random_(seed, kIonStream),
      noise_random_(seed, kNoiseStream),
      ions_per_pulse_(bins_.count),
      recorded_ions_(bins_.count) {
  for (const auto* group : {&parameters_.calibrants, &parameters_.contaminants}) {
    for (const Species& species : *group) {
      Cluster cluster;
      for (const IsotopePeak& peak : IsotopePattern(species.composition)) {
        cluster.push_back({species.mass_u + peak.mass_offset_u,
                           species.ions_per_pulse * peak.relative_abundance});
      }
      clusters_.push_back(std::move(cluster));
    }
  }
  time_axis_ns_.reserve(bins_.count);
  for (std::size_t j = 0; j < bins_.count; ++j) {
    time_axis_ns_.push_back(bins_.start_ns + (static_cast<double>(j) + 0.5) * bins_.width_ns);
  }
}

spectra::Spectrum VirtualPhysics::Acquire(double now_sec, double rf_volts, int gain_channel) {
  spectra::Spectrum spectrum;
  Acquire(now_sec, rf_volts, gain_channel, spectrum);
  return spectrum;
}

void VirtualPhysics::Acquire(double now_sec, double rf_volts, int gain_channel,
                             spectra::Spectrum& spectrum) {
  const std::vector<GainChannel>& channels = parameters_.detector.gain_channels;
  if (gain_channel < 1 || static_cast<std::size_t>(gain_channel) > channels.size()) {
    throw std::invalid_argument(fmt::format("virtual instrument: gain channel {}, expected 1 to {}",
                                            gain_channel, channels.size()));
  }
  if (!std::isfinite(rf_volts)) {
    throw std::invalid_argument(
        fmt::format("virtual instrument: RF voltage {}, expected a finite number", rf_volts));
  }
  // The drift within a spectrum is far below a peak's width; its middle stands for the whole.
  drift_.AdvanceTo(now_sec + 0.5 * parameters_.acquisition.spectrum_duration_sec);
  ExpectIons(rf_volts);
  DrawRecordedIons(ions_per_pulse_, parameters_.acquisition.pulses_per_spectrum, dead_bins_,
                   ion_random_, recorded_ions_);
  spectrum.time_ns = time_axis_ns_;
  spectrum.bin_width_ns = bins_.width_ns;
  Digitize(channels[static_cast<std::size_t>(gain_channel - 1)], spectrum.intensity);
}

void VirtualPhysics::ExpectIons(double rf_volts) {
  std::fill(ions_per_pulse_.begin(), ions_per_pulse_.end(), 0.0);
  const double common = flicker_.NextCommonFactor();
  for (const Cluster& cluster : clusters_) {
    const double source = common * flicker_.NextOwnFactor();
    for (const IsotopeSource& isotope : cluster) {
      const double ions = source * isotope.ions_per_pulse *
                          Transmission(parameters_.rf_guide, isotope.mass_u, rf_volts);
      const double center_ns = FlightTimeNs(parameters_, isotope.mass_u, drift_.ppm());
      AddGaussianPeak(bins_, center_ns, PeakSigmaNs(parameters_.analyzer, center_ns), ions,
                      ions_per_pulse_);
    }
  }
}

void VirtualPhysics::Digitize(const GainChannel& channel, std::vector<double>& intensity) {
  const double noise_sd = parameters_.detector.electronic_noise_sd_counts;
  const double baseline = parameters_.detector.baseline_counts;
  intensity.resize(bins_.count);
  for (std::size_t j = 0; j < bins_.count; ++j) {
    const double counts = baseline + noise_sd * normal_(noise_random_) +
                          channel.counts_per_ion * static_cast<double>(recorded_ions_[j]);
    intensity[j] = ToWholeCounts(std::min(counts, channel.saturation_counts));
  }
}

}  // namespace tof::virtual_instrument
