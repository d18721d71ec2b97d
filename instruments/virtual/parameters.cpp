#include "instruments/virtual/parameters.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace tof::virtual_instrument {
namespace {

// A spectrum of this many bins takes a gigabyte; a slip in a bin width should say so, not try.
constexpr double kMostBins = 5e7;

[[noreturn]] void Reject(std::string_view name, double value, std::string_view expected) {
  throw std::invalid_argument(
      fmt::format("virtual instrument: {} is {}, expected {}", name, value, expected));
}

void RequirePositive(std::string_view name, double value) {
  if (!std::isfinite(value) || value <= 0.0) Reject(name, value, "a number above 0");
}

void RequireNotNegative(std::string_view name, double value) {
  if (!std::isfinite(value) || value < 0.0) Reject(name, value, "0 or a number above it");
}

// Limits far outside any instrument: they keep every later product and whole number in range.
void RequireWithin(std::string_view name, double value, double limit) {
  if (!(std::abs(value) <= limit)) {
    Reject(name, value, fmt::format("a number from {} to {}", -limit, limit));
  }
}

void RequireFromZeroTo(std::string_view name, double value, double limit) {
  if (!(value >= 0.0 && value <= limit)) Reject(name, value, fmt::format("0 to {}", limit));
}

void ValidateAnalyzer(const AnalyzerParameters& analyzer) {
  RequirePositive("a_sqrt_u_per_ns", analyzer.a_sqrt_u_per_ns);
  RequireWithin("t0_ns", analyzer.t0_ns, 1e9);
  RequireWithin("curvature_ppm", analyzer.curvature_ppm, 1e5);
  RequirePositive("resolving_power", analyzer.resolving_power);
}

void ValidateAcquisition(const AcquisitionParameters& acquisition) {
  RequireNotNegative("window_start_us", acquisition.window_start_us);
  RequirePositive("window_end_us", acquisition.window_end_us);
  if (acquisition.window_end_us <= acquisition.window_start_us) {
    Reject("window_end_us", acquisition.window_end_us, "a time after window_start_us");
  }
  RequirePositive("bin_ns", acquisition.bin_ns);
  const double window_ns = 1e3 * (acquisition.window_end_us - acquisition.window_start_us);
  if (window_ns / acquisition.bin_ns > kMostBins) {
    Reject("bin_ns", acquisition.bin_ns, "at most 50 million bins in the window");
  }
  if (window_ns < acquisition.bin_ns) {
    Reject("bin_ns", acquisition.bin_ns, "at least one bin in the window");
  }
  if (acquisition.pulses_per_spectrum < 1 || acquisition.pulses_per_spectrum > 1'000'000'000) {
    Reject("pulses_per_spectrum", static_cast<double>(acquisition.pulses_per_spectrum),
           "1 to 1000000000");
  }
  RequirePositive("spectrum_duration_sec", acquisition.spectrum_duration_sec);
}

void ValidateDetector(const DetectorParameters& detector) {
  RequireNotNegative("dead_time_ns", detector.dead_time_ns);
  RequireFromZeroTo("electronic_noise_sd_counts", detector.electronic_noise_sd_counts, 1e12);
  RequireWithin("baseline_counts", detector.baseline_counts, 1e12);
  if (detector.gain_channels.empty()) Reject("number of gain channels", 0.0, "at least 1");
  for (const GainChannel& channel : detector.gain_channels) {
    RequirePositive("counts_per_ion", channel.counts_per_ion);
    RequirePositive("saturation_counts", channel.saturation_counts);
    // Whole counts are exact in a double up to here.
    RequireFromZeroTo("saturation_counts", channel.saturation_counts, 1e15);
  }
}

void ValidateChange(const DriftParameters& drift, const FlickerParameters& flicker) {
  RequireWithin("rate_ppm_per_min", drift.rate_ppm_per_min, 1e6);
  RequireFromZeroTo("random_walk_ppm_per_sqrt_min", drift.random_walk_ppm_per_sqrt_min, 1e6);
  RequireFromZeroTo("common_sd", flicker.common_sd, 1.0);
  RequireFromZeroTo("own_sd", flicker.own_sd, 1.0);
  if (!(flicker.common_correlation >= 0.0 && flicker.common_correlation < 1.0)) {
    Reject("common_correlation", flicker.common_correlation, "0 or above, and below 1");
  }
}

void ValidateRfGuide(const RfGuideParameters& guide) {
  if (guide.pole_pairs < 2) Reject("pole_pairs", guide.pole_pairs, "2 or more");
  RequirePositive("frequency_hz", guide.frequency_hz);
  RequirePositive("inscribed_radius_mm", guide.inscribed_radius_mm);
  RequirePositive("relative_ion_radius", guide.relative_ion_radius);
  RequirePositive("transverse_energy_ev", guide.transverse_energy_ev);
  RequireNotNegative("well_loss_exponent", guide.well_loss_exponent);
  RequirePositive("adiabaticity_cutoff", guide.adiabaticity_cutoff);
  RequirePositive("adiabaticity_cutoff_width", guide.adiabaticity_cutoff_width);
}

void ValidateSpecies(const std::vector<Species>& all) {
  for (const Species& species : all) {
    RequirePositive("mass_u", species.mass_u);
    RequireFromZeroTo("ions_per_pulse", species.ions_per_pulse, 1e6);
  }
}

}  // namespace

