// Where and how wide a peak is: the analyzer's law, free of chance.
#pragma once

#include "instruments/virtual/parameters.h"

namespace tof::virtual_instrument {

// Full width at half maximum of a Gaussian over its standard deviation, 2 sqrt(2 ln 2).
inline constexpr double kFwhmPerSigma = 2.3548200450309493;

// Mean arrival time in ns of ions of `mass_u`, singly charged:
//   t = t0 + tau (1 + (drift + curvature (tau / tau_end)^2) / 2e6),  tau = sqrt(m) / A,
// with tau_end at the end of the acquisition window. `drift_ppm` is in m/z ppm.
double FlightTimeNs(const Parameters& parameters, double mass_u, double drift_ppm);

// Standard deviation in ns of the arrival times around `flight_time_ns`: t / (2 R) as full width at
// half maximum.
double PeakSigmaNs(const AnalyzerParameters& analyzer, double flight_time_ns);

}  // namespace tof::virtual_instrument
