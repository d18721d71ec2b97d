#include "instruments/virtual/flight_time.h"

#include <cmath>

namespace tof::virtual_instrument {

double FlightTimeNs(const Parameters& parameters, double mass_u, double drift_ppm) {
  const AnalyzerParameters& analyzer = parameters.analyzer;
  const double tau = std::sqrt(mass_u) / analyzer.a_sqrt_u_per_ns;
  const double tau_end = 1e3 * parameters.acquisition.window_end_us - analyzer.t0_ns;
  const double relative = tau / tau_end;
  // Mass goes with the square of the time, so a time ppm is half an m/z ppm.
  const double departure_ppm = drift_ppm + analyzer.curvature_ppm * relative * relative;
  return analyzer.t0_ns + tau * (1.0 + 0.5e-6 * departure_ppm);
}

double PeakSigmaNs(const AnalyzerParameters& analyzer, double flight_time_ns) {
  return flight_time_ns / (2.0 * analyzer.resolving_power) / kFwhmPerSigma;
}

}  // namespace tof::virtual_instrument
