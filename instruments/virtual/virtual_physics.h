// The virtual instrument's ion source, ion guide, analyzer and detector: spectra from parameters.
#pragma once

#include <cstdint>
#include <vector>

#include "instruments/spectra/spectrum.h"
#include "instruments/virtual/detector.h"
#include "instruments/virtual/drift.h"
#include "instruments/virtual/parameters.h"
#include "instruments/virtual/samplers.h"

namespace tof::virtual_instrument {

// Knows no clock and no setpoints: time and the settings of the moment are handed in. The same
// parameters, seed and calls give the same bytes.
class VirtualPhysics {
 public:
  // Throws std::invalid_argument as Validate does.
  VirtualPhysics(Parameters parameters, std::uint64_t seed);

  // One spectrum, begun at `now_sec` (virtual time since the instrument was switched on; it must
  // not lie before the middle of the previous spectrum), at the true value `rf_volts` of the ion
  // guide and with detector gain `gain_channel`, numbered from 1. Intensities are whole counts, in
  // every bin of the window; times are those of the middles of the bins. Throws
  // std::invalid_argument for a time, a voltage or a channel that cannot be; nothing has changed
  // then.
  spectra::Spectrum Acquire(double now_sec, double rf_volts, int gain_channel);

  // The same into `spectrum`, whatever it held before. Handing in the previous one saves its
  // allocation, which is half of the cost of a spectrum.
  void Acquire(double now_sec, double rf_volts, int gain_channel, spectra::Spectrum& spectrum);

  const Parameters& parameters() const { return parameters_; }

  // Drift of the newest spectrum (at its middle) in m/z ppm; 0 before the first.
  double drift_ppm() const { return drift_.ppm(); }

 private:
  struct IsotopeSource {
    double mass_u;
    double ions_per_pulse;
  };
  using Cluster = std::vector<IsotopeSource>;

  void ExpectIons(double rf_volts);
  void Digitize(const GainChannel& channel, std::vector<double>& intensity);

  Parameters parameters_;
  std::vector<Cluster> clusters_;  // calibrants, then contaminants
  TimeBins bins_;
  std::size_t dead_bins_;
  std::vector<double> time_axis_ns_;
  FlightPathDrift drift_;
  SourceFlicker flicker_;
  Random ion_random_;
  Random noise_random_;
  NormalSampler normal_;
  // Work space of one spectrum, kept so as not to allocate it each time; one element a bin.
  std::vector<double> ions_per_pulse_;
  std::vector<std::int64_t> recorded_ions_;
};

}  // namespace tof::virtual_instrument
