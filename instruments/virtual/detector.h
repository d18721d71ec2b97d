// From ions that arrive to ions that are recorded: the dead time, exactly and without simulating
// single pulses.
//
// Ions arrive as a Poisson process. After a recorded ion the detector is blind to everything for
// the dead time; ions that arrive meanwhile do not prolong it. Going through the bins in order of
// time, the pulses that can record an ion in bin j are those that recorded none in the dead time
// before it. All of them are alike, so the count of bin j, given the counts before it, is binomial
// over them with the probability 1 - exp(-ions_per_pulse[j]) of at least one ion.
//
// For a peak that is shorter than the dead time and has no neighbour this is the multinomial
// distribution with p_j = exp(-lambda F_j) - exp(-lambda F_(j+1)), F the cumulative peak shape:
// only the first ion of the peak counts, and a strong peak appears early.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "instruments/virtual/random.h"

namespace tof::virtual_instrument {

// Equal bins over flight time; bin j covers [start + j width, start + (j + 1) width).
struct TimeBins {
  double start_ns = 0.0;
  double width_ns = 0.0;
  std::size_t count = 0;
};

// Adds a Gaussian peak of `ions` mean ions per pulse at `center_ns` to `ions_per_pulse`, one
// element a bin. What falls outside the bins is lost; a `sigma_ns` that is not a finite number
// above 0 (the analyzer's law gives no arrival after the pulse) adds nothing.
void AddGaussianPeak(const TimeBins& bins, double center_ns, double sigma_ns, double ions,
                     std::span<double> ions_per_pulse);

// Draws the recorded ions of `pulses` pulses into `recorded_ions` (as many elements as
// `ions_per_pulse`). `dead_bins`: the dead time in bins, after the bin of the recorded ion.
void DrawRecordedIons(std::span<const double> ions_per_pulse, std::int64_t pulses,
                      std::size_t dead_bins, Random& random, std::span<std::int64_t> recorded_ions);

// The mean of what DrawRecordedIons draws, per pulse.
std::vector<double> ExpectedRecordedIons(std::span<const double> ions_per_pulse,
                                         std::size_t dead_bins);

}  // namespace tof::virtual_instrument
