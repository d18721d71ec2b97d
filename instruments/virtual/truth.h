// What the virtual instrument knows and a real one does not: the true error of a calibration.
//
// Everything here is free of chance. Errors are m/z ppm, positive when the calibration reads a mass
// too high.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "instruments/virtual/parameters.h"

namespace tof::virtual_instrument {

// The calibration under examination: m/z of a flight time in ns.
using TimeToMass = std::function<double(double flight_time_ns)>;

// `common_ppm` is the mean, an offset that all masses share; `mass_dependent_ppm` the rms of what
// is left when it is taken off, so that rms^2 = common^2 + mass_dependent^2. `max_ppm` is the
// largest magnitude.
struct ErrorFigures {
  double rms_ppm = 0.0;
  double common_ppm = 0.0;
  double mass_dependent_ppm = 0.0;
  double max_ppm = 0.0;
};
ErrorFigures Summarize(std::span<const double> errors_ppm);

// `count` (2 or more) masses from `lowest_u` to `highest_u`, equally spaced in the logarithm.
std::vector<double> CheckMasses(double lowest_u, double highest_u, std::size_t count);

// How far the mean recorded arrival time lies from the true one, in standard deviations of the
// peak, for a lone Gaussian peak of `lambda` (0 or above, finite) mean ions per pulse: 0 or below.
// For a dead time that covers the peak the recorded density is proportional to f exp(-lambda F),
// and for small lambda the shift is -lambda / (2 sqrt(pi)). `dead_time_sigmas`: dead time over the
// peak's sigma.
double DeadTimeShiftSigmas(double lambda, double dead_time_sigmas);

// The noise-free mean recorded flight time in ns of a lone peak of `mass_u` at `lambda` ions per
// pulse and `drift_ppm`.
double ExpectedTimeNs(const Parameters& parameters, double mass_u, double lambda, double drift_ppm);

// The dead-time shift in m/z ppm: what `ExpectedTimeNs` does to a mass that is read with the true
// law.
double DeadTimeShiftPpm(const Parameters& parameters, double mass_u, double lambda);

// Mean ions per pulse behind a peak of `recorded_ions` ions in `pulses` pulses, when the dead time
// covers the peak: -ln(1 - recorded / pulses). Infinite when every pulse recorded one.
double IonsPerPulseOf(double recorded_ions, std::int64_t pulses);

// True errors of peaks of `lambda` ions per pulse at the `masses`.
ErrorFigures ErrorsAt(const Parameters& parameters, const TimeToMass& time_to_mass,
                      std::span<const double> masses_u, double lambda, double drift_ppm);

// The same for peaks whose lambda is anywhere in the band with equal chance: what a user gets for a
// peak inside the band. Common part and rms are over masses and band.
ErrorFigures ErrorsInBand(const Parameters& parameters, const TimeToMass& time_to_mass,
                          std::span<const double> masses_u, double lowest_lambda,
                          double highest_lambda, double drift_ppm);

// The common offset that a calibration made at `calibration_lambda` shows for weak peaks (lambda
// towards 0): the shift that it has absorbed, with the other sign.
double PredictedWeakOffsetPpm(const Parameters& parameters, double mass_u,
                              double calibration_lambda);

// A calibrant as it was measured: where, and how many ions over all spectra.
struct CalibrantStatistics {
  double mass_u = 0.0;
  double flight_time_ns = 0.0;
  double recorded_ions = 0.0;
};

// The smallest rms error in m/z ppm over `check_masses_u` that ion statistics allow a calibration
// of A and t0 from these calibrants. A centroid of N ions is known to s = FWHM / (2.3548 sqrt(N));
// sqrt(m) = a t + b is fitted with the residuals divided by sqrt(m), as ppm errors are, and the
// covariance of (a, b) is carried to the check masses. `a_sqrt_u_per_ns` and the peak widths are
// those of `analyzer`. Throws std::invalid_argument for fewer than two different calibrants.
double StatisticalLimitPpm(const AnalyzerParameters& analyzer,
                           std::span<const CalibrantStatistics> calibrants,
                           std::span<const double> check_masses_u);

}  // namespace tof::virtual_instrument