Species SpeciesOfFormula(std::string_view formula, double ions_per_pulse) {
  Composition composition = ParseFormula(formula);
  const double mass_u = FirstIsotopeMass(composition);
  return {mass_u, ions_per_pulse, std::move(composition)};
}

Species SpeciesOfMass(double mass_u, double ions_per_pulse) {
  return {mass_u, ions_per_pulse, AveragineComposition(mass_u)};
}

std::vector<Species> BuiltInCalibrants() {
  struct Cluster {
    int n;
    double ions_per_pulse;
  };
  // Chosen so that every cluster can be brought into one narrow band of abundance by the RF
  // voltage, and so that at 75 V they span from 0.08 to 8 ions per pulse.
  constexpr std::array<Cluster, 10> kClusters{{{1, 3.277},
                                               {2, 1.517},
                                               {3, 3.239},
                                               {5, 9.003},
                                               {7, 5.724},
                                               {10, 2.337},
                                               {13, 1.956},
                                               {17, 1.828},
                                               {21, 1.489},
                                               {26, 1.703}}};
  std::vector<Species> calibrants;
  calibrants.reserve(kClusters.size());
  for (const auto& [n, ions_per_pulse] : kClusters) {
    calibrants.push_back(
        SpeciesOfFormula(fmt::format("C{0}H{0}O{1}Na{2}", n, 2 * n, n + 1), ions_per_pulse));
  }
  return calibrants;
}

std::vector<Species> BuiltInContaminants() {
  // Plasticisers and a polysiloxane, all listed by B. O. Keller et al., "Interferences and
  // contaminants encountered in modern mass spectrometry", Anal. Chim. Acta 627, 71 (2008).
  return {
      SpeciesOfFormula("C8H5O3", 0.02),       // 149.023: phthalic anhydride, protonated
      SpeciesOfFormula("C16H23O4", 0.03),     // 279.159: dibutyl phthalate, protonated
      SpeciesOfFormula("C10H31O5Si5", 0.02),  // 371.101: decamethylcyclopentasiloxane, protonated
      SpeciesOfFormula("C24H39O4", 0.04),     // 391.284: dioctyl phthalate, protonated
      SpeciesOfFormula("C24H38O4Na", 0.03),   // 413.266: dioctyl phthalate with sodium
  };
}

void Validate(const Parameters& parameters) {
  ValidateAnalyzer(parameters.analyzer);
  ValidateAcquisition(parameters.acquisition);
  if (parameters.analyzer.t0_ns >= 1e3 * parameters.acquisition.window_end_us) {
    Reject("t0_ns", parameters.analyzer.t0_ns, "a time before the end of the window");
  }
  ValidateDetector(parameters.detector);
  ValidateChange(parameters.drift, parameters.flicker);
  ValidateRfGuide(parameters.rf_guide);
  RequireNotNegative("time_constant_sec", parameters.settling.time_constant_sec);
  ValidateSpecies(parameters.calibrants);
  ValidateSpecies(parameters.contaminants);
}

}  // namespace tof::virtual_instrument
