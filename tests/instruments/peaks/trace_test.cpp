#include "instruments/peaks/trace.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>

namespace tof::peaks {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

Trace Extract(const spectra::Spectrum& spectrum) {
  return ExtractTrace(spectrum, -kInfinity, kInfinity);
}

TEST(Trace, BinsThatAreLeftOutAreZero) {
  const Trace trace = Extract({{100.0, 100.5, 102.0}, {1.0, 2.0, 3.0}, 0.5});
  EXPECT_EQ(trace.intensity, (std::vector<double>{1.0, 2.0, 0.0, 0.0, 3.0}));
  EXPECT_EQ(trace.TimeOf(4.0), 102.0);
  EXPECT_EQ(trace.BinOf(101.0), 2.0);
}

TEST(Trace, TakesTheBinsOfTheRangeOnly) {
  const spectra::Spectrum spectrum{{1.0, 2.0, 3.0, 4.0}, {1.0, 2.0, 3.0, 4.0}, 1.0};
  const Trace trace = ExtractTrace(spectrum, 2.0, 3.0);
  EXPECT_EQ(trace.start_ns, 2.0);
  EXPECT_EQ(trace.intensity, (std::vector<double>{2.0, 3.0}));
  EXPECT_TRUE(ExtractTrace(spectrum, 5.0, 9.0).intensity.empty());
  EXPECT_TRUE(Extract({{}, {}, 1.0}).intensity.empty());
}

TEST(Trace, BinOffTheGridKeepsItsCentroid) {
  const Trace trace = Extract({{10.0, 11.25, 14.0}, {0.0, 8.0, 0.0}, 1.0});
  EXPECT_DOUBLE_EQ(trace.intensity[1], 6.0);
  EXPECT_DOUBLE_EQ(trace.intensity[2], 2.0);
}

TEST(Trace, TimesReadFromTextAreOnTheGrid) {
  spectra::Spectrum spectrum;
  spectrum.bin_width_ns = 0.2;
  for (int i = 0; i < 70'000; ++i) {
    spectrum.time_ns.push_back(0.1 * (79'406 + 2 * i));
    spectrum.intensity.push_back(i);
  }
  const Trace trace = Extract(spectrum);
  ASSERT_EQ(trace.intensity.size(), 70'000U);
  for (int i = 0; i < 70'000; ++i) ASSERT_EQ(trace.intensity[static_cast<std::size_t>(i)], i);
}

std::string RefusalOf(const spectra::Spectrum& spectrum) {
  try {
    Extract(spectrum);
    return "none";
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
}

TEST(Trace, RefusesASpectrumThatMakesNoSense) {
  EXPECT_EQ(RefusalOf({{1.0}, {1.0}, 0.0}), "bin width 0 ns of a spectrum is not positive");
  EXPECT_EQ(RefusalOf({{1.0}, {1.0}, -0.5}), "bin width -0.5 ns of a spectrum is not positive");
  EXPECT_EQ(RefusalOf({{1.0, 2.0}, {1.0}, 1.0}), "a spectrum has 2 times but 1 intensities");
  EXPECT_EQ(RefusalOf({{1.5, 1e12}, {1.0, 1.0}, 0.25}),
            "a spectrum from 1.5 to 1000000000000 ns has too many bins of 0.25 ns");
}

}  // namespace
}  // namespace tof::peaks
