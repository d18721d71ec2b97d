// Spectra with known peaks.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "instruments/masstime/mass_time_model.h"
#include "instruments/spectra/spectrum.h"

namespace tof::peaks {

inline constexpr double kFwhmPerSigmaOfGaussian = 2.3548200450309493;

// Part of a Gaussian of unit area that falls into a bin.
inline double GaussianInBin(double bin_centre, double bin_width, double centre, double fwhm) {
  const double scale = kFwhmPerSigmaOfGaussian / (fwhm * std::sqrt(2.0));
  return 0.5 * (std::erf((bin_centre + 0.5 * bin_width - centre) * scale) -
                std::erf((bin_centre - 0.5 * bin_width - centre) * scale));
}

class SimulatedSpectrum {
 public:
  SimulatedSpectrum(double start_ns, double end_ns, double bin_ns, std::uint64_t seed = 1)
      : random_(seed) {
    spectrum_.bin_width_ns = bin_ns;
    const auto bins = static_cast<std::size_t>((end_ns - start_ns) / bin_ns);
    for (std::size_t i = 0; i < bins; ++i) {
      spectrum_.time_ns.push_back(start_ns + static_cast<double>(i) * bin_ns);
    }
    spectrum_.intensity.assign(bins, 0.0);
  }

  // A Gaussian without counting noise.
  SimulatedSpectrum& AddSmoothPeak(double time_ns, double fwhm_ns, double abundance) {
    for (std::size_t i = 0; i < spectrum_.time_ns.size(); ++i) {
      if (std::abs(spectrum_.time_ns[i] - time_ns) > 5.0 * fwhm_ns) continue;
      spectrum_.intensity[i] +=
          abundance * GaussianInBin(spectrum_.time_ns[i], spectrum_.bin_width_ns, time_ns, fwhm_ns);
    }
    return *this;
  }

  // A Poisson number of ions, each counted as `gain`.
  SimulatedSpectrum& AddCountedPeak(double time_ns, double fwhm_ns, double ions, double gain) {
    std::poisson_distribution<int> count(ions);
    std::normal_distribution<double> arrival(time_ns, fwhm_ns / kFwhmPerSigmaOfGaussian);
    for (int ion = count(random_); ion > 0; --ion) {
      const double bin =
          std::round((arrival(random_) - spectrum_.time_ns.front()) / spectrum_.bin_width_ns);
      if (bin < 0.0 || bin >= static_cast<double>(spectrum_.time_ns.size())) continue;
      spectrum_.intensity[static_cast<std::size_t>(bin)] += gain;
    }
    return *this;
  }

  SimulatedSpectrum& AddBackground(double baseline, double noise) {
    std::normal_distribution<double> normal(baseline, noise);
    for (double& value : spectrum_.intensity) value += normal(random_);
    return *this;
  }

  // Leaves out what a zero-suppressing digitizer does.
  SimulatedSpectrum& DropBinsUpTo(double level) {
    spectra::Spectrum kept;
    kept.bin_width_ns = spectrum_.bin_width_ns;
    for (std::size_t i = 0; i < spectrum_.time_ns.size(); ++i) {
      if (spectrum_.intensity[i] <= level) continue;
      kept.time_ns.push_back(spectrum_.time_ns[i]);
      kept.intensity.push_back(spectrum_.intensity[i]);
    }
    spectrum_ = std::move(kept);
    return *this;
  }

  // Isotopes by a Poisson distribution of carbon-13, as a carbon chain of this mass has them.
  SimulatedSpectrum& AddCluster(const masstime::MassTimeModel& model, double mass,
                                double resolving_power, double ions, double gain) {
    const double mean = 7.7e-4 * mass;
    double share = std::exp(-mean);
    for (int isotope = 0; isotope < 8; ++isotope) {
      const double time_ns = masstime::MassToTime(model, mass + 1.0033548 * isotope);
      AddCountedPeak(time_ns, time_ns / (2.0 * resolving_power), ions * share, gain);
      share *= mean / (isotope + 1);
    }
    return *this;
  }

  const spectra::Spectrum& Get() const { return spectrum_; }

 private:
  spectra::Spectrum spectrum_;
  std::mt19937_64 random_;
};

}  // namespace tof::peaks
