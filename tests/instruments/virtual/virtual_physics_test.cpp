#include "instruments/virtual/virtual_physics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <vector>

#include "instruments/virtual/flight_time.h"
#include "instruments/virtual/transmission.h"
#include "tests/instruments/virtual/statistics.h"

namespace tof::virtual_instrument {
namespace {

constexpr double kRfVolts = 60.0;
constexpr int kGainChannel = 1;
constexpr double kCountsPerIon = 250.0;

// One ion without isotopes (sodium has none) in a quiet instrument with a short window and without
// saturation, so that very many pulses can be summed.
Parameters QuietLonePeak(double ions_per_pulse) {
  Parameters parameters;
  parameters.acquisition.window_start_us = 14.0;
  parameters.acquisition.window_end_us = 17.0;
  parameters.detector.electronic_noise_sd_counts = 0.0;
  parameters.detector.baseline_counts = 0.0;
  parameters.detector.gain_channels = {{kCountsPerIon, 1e15}, {4.0 * kCountsPerIon, 1e15}};
  parameters.drift = {0.0, 0.0};
  parameters.flicker = {0.0, 0.0, 0.0};
  parameters.calibrants = {SpeciesOfFormula("Na4", 0.0)};
  parameters.calibrants[0].ions_per_pulse =
      ions_per_pulse / Transmission(parameters.rf_guide, parameters.calibrants[0].mass_u, kRfVolts);
  parameters.contaminants.clear();
  return parameters;
}

// Of the bins that lie in the window as a whole.
TEST(VirtualPhysics, HasTheBinsOfItsWindow) {
  const auto bins_of = [](double bin_ns) {
    Parameters parameters = QuietLonePeak(0.1);
    parameters.acquisition.bin_ns = bin_ns;
    const spectra::Spectrum spectrum = VirtualPhysics(parameters, 1).Acquire(0.0, kRfVolts, 1);
    EXPECT_EQ(spectrum.intensity.size(), spectrum.time_ns.size());
    EXPECT_EQ(spectrum.bin_width_ns, bin_ns);
    EXPECT_DOUBLE_EQ(spectrum.time_ns.front(), 14'000.0 + 0.5 * bin_ns);
    return spectrum.time_ns.size();
  };
  EXPECT_EQ(bins_of(0.25), 12'000U);
  EXPECT_EQ(bins_of(0.1), 30'000U);
  EXPECT_EQ(bins_of(0.7), 4'285U);
  EXPECT_EQ(bins_of(3'000.0), 1U);
}

struct PeakMoments {
  double ions = 0.0;
  double centroid_ns = 0.0;
  double sigma_ns = 0.0;
};

PeakMoments MomentsAround(const spectra::Spectrum& spectrum, double center_ns, double reach_ns) {
  PeakMoments peak;
  double area = 0.0;
  double first = 0.0;
  double second = 0.0;
  for (std::size_t j = 0; j < spectrum.time_ns.size(); ++j) {
    const double offset_ns = spectrum.time_ns[j] - center_ns;
    if (std::abs(offset_ns) > reach_ns) continue;
    area += spectrum.intensity[j];
    first += spectrum.intensity[j] * offset_ns;
    second += spectrum.intensity[j] * offset_ns * offset_ns;
  }
  peak.ions = area / kCountsPerIon;
  peak.centroid_ns = center_ns + first / area;
  peak.sigma_ns = std::sqrt(second / area - (first / area) * (first / area));
  return peak;
}

TEST(VirtualPhysics, DeliversEveryBinOfTheWindow) {
  VirtualPhysics physics(Parameters(), 1);
  const spectra::Spectrum spectrum = physics.Acquire(0.0, 75.0, kGainChannel);
  ASSERT_EQ(spectrum.time_ns.size(), 240'000U);
  ASSERT_EQ(spectrum.intensity.size(), 240'000U);
  EXPECT_EQ(spectrum.bin_width_ns, 0.25);
  EXPECT_EQ(spectrum.time_ns.front(), 12'000.125);
  EXPECT_EQ(spectrum.time_ns.back(), 71'999.875);
  for (const double counts : spectrum.intensity) ASSERT_EQ(counts, std::round(counts));
}

TEST(VirtualPhysics, SameSeedGivesTheSameSpectra) {
  VirtualPhysics one(Parameters(), 5);
  VirtualPhysics two(Parameters(), 5);
  spectra::Spectrum reused;
  for (double now_sec = 0.0; now_sec < 3.0; now_sec += 1.0) {
    two.Acquire(now_sec, 75.0, kGainChannel, reused);
    EXPECT_EQ(one.Acquire(now_sec, 75.0, kGainChannel).intensity, reused.intensity);
  }
}

TEST(VirtualPhysics, AnotherSeedAndTheNextSpectrumDiffer) {
  VirtualPhysics one(Parameters(), 5);
  VirtualPhysics two(Parameters(), 6);
  const spectra::Spectrum first = one.Acquire(0.0, 75.0, kGainChannel);
  EXPECT_NE(first.intensity, two.Acquire(0.0, 75.0, kGainChannel).intensity);
  EXPECT_NE(first.intensity, one.Acquire(1.0, 75.0, kGainChannel).intensity);
}

TEST(VirtualPhysics, NoiseDoesNotChangeIonsOrDrift) {
  Parameters quiet;
  quiet.detector.electronic_noise_sd_counts = 0.0;
  VirtualPhysics with_noise(Parameters(), 7);
  VirtualPhysics without(quiet, 7);
  std::vector<double> noise;
  for (double now_sec = 0.0; now_sec < 2.0; now_sec += 1.0) {
    const auto noisy = with_noise.Acquire(now_sec, 75.0, kGainChannel);
    const auto clean = without.Acquire(now_sec, 75.0, kGainChannel);
    for (std::size_t j = 0; j < noisy.intensity.size(); ++j) {
      noise.push_back(noisy.intensity[j] - clean.intensity[j]);
    }
  }
  EXPECT_NEAR(std::sqrt(MomentsOf(noise).variance), 50.0, 0.3);
  EXPECT_EQ(with_noise.drift_ppm(), without.drift_ppm());
}

TEST(VirtualPhysics, EmptySpectrumIsBaselineAndWhiteNoise) {
  Parameters parameters;
  parameters.calibrants.clear();
  parameters.contaminants.clear();
  VirtualPhysics physics(parameters, 8);
  const std::vector<double> counts = physics.Acquire(0.0, 75.0, kGainChannel).intensity;
  const Moments moments = MomentsOf(counts);
  const auto n = static_cast<double>(counts.size());
  EXPECT_NEAR(moments.mean, 200.0, 4.0 * 50.0 / std::sqrt(n));
  EXPECT_NEAR(moments.variance / (2500.0 + 1.0 / 12.0), 1.0, 4.0 * std::sqrt(2.0 / n));
  double products = 0.0;
  for (std::size_t j = 1; j < counts.size(); ++j) {
    products += (counts[j] - moments.mean) * (counts[j - 1] - moments.mean);
  }
  EXPECT_NEAR(products / n / moments.variance, 0.0, 4.0 / std::sqrt(n));
}

TEST(VirtualPhysics, PeakIsWhereAndAsWideAsTheAnalyzerSays) {
  Parameters parameters = QuietLonePeak(0.001);
  parameters.acquisition.pulses_per_spectrum = 1'000'000'000;  // a million ions: 0.1 %
  parameters.acquisition.bin_ns = 0.05;
  VirtualPhysics physics(parameters, 9);
  const double center_ns = FlightTimeNs(parameters, parameters.calibrants[0].mass_u, 0.0);
  const PeakMoments peak =
      MomentsAround(physics.Acquire(0.0, kRfVolts, kGainChannel), center_ns, 2.0);
  const double fwhm_ns = center_ns / 40'000.0;
  EXPECT_NEAR(peak.centroid_ns, center_ns, 0.005 * fwhm_ns);
  // A bin adds its own variance, width^2 / 12.
  const double sigma_ns = std::sqrt(peak.sigma_ns * peak.sigma_ns - 0.05 * 0.05 / 12.0);
  EXPECT_NEAR(kFwhmPerSigma * sigma_ns / fwhm_ns, 1.0, 0.004);
}

TEST(VirtualPhysics, CentroidScattersAsItsIonsAllow) {
  constexpr int kSpectra = 2000;
  const Parameters parameters = QuietLonePeak(0.04);
  VirtualPhysics physics(parameters, 10);
  const double center_ns = FlightTimeNs(parameters, parameters.calibrants[0].mass_u, 0.0);
  std::vector<double> centroids;
  std::vector<double> ions;
  spectra::Spectrum spectrum;
  for (int i = 0; i < kSpectra; ++i) {
    physics.Acquire(i, kRfVolts, kGainChannel, spectrum);
    const PeakMoments peak = MomentsAround(spectrum, center_ns, 2.0);
    centroids.push_back(peak.centroid_ns);
    ions.push_back(peak.ions);
  }
  const double mean_ions = MomentsOf(ions).mean;
  EXPECT_NEAR(mean_ions, 10'000.0 * (1.0 - std::exp(-0.04)), 2.0);
  const double sigma_ns = center_ns / 40'000.0 / kFwhmPerSigma;
  // The bins widen the peak; at this mass that is a fifth of its variance.
  const double limit_ns = std::sqrt((sigma_ns * sigma_ns + 0.25 * 0.25 / 12.0) / mean_ions);
  EXPECT_NEAR(std::sqrt(MomentsOf(centroids).variance) / limit_ns, 1.0,
              4.0 / std::sqrt(2.0 * kSpectra));
}

TEST(VirtualPhysics, StrongPeakComesEarly) {
  struct Row {
    double lambda;
    double mass_ppm;
    double tolerance;
  };
  for (const Row& row : {Row{0.04, -0.24, 0.02}, Row{0.3, -1.8, 0.06}, Row{1.0, -5.9, 0.06},
                         Row{3.0, -16.0, 0.6}, Row{8.0, -29.0, 0.6}}) {
    Parameters parameters = QuietLonePeak(row.lambda);
    parameters.analyzer.t0_ns = 0.0;
    parameters.acquisition.bin_ns = 0.02;
    parameters.acquisition.pulses_per_spectrum = 1'000'000'000;
    VirtualPhysics physics(parameters, 11);
    const double center_ns = FlightTimeNs(parameters, parameters.calibrants[0].mass_u, 0.0);
    const PeakMoments peak = MomentsAround(physics.Acquire(0.0, kRfVolts, 1), center_ns, 2.0);
    EXPECT_NEAR(2e6 * (peak.centroid_ns / center_ns - 1.0), row.mass_ppm, row.tolerance)
        << "lambda " << row.lambda;
  }
}

TEST(VirtualPhysics, DriftMovesThePeak) {
  Parameters parameters = QuietLonePeak(0.01);
  parameters.acquisition.bin_ns = 0.05;
  parameters.acquisition.pulses_per_spectrum = 100'000'000;
  parameters.drift.rate_ppm_per_min = 20.0;
  VirtualPhysics physics(parameters, 12);
  const double mass_u = parameters.calibrants[0].mass_u;
  physics.Acquire(0.0, kRfVolts, kGainChannel);
  EXPECT_NEAR(physics.drift_ppm(), 20.0 * 0.5 / 60.0, 1e-12);  // at the middle of the first second
  const auto later = physics.Acquire(299.5, kRfVolts, kGainChannel);
  EXPECT_NEAR(physics.drift_ppm(), 100.0, 1e-9);
  const double still_ns = FlightTimeNs(parameters, mass_u, 0.0);
  const double shift_ns = MomentsAround(later, still_ns, 3.0).centroid_ns - still_ns;
  EXPECT_NEAR(shift_ns, 50e-6 * (still_ns - parameters.analyzer.t0_ns), 0.002);
}

TEST(VirtualPhysics, IsotopesKeepTheirRatio) {
  Parameters parameters;
  parameters.detector.electronic_noise_sd_counts = 0.0;
  parameters.detector.baseline_counts = 0.0;
  parameters.drift = {0.0, 0.0};
  parameters.flicker = {0.0, 0.0, 0.0};
  parameters.contaminants.clear();
  parameters.calibrants = {SpeciesOfFormula("C26H26O52Na27", 0.01)};
  parameters.acquisition.pulses_per_spectrum = 1'000'000'000;
  parameters.detector.gain_channels[0].saturation_counts = 1e15;
  VirtualPhysics physics(parameters, 13);
  const auto spectrum = physics.Acquire(0.0, 150.0, kGainChannel);
  const double mass_u = parameters.calibrants[0].mass_u;
  const std::vector<IsotopePeak> pattern = IsotopePattern(parameters.calibrants[0].composition);
  ASSERT_GE(pattern.size(), 4U);
  const auto ions_of = [&](const IsotopePeak& isotope) {
    const double isotope_mass_u = mass_u + isotope.mass_offset_u;
    return MomentsAround(spectrum, FlightTimeNs(parameters, isotope_mass_u, 0.0), 5.0).ions /
           Transmission(parameters.rf_guide, isotope_mass_u, 150.0);
  };
  const double first = ions_of(pattern[0]);
  for (std::size_t i = 1; i < 4; ++i) {
    // The strongest loses 0.5 % to its own dead time, the weaker ones less.
    EXPECT_NEAR(ions_of(pattern[i]) / first / pattern[i].relative_abundance, 1.0, 0.01) << i;
  }
}

// The dead time covers every bin that it reaches into, and no further one.
TEST(VirtualPhysics, IsBlindForTheBinsOfItsDeadTime) {
  struct Row {
    double dead_time_ns;  // with bins of 0.25 ns
    std::size_t dead_bins;
  };
  for (const Row& row : {Row{0.0, 0}, Row{0.1, 1}, Row{0.25, 1}, Row{0.3, 2}, Row{0.75, 3}}) {
    Parameters parameters = QuietLonePeak(2.0);
    parameters.detector.dead_time_ns = row.dead_time_ns;
    parameters.acquisition.pulses_per_spectrum = 1'000'000;
    const double center_ns = FlightTimeNs(parameters, parameters.calibrants[0].mass_u, 0.0);
    const TimeBins bins{14'000.0, 0.25, 12'000};
    std::vector<double> arriving(bins.count);
    AddGaussianPeak(bins, center_ns, PeakSigmaNs(parameters.analyzer, center_ns), 2.0, arriving);
    const auto expected = ExpectedRecordedIons(arriving, row.dead_bins);
    const auto spectrum = VirtualPhysics(parameters, 21).Acquire(0.0, kRfVolts, 1);
    const double recorded = MomentsAround(spectrum, center_ns, 5.0).ions / 1e6;
    EXPECT_NEAR(recorded / std::accumulate(expected.begin(), expected.end(), 0.0), 1.0, 0.005)
        << row.dead_time_ns;
  }
}

TEST(VirtualPhysics, BinHoldsNoMoreThanItsSaturation) {
  Parameters parameters = QuietLonePeak(3.0);
  parameters.detector.gain_channels = {{kCountsPerIon, 400'000.0}};
  VirtualPhysics physics(parameters, 14);
  const auto spectrum = physics.Acquire(0.0, kRfVolts, 1);
  int full = 0;
  for (const double counts : spectrum.intensity) {
    EXPECT_LE(counts, 400'000.0);
    if (counts == 400'000.0) ++full;
  }
  EXPECT_GE(full, 2);
}

TEST(VirtualPhysics, GainChannelScalesTheSameIons) {
  const Parameters parameters = QuietLonePeak(0.05);
  VirtualPhysics low(parameters, 15);
  VirtualPhysics high(parameters, 15);
  const auto low_counts = low.Acquire(0.0, kRfVolts, 1).intensity;
  const auto high_counts = high.Acquire(0.0, kRfVolts, 2).intensity;
  for (std::size_t j = 0; j < low_counts.size(); ++j) {
    ASSERT_EQ(high_counts[j], 4.0 * low_counts[j]);
  }
}

TEST(VirtualPhysics, RefusesWhatCannotBeAndGoesOnUnchanged) {
  VirtualPhysics asked_nonsense(Parameters(), 16);
  VirtualPhysics twin(Parameters(), 16);
  asked_nonsense.Acquire(10.0, 75.0, kGainChannel);
  twin.Acquire(10.0, 75.0, kGainChannel);
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  spectra::Spectrum kept{{1.0}, {2.0}, 3.0};
  EXPECT_THROW(asked_nonsense.Acquire(11.0, 75.0, 0, kept), std::invalid_argument);
  EXPECT_THROW(asked_nonsense.Acquire(11.0, 75.0, 3, kept), std::invalid_argument);
  EXPECT_THROW(asked_nonsense.Acquire(11.0, kNan, kGainChannel, kept), std::invalid_argument);
  EXPECT_THROW(asked_nonsense.Acquire(9.0, 75.0, kGainChannel, kept), std::invalid_argument);
  EXPECT_EQ(kept.intensity, std::vector<double>{2.0});
  EXPECT_EQ(asked_nonsense.Acquire(11.0, 75.0, kGainChannel).intensity,
            twin.Acquire(11.0, 75.0, kGainChannel).intensity);
}

}  // namespace
}  // namespace tof::virtual_instrument
