#include "instruments/peaks/peak_picking.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "tests/instruments/peaks/simulated_spectrum.h"

namespace tof::peaks {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

Trace TraceOf(const SimulatedSpectrum& spectrum) {
  return ExtractTrace(spectrum.Get(), -kInfinity, kInfinity);
}

std::vector<Peak> Pick(const SimulatedSpectrum& spectrum) {
  const Trace trace = TraceOf(spectrum);
  return PickPeaks(trace, EstimatePeakWidth(trace), {});
}

TEST(PeakWidth, IsThatOfTheStrongestPeaksAndGrowsAsTheyDo) {
  SimulatedSpectrum spectrum(10'000.0, 70'000.0, 0.5);
  for (double time_ns = 12'000.0; time_ns < 68'000.0; time_ns += 3'000.0) {
    spectrum.AddSmoothPeak(time_ns, time_ns / 10'000.0, 1e6);
  }
  spectrum.AddBackground(0.0, 20.0);
  const PeakWidthModel width = EstimatePeakWidth(TraceOf(spectrum));
  for (const double time_ns : {15'000.0, 40'000.0, 65'000.0}) {
    EXPECT_NEAR(width.FwhmAt(time_ns) / (time_ns / 10'000.0), 1.0, 0.1);
  }
  EXPECT_NEAR(width.exponent, 1.0, 0.1);
}

TEST(PeakWidth, OfAnEmptyTraceIsTwoBins) {
  EXPECT_EQ(EstimatePeakWidth({0.0, 0.5, std::vector<double>(1000)}).FwhmAt(100.0), 1.0);
  EXPECT_EQ(EstimatePeakWidth({0.0, 0.5, {}}).FwhmAt(100.0), 1.0);
}

TEST(PeakPicking, FindsPeaksOnABaselineWithNoise) {
  SimulatedSpectrum spectrum(10'000.0, 40'000.0, 0.5);
  for (double time_ns = 11'000.25; time_ns < 40'000.0; time_ns += 2'000.0) {
    spectrum.AddSmoothPeak(time_ns, 3.0, 3e4);
  }
  spectrum.AddBackground(1'000.0, 50.0);
  const std::vector<Peak> peaks = Pick(spectrum);
  ASSERT_EQ(peaks.size(), 15U);
  for (std::size_t i = 0; i < peaks.size(); ++i) {
    EXPECT_NEAR(peaks[i].time_ns, 11'000.25 + 2'000.0 * static_cast<double>(i), 0.1);
    EXPECT_NEAR(peaks[i].fwhm_ns, 3.0, 0.3);
    EXPECT_NEAR(peaks[i].abundance, 3e4, 1'500.0);
    EXPECT_GT(peaks[i].snr, 50.0);
  }
}

TEST(PeakPicking, FindsNearlyNothingInNoise) {
  std::size_t found = 0;
  for (std::uint64_t seed = 1; seed <= 10; ++seed) {
    SimulatedSpectrum spectrum(10'000.0, 40'000.0, 0.5, seed);
    spectrum.AddSmoothPeak(20'000.0, 3.0, 1e6).AddBackground(100.0, 10.0);
    const std::vector<Peak> peaks = Pick(spectrum);
    ASSERT_GE(peaks.size(), 1U);
    found += peaks.size() - 1;
  }
  EXPECT_LE(found, 3U);
}

TEST(PeakPicking, BearsNegativeIntensitiesOfASubtractedMedian) {
  SimulatedSpectrum spectrum(1'500.0, 21'500.0, 0.2);
  spectrum.AddSmoothPeak(9'000.0, 30.0, 900.0).AddBackground(-0.05, 0.03);
  const std::vector<Peak> peaks = Pick(spectrum);
  ASSERT_EQ(peaks.size(), 1U);
  EXPECT_NEAR(peaks[0].time_ns, 9'000.0, 0.3);
}

TEST(PeakPicking, InACountingSpectrumOneIonIsNoPeak) {
  SimulatedSpectrum spectrum(10'000.0, 40'000.0, 0.5);
  for (int i = 0; i < 300; ++i) spectrum.AddCountedPeak(10'050.0 + 99.0 * i, 3.0, 1.0, 250.0);
  spectrum.AddCountedPeak(25'000.0, 3.0, 200.0, 250.0);
  spectrum.DropBinsUpTo(0.0);
  const std::vector<Peak> peaks = Pick(spectrum);
  ASSERT_GE(peaks.size(), 1U);
  EXPECT_LE(peaks.size(), 5U);
  const auto strongest = std::max_element(
      peaks.begin(), peaks.end(), [](const Peak& a, const Peak& b) { return a.snr < b.snr; });
  EXPECT_NEAR(strongest->time_ns, 25'000.0, 0.5);
  EXPECT_NEAR(strongest->abundance, 200.0 * 250.0, 4.0 * std::sqrt(200.0) * 250.0);
}

TEST(PeakPicking, LeftOutEmptyBinsChangeNothing) {
  SimulatedSpectrum all(10'000.0, 20'000.0, 0.5);
  all.AddCountedPeak(12'000.0, 3.0, 300.0, 250.0).AddCountedPeak(17'000.0, 4.0, 300.0, 250.0);
  SimulatedSpectrum thinned = all;
  thinned.DropBinsUpTo(0.0);
  const std::vector<Peak> expected = Pick(all), peaks = Pick(thinned);
  ASSERT_EQ(peaks.size(), 2U);
  ASSERT_EQ(expected.size(), 2U);
  // The pieces begin elsewhere, so that the width of a piece differs a little.
  for (std::size_t i = 0; i < 2; ++i) EXPECT_NEAR(peaks[i].time_ns, expected[i].time_ns, 0.01);
}

TEST(PeakPicking, TakesNoPeaksFromAnEmptyTrace) {
  EXPECT_TRUE(PickPeaks({0.0, 0.5, {}}, {}, {}).empty());
  EXPECT_TRUE(PickPeaks({0.0, 0.5, std::vector<double>(5'000)}, {}, {}).empty());
  EXPECT_TRUE(PickPeaks({0.0, 0.5, std::vector<double>(5'000, 7.0)}, {}, {}).empty());
}

}  // namespace
}  // namespace tof::peaks
