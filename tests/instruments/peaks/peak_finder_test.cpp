#include "instruments/peaks/peak_finder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "tests/instruments/peaks/simulated_spectrum.h"

namespace tof::peaks {
namespace {

const masstime::MassTimeModel kModel{{6.5e-4, 300.0}, {12'000.0, 99'000.0}};
constexpr double kResolvingPower = 10'000.0;
constexpr double kGain = 250.0;
const std::vector<double> kMasses{158.964, 362.926, 702.863, 906.826, 1178.775, 1790.662, 2600.0};

double TimeOf(double mass) {
  return masstime::MassToTime(kModel, mass);
}

masstime::MassTimeModel Off(double a_factor, double t0_shift_ns) {
  masstime::MassTimeModel model = kModel;
  model.coefficients[masstime::kA] *= a_factor;
  model.coefficients[masstime::kT0] += t0_shift_ns;
  return model;
}

// All of `masses` and some chemical noise, on a baseline.
SimulatedSpectrum SpectrumOf(const std::vector<double>& masses, double ions = 2'000.0) {
  SimulatedSpectrum spectrum(15'000.0, 85'000.0, 0.5);
  for (const double mass : masses) {
    spectrum.AddCluster(kModel, mass, kResolvingPower, ions, kGain);
  }
  for (double mass = 133.3; mass < 2'500.0; mass *= 1.37) {
    spectrum.AddCluster(kModel, mass, kResolvingPower, 150.0, kGain);
  }
  spectrum.AddBackground(30.0, 10.0);
  return spectrum;
}

void ExpectAllFound(const std::vector<std::optional<Peak>>& peaks) {
  ASSERT_EQ(peaks.size(), kMasses.size());
  for (std::size_t i = 0; i < kMasses.size(); ++i) {
    ASSERT_TRUE(peaks[i].has_value()) << kMasses[i];
    EXPECT_NEAR(peaks[i]->time_ns, TimeOf(kMasses[i]), 0.4) << kMasses[i];
  }
}

TEST(PeakFinder, TakesTheFirstIsotopeOfACluster) {
  ExpectAllFound(FindCalibrants(SpectrumOf(kMasses).Get(), kMasses, kModel, kOwnWindow));
}

TEST(PeakFinder, FindsCalibrantsFromACalibrationThatIsOff) {
  const SimulatedSpectrum spectrum = SpectrumOf(kMasses);
  for (const double a_factor : {0.99, 1.0, 1.01}) {
    for (const double t0_shift_ns : {-50.0, 0.0, 50.0}) {
      SCOPED_TRACE(testing::Message() << "A x " << a_factor << ", t0 + " << t0_shift_ns << " ns");
      ExpectAllFound(
          FindCalibrants(spectrum.Get(), kMasses, Off(a_factor, t0_shift_ns), kOwnWindow));
    }
  }
}

TEST(PeakFinder, ResultIsInTheOrderOfTheMasses) {
  const std::vector<double> masses{kMasses[4], kMasses[0], kMasses[6], kMasses[2]};
  const auto peaks = FindCalibrants(SpectrumOf(kMasses).Get(), masses, kModel, kOwnWindow);
  for (std::size_t i = 0; i < masses.size(); ++i) {
    ASSERT_TRUE(peaks[i].has_value());
    EXPECT_NEAR(peaks[i]->time_ns, TimeOf(masses[i]), 0.4);
  }
}

TEST(PeakFinder, ACalibrantThatIsNotThereIsNotGuessed) {
  std::vector<double> present = kMasses;
  present.erase(present.begin() + 3);
  const auto peaks = FindCalibrants(SpectrumOf(present).Get(), kMasses, kModel, kOwnWindow);
  for (std::size_t i = 0; i < kMasses.size(); ++i) EXPECT_EQ(peaks[i].has_value(), i != 3);
}

TEST(PeakFinder, FindsNothingInAnEmptySpectrumOrInNoise) {
  const auto none = [](const spectra::Spectrum& spectrum) {
    const auto peaks = FindCalibrants(spectrum, kMasses, kModel, kOwnWindow);
    return std::none_of(peaks.begin(), peaks.end(),
                        [](const std::optional<Peak>& peak) { return peak.has_value(); });
  };
  EXPECT_TRUE(none({{}, {}, 0.5}));
  EXPECT_TRUE(none({{20'000.0}, {1.0}, 0.5}));
  SimulatedSpectrum noise(15'000.0, 85'000.0, 0.5);
  noise.AddBackground(30.0, 10.0);
  EXPECT_TRUE(none(noise.Get()));
}

TEST(PeakFinder, KeepsToTheWindow) {
  const SimulatedSpectrum spectrum = SpectrumOf(kMasses);
  const auto off = Off(1.005, 0.0);  // 0.5 % of the flight time
  ExpectAllFound(FindCalibrants(spectrum.Get(), kMasses, off, 1.0));
  for (const auto& peak : FindCalibrants(spectrum.Get(), kMasses, off, 0.3)) {
    EXPECT_FALSE(peak.has_value());
  }
}

TEST(PeakFinder, AWideWindowStillFindsTheCalibrants) {
  ExpectAllFound(FindCalibrants(SpectrumOf(kMasses).Get(), kMasses, kModel, 10.0));
}

TEST(PeakFinder, RefusesANegativeWindow) {
  EXPECT_THROW(FindCalibrants(SpectrumOf({}).Get(), kMasses, kModel, -1.5), std::invalid_argument);
}

TEST(PeakFinder, OneVisibleCalibrantIsFoundWithAGoodCalibration) {
  const auto peaks =
      FindCalibrants(SpectrumOf({702.863}).Get(), std::vector<double>{702.863}, kModel, kOwnWindow);
  ASSERT_TRUE(peaks[0].has_value());
  EXPECT_NEAR(peaks[0]->time_ns, TimeOf(702.863), 0.4);
}

// Calibrants that scatter widely about the correction are looked for further away, but no further
// than 0.4 of the distance to the next isotope.
TEST(PeakFinder, NeverLooksAsFarAsTheNextIsotope) {
  const std::vector<double> others{300.0, 310.0, 700.0, 710.0, 1300.0, 1310.0, 2000.0, 2010.0};
  const std::vector<double> signs{1.0, -1.0, -1.0, 1.0, 1.0, -1.0, -1.0, 1.0};
  const auto found_at = [&](double part_of_spacing) {
    SimulatedSpectrum spectrum(15'000.0, 85'000.0, 0.5);
    const auto add = [&spectrum](double time_ns) {
      spectrum.AddSmoothPeak(time_ns, time_ns / (2.0 * kResolvingPower), 150'000.0);
    };
    for (std::size_t i = 0; i < others.size(); ++i) {
      add(TimeOf(others[i]) * (1.0 + 6e-5 * signs[i]));
    }
    const double time_ns = TimeOf(1000.0);
    add(time_ns + part_of_spacing * IsotopeSpacing(kModel, time_ns));
    spectrum.AddBackground(30.0, 10.0);
    std::vector<double> masses = others;
    masses.push_back(1000.0);
    const auto peaks = FindCalibrants(spectrum.Get(), masses, kModel, kOwnWindow);
    for (std::size_t i = 0; i < others.size(); ++i) EXPECT_TRUE(peaks[i].has_value()) << others[i];
    return peaks.back().has_value();
  };
  EXPECT_TRUE(found_at(0.25));
  EXPECT_FALSE(found_at(0.5));
  EXPECT_FALSE(found_at(-0.5));
}

TEST(PeakFinder, TwoLikeClustersInTheWindowOfALoneCalibrantAreAmbiguous) {
  const std::vector<double> masses{702.863};
  EXPECT_FALSE(FindCalibrants(SpectrumOf({702.863, 704.5}).Get(), masses, kModel, kOwnWindow)[0]
                   .has_value());
}

TEST(PeakFinder, FindPeaksGivesTheMostAbundantClustersInTimeOrder) {
  const auto peaks =
      FindPeaks(SpectrumOf(kMasses).Get(), 15'000.0, 85'000.0, kMasses.size(), Off(1.02, 50.0));
  ASSERT_EQ(peaks.size(), kMasses.size());
  for (std::size_t i = 0; i < kMasses.size(); ++i) {
    EXPECT_NEAR(peaks[i].time_ns, TimeOf(kMasses[i]), 0.4);
  }
}

TEST(PeakFinder, FindPeaksKeepsToTheRangeAndToWhatThereIs) {
  const SimulatedSpectrum spectrum = SpectrumOf(kMasses);
  const auto peaks = FindPeaks(spectrum.Get(), 40'000.0, 60'000.0, 1'000, kModel);
  EXPECT_LT(peaks.size(), 40U);
  for (const Peak& peak : peaks) {
    EXPECT_GE(peak.time_ns, 40'000.0);
    EXPECT_LE(peak.time_ns, 60'000.0);
  }
  EXPECT_TRUE(FindPeaks(spectrum.Get(), 40'000.0, 60'000.0, 0, kModel).empty());
  EXPECT_TRUE(FindPeaks(spectrum.Get(), 60'000.0, 40'000.0, 5, kModel).empty());
}

TEST(PeakFinder, AbundanceIsThatOfThePeakNearestTheMass) {
  SimulatedSpectrum spectrum(15'000.0, 85'000.0, 0.5);
  const double time_ns = TimeOf(702.863);
  spectrum.AddSmoothPeak(time_ns, time_ns / (2.0 * kResolvingPower), 150'000.0);
  spectrum.AddBackground(30.0, 10.0);
  EXPECT_NEAR(MeasurePeakAbundance(spectrum.Get(), 702.863, 0.1, kModel), 150'000.0, 3'000.0);
  EXPECT_NEAR(MeasurePeakAbundance(spectrum.Get(), 702.80, 0.1, kModel), 150'000.0, 3'000.0);
  EXPECT_EQ(MeasurePeakAbundance(spectrum.Get(), 702.6, 0.1, kModel), 0.0);
  EXPECT_EQ(MeasurePeakAbundance({{}, {}, 0.5}, 702.6, 0.1, kModel), 0.0);
}

TEST(PeakFinder, AKnownResolvingPowerReplacesTheEstimate) {
  FinderOptions options;
  options.resolving_power = kResolvingPower;
  ExpectAllFound(FindCalibrants(SpectrumOf(kMasses).Get(), kMasses, kModel, kOwnWindow, options));
}

}  // namespace
}  // namespace tof::peaks
