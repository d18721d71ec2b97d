// What a series of calibrations comes to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/study/virtual_run.h"

namespace tof::study {

// Of one true error, in ppm: the root of its mean square over the series, and the largest.
struct ErrorOfSeries {
  double rms = 0.0;
  double largest = 0.0;
};

struct SeriesFigures {
  ErrorOfSeries in_band;
  ErrorOfSeries at_calibration;
  double limit_ppm = 0.0;  // root of the mean square
  // Of weak peaks: mean of the offset that all masses share, of the one that the calibrants'
  // abundance predicts, and the largest difference of the two.
  double weak_common_ppm = 0.0;
  double weak_predicted_ppm = 0.0;
  double weak_largest_miss_ppm = 0.0;
};

// How many of the masses ended in the band of abundances.
struct BandHits {
  std::size_t masses = 0;
  std::size_t stored_in_band = 0;    // minimum to maximum
  std::size_t expected_in_band = 0;  // minimum to 1.1 times the maximum, without noise
};

// Calibrations that differ in their seed.
struct Series {
  VirtualRun run;
  std::vector<VirtualResult> results;  // of those that came to an end
  std::size_t failed = 0;
};

// Seeds 1 to `seeds`. Throws as Run does.
Series RunSeries(VirtualRun run, std::uint64_t seeds);
// The same, of calibrations that are expected to fail now and then.
Series RunSeriesWithFailures(VirtualRun run, std::uint64_t seeds);

SeriesFigures FiguresOf(const Series& series);
BandHits HitsOf(const Series& series);
double MeanInstrumentSeconds(const Series& series);
double MeanSpectra(const Series& series);

// 200 masses, spread evenly in the logarithm over the built-in instrument's calibrants.
std::vector<double> CheckMasses();

// The true error, in ppm, of a peak in the middle of the band at each of these masses.
std::vector<double> TrueErrorsInMidBand(const virtual_instrument::Parameters& physics,
                                        const VirtualResult& result);

// A table in Markdown; the first row is its head.
std::string MarkdownTable(const std::vector<std::vector<std::string>>& rows);

}  // namespace tof::study
