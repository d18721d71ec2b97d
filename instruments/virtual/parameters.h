// What the virtual instrument is made of. The defaults are the built-in instrument.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "instruments/virtual/isotopes.h"

namespace tof::virtual_instrument {

// t = t0 + sqrt(m) / A, times drift and curvature (flight_time.h).
struct AnalyzerParameters {
  double a_sqrt_u_per_ns = 0.00065;
  double t0_ns = 300.0;
  // By how many m/z ppm an ion at the end of the acquisition window departs from the two-term law;
  // the departure grows with the square of the flight time. 0: the law is exact.
  double curvature_ppm = 0.0;
  // m over the full width at half maximum of a peak in m. In time that width is t / (2 R).
  double resolving_power = 20'000.0;
};

// A spectrum is the sum over many pulses of the ions that arrive between start and end.
struct AcquisitionParameters {
  double window_start_us = 12.0;
  double window_end_us = 72.0;
  // 0.5 ns would be too coarse for the lightest peaks (FWHM 0.37 ns at 15 us).
  double bin_ns = 0.25;
  std::int64_t pulses_per_spectrum = 10'000;
  double spectrum_duration_sec = 1.0;
};

// What the detector makes of a recorded ion in one setting of its gain.
struct GainChannel {
  double counts_per_ion = 250.0;
  double saturation_counts = 2'500'000.0;  // a bin of a spectrum cannot hold more
};

struct DetectorParameters {
  // Longer than a peak (so that only its first ion is recorded in a pulse) and shorter than the
  // spacing of isotopes (so that they don't shade each other).
  double dead_time_ns = 10.0;
  std::vector<GainChannel> gain_channels{{250.0, 2'500'000.0}, {1'000.0, 2'500'000.0}};
  // Per bin of a whole spectrum, in counts. A fifth of an ion: it leaves the statistical limit of a
  // peak of 400 ions as good as untouched.
  double electronic_noise_sd_counts = 50.0;
  double baseline_counts = 200.0;
};

// Slow change of the flight path, in m/z ppm (flight times change by half of it).
struct DriftParameters {
  double rate_ppm_per_min = 0.2;
  double random_walk_ppm_per_sqrt_min = 0.05;
};

// Relative change of the ion rate from spectrum to spectrum, log-normal with mean 1: one factor
// that is common to all species and remembers the spectrum before, and one of each species' own.
struct FlickerParameters {
  double common_sd = 0.02;
  double common_correlation = 0.8;  // between neighbouring spectra
  double own_sd = 0.005;
};

// The RF ion guide in front of the analyzer (transmission.h).
struct RfGuideParameters {
  int pole_pairs = 4;  // 4: octopole
  double frequency_hz = 3.0e6;
  double inscribed_radius_mm = 3.0;
  double relative_ion_radius = 0.8;    // where in the guide the ions turn round, r / r0
  double transverse_energy_ev = 0.12;  // compared with the depth of the well
  double well_loss_exponent = 7.0;     // transmission of a guide without a well: exp(-7)
  double adiabaticity_cutoff = 0.4;    // half of the ions are lost here
  double adiabaticity_cutoff_width = 0.04;
};

// How a setpoint approaches a value that was written to it (settling.h).
struct SettlingParameters {
  double time_constant_sec = 0.25;
};

// Ions of one kind, with their isotope cluster.
struct Species {
  double mass_u = 0.0;          // first isotope, as the ion
  double ions_per_pulse = 0.0;  // of the first isotope, mean, before the ion guide's losses
  Composition composition;      // for the isotopes
};

// An ion of a known formula ("C1H1O2Na2"); its mass follows. Throws as ParseFormula does.
Species SpeciesOfFormula(std::string_view formula, double ions_per_pulse);

// An ion of which only the mass is known; averagine isotopes.
Species SpeciesOfMass(double mass_u, double ions_per_pulse);

// The sodium formate clusters (HCOONa)n Na+ of the built-in instrument, 91 to 1791 u, two decades
// of abundance; and a few ions that turn up in electrospray without being asked for.
std::vector<Species> BuiltInCalibrants();
std::vector<Species> BuiltInContaminants();

struct Parameters {
  AnalyzerParameters analyzer;
  AcquisitionParameters acquisition;
  DetectorParameters detector;
  DriftParameters drift;
  FlickerParameters flicker;
  RfGuideParameters rf_guide;
  SettlingParameters settling;
  std::vector<Species> calibrants = BuiltInCalibrants();
  std::vector<Species> contaminants = BuiltInContaminants();
};

// Throws std::invalid_argument, with the parameter's name, its value and what was expected, for the
// first parameter that no instrument can have.
void Validate(const Parameters& parameters);

}  // namespace tof::virtual_instrument
