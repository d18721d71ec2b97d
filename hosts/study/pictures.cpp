#include "hosts/study/pictures.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "instruments/virtual/flight_time.h"
#include "instruments/virtual/transmission.h"
#include "instruments/virtual/truth.h"
#include "instruments/virtual/virtual_physics.h"

namespace tof::study {
namespace {

namespace vi = virtual_instrument;

constexpr int kGainChannel = 1;
constexpr double kEntryVolts = 75.0;

const vi::Parameters& BuiltInPhysics() {
  static const description::InstrumentDescription built_in = BuiltIn();
  return PhysicsOf(built_in);
}

spectra::Spectrum SpectrumAt(double volts, std::uint64_t seed) {
  return vi::VirtualPhysics(BuiltInPhysics(), seed).Acquire(0.0, volts, kGainChannel);
}

// Counts above the baseline in every bin from `start_ns` to `end_ns`, over their sum and summed
// over some spectra.
std::vector<double> Profile(double volts, double start_ns, double end_ns) {
  constexpr std::uint64_t kSpectra = 100;
  std::vector<double> profile;
  for (std::uint64_t seed = 1; seed <= kSpectra; ++seed) {
    const spectra::Spectrum spectrum = SpectrumAt(volts, seed);
    std::size_t row = 0;
    for (std::size_t j = 0; j < spectrum.time_ns.size(); ++j) {
      if (spectrum.time_ns[j] < start_ns || spectrum.time_ns[j] > end_ns) continue;
      if (row == profile.size()) profile.push_back(0.0);
      profile[row++] += spectrum.intensity[j] - BuiltInPhysics().detector.baseline_counts;
    }
  }
  double sum = 0.0;
  for (const double counts : profile) sum += counts;
  for (double& counts : profile) counts /= sum;
  return profile;
}

}  // namespace

std::string TransmissionCurves() {
  constexpr std::array<double, 7> kMasses{90.97664,  158.96407,  362.92634, 498.90119,
                                          906.82573, 1178.77542, 1790.66223};
  std::string text = "# V";
  for (const double mass : kMasses) text += fmt::format(" {:.0f}", mass);
  text += "\n";
  for (double volts = 0.0; volts <= 160.0; volts += 1.0) {
    text += fmt::format("{:.0f}", volts);
    for (const double mass : kMasses) {
      text += fmt::format(" {:.6f}", vi::Transmission(BuiltInPhysics().rf_guide, mass, volts));
    }
    text += "\n";
  }
  return text;
}

std::string DeadTimeShift() {
  constexpr double kMass = 498.90119;
  constexpr int kPointsPerDecade = 20;
  const vi::Parameters& physics = BuiltInPhysics();
  const double tangent_ppm_per_ion = vi::DeadTimeShiftPpm(physics, kMass, 1e-6) / 1e-6;
  const double most_counts = physics.detector.gain_channels.front().counts_per_ion *
                             static_cast<double>(physics.acquisition.pulses_per_spectrum);
  std::string text = "# ions per pulse, abundance, shift in m/z ppm, tangent at 0\n";
  for (int i = -2 * kPointsPerDecade; i <= kPointsPerDecade; ++i) {
    const double lambda = std::pow(10.0, static_cast<double>(i) / kPointsPerDecade);
    text += fmt::format("{:.6g} {:.0f} {:.4f} {:.4f}\n", lambda, most_counts * -std::expm1(-lambda),
                        vi::DeadTimeShiftPpm(physics, kMass, lambda), tangent_ppm_per_ion * lambda);
  }
  return text;
}

std::string WholeSpectrum() {
  constexpr std::size_t kBins = 200;
  const spectra::Spectrum spectrum = SpectrumAt(kEntryVolts, 1);
  std::string text = "# us, counts\n";
  for (std::size_t start = 0; start + kBins <= spectrum.time_ns.size(); start += kBins) {
    const std::span<const double> counts(spectrum.intensity.data() + start, kBins);
    text += fmt::format("{:.3f} {:.0f}\n", spectrum.time_ns[start + kBins / 2] / 1000.0,
                        *std::max_element(counts.begin(), counts.end()));
  }
  return text;
}

std::string PeakAtTwoAbundances() {
  constexpr double kMass = 362.92634;
  constexpr double kVoltsInTheBand = 22.0;
  constexpr double kReachNs = 3.0;
  const double true_ns = vi::FlightTimeNs(BuiltInPhysics(), kMass, 0.0);
  const double start_ns = true_ns - kReachNs;
  const double end_ns = true_ns + kReachNs;
  const std::vector<double> strong = Profile(kEntryVolts, start_ns, end_ns);
  const std::vector<double> in_band = Profile(kVoltsInTheBand, start_ns, end_ns);
  std::string text = "# ns from the true flight time, strong, in the band\n";
  std::size_t row = 0;
  for (const double time_ns : SpectrumAt(kEntryVolts, 1).time_ns) {
    if (time_ns < start_ns || time_ns > end_ns) continue;
    text += fmt::format("{:.4f} {:.6f} {:.6f}\n", time_ns - true_ns, strong[row], in_band[row]);
    ++row;
  }
  return text;
}

std::string TrueErrors(const Ways& ways) {
  constexpr std::size_t kSeeds = 5;
  const std::vector<double> masses = CheckMasses();
  std::vector<std::vector<double>> columns;
  for (const Series* series : {&ways.traditional, &ways.by_measurement}) {
    const std::size_t seeds = std::min(kSeeds, series->results.size());
    for (std::size_t seed = 0; seed < seeds; ++seed) {
      columns.push_back(TrueErrorsInMidBand(BuiltInPhysics(), series->results[seed]));
    }
  }
  std::string text = "# m/z, then ppm: the seeds of traditional, the seeds of by measurement\n";
  for (std::size_t row = 0; row < masses.size(); ++row) {
    text += fmt::format("{:.3f}", masses[row]);
    for (const std::vector<double>& errors : columns) text += fmt::format(" {:.4f}", errors[row]);
    text += "\n";
  }
  return text;
}

}  // namespace tof::study
