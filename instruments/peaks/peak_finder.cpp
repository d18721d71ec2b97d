#include "instruments/peaks/peak_finder.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "instruments/peaks/alignment.h"

namespace tof::peaks {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kOwnWindowPercent = 2.0;
// Without at least this many calibrants on one smooth correction, nothing is known of the
// calibration's error.
constexpr std::size_t kLeastAligned = 3;
// Final search around the corrected time: so many times the spread of the aligned calibrants, but
// not less than a part of the peak width, and never near a neighbouring isotope.
constexpr double kFinalToleranceSpreads = 6.0;
constexpr double kLeastFinalToleranceFwhm = 0.6;
constexpr double kFinalToleranceOfSpacing = 0.4;
// Without an alignment: the window, but not further than a calibration in force is off.
constexpr double kUnalignedWindowPercent = 0.2;
// A second cluster of this share of the first makes it unclear which one is meant.
constexpr double kAmbiguousShare = 0.5;

struct PickedSpectrum {
  Trace trace;
  PeakWidthModel width;
  std::vector<Peak> peaks;
};

PickedSpectrum Pick(const spectra::Spectrum& spectrum, double start_ns, double end_ns,
                    const FinderOptions& options) {
  PickedSpectrum picked;
  picked.trace = ExtractTrace(spectrum, start_ns, end_ns);
  picked.width = options.resolving_power ? WidthFromResolvingPower(*options.resolving_power)
                                         : EstimatePeakWidth(picked.trace);
  picked.peaks = PickPeaks(picked.trace, picked.width, options.pick);
  return picked;
}

std::vector<Expected> ExpectedTimes(std::span<const double> masses,
                                    const masstime::MassTimeModel& calibration,
                                    double window_percent) {
  std::vector<Expected> expected;
  for (const double mass : masses) {
    const double time_ns = masstime::MassToTime(calibration, mass);
    expected.push_back({time_ns, 0.01 * window_percent * std::abs(time_ns)});
  }
  return expected;
}

// The most abundant of `peaks` within the tolerance.
std::optional<Peak> PeakNear(std::span<const Peak> peaks, double time_ns, double tolerance_ns) {
  std::optional<Peak> best;
  for (const Peak& peak : peaks) {
    if (!(std::abs(peak.time_ns - time_ns) <= tolerance_ns)) continue;
    if (!best || peak.abundance > best->abundance) best = peak;
  }
  return best;
}

double FinalTolerance(double time_ns, const Alignment& alignment,
                      const masstime::MassTimeModel& calibration, const PeakWidthModel& width) {
  const double least = kLeastFinalToleranceFwhm * width.FwhmAt(time_ns);
  const double spread = kFinalToleranceSpreads * alignment.spread * time_ns;
  const double isotope = kFinalToleranceOfSpacing * IsotopeSpacing(calibration, time_ns);
  return std::max(std::min(spread, isotope), least);
}

// The most abundant peak between two flight times. The whole spectrum is picked, for the width of a
// peak and the noise are taken from it.
std::optional<Peak> PeakBetween(const spectra::Spectrum& spectrum, double start_ns, double end_ns,
                                const FinderOptions& options) {
  const PickedSpectrum picked = Pick(spectrum, -kInfinity, kInfinity, options);
  return PeakNear(picked.peaks, 0.5 * (start_ns + end_ns), 0.5 * (end_ns - start_ns));
}

double AbundanceOf(const std::optional<Peak>& peak) {
  return peak ? peak->abundance : 0.0;
}

// The one cluster in the window, or the one that outweighs all others.
std::optional<Peak> OnlyCluster(std::span<const Cluster> clusters, const Expected& expected) {
  const double reach_ns =
      std::min(expected.window_ns, 0.01 * kUnalignedWindowPercent * expected.time_ns);
  const Cluster* best = nullptr;
  double second = 0.0;
  for (const Cluster& cluster : clusters) {
    if (!(std::abs(cluster.first.time_ns - expected.time_ns) <= reach_ns)) continue;
    if (best == nullptr || cluster.abundance > best->abundance) {
      if (best != nullptr) second = best->abundance;
      best = &cluster;
    } else {
      second = std::max(second, cluster.abundance);
    }
  }
  if (best == nullptr || second > kAmbiguousShare * best->abundance) return std::nullopt;
  return best->first;
}

}  // namespace

std::vector<std::optional<Peak>> FindCalibrants(const spectra::Spectrum& spectrum,
                                                std::span<const double> masses,
                                                const masstime::MassTimeModel& calibration,
                                                double window_percent,
                                                const FinderOptions& options) {
  if (window_percent == kOwnWindow) window_percent = kOwnWindowPercent;
  if (!(window_percent >= 0.0)) {
    throw std::invalid_argument(
        fmt::format("peak-find window {} % of the flight time is negative", window_percent));
  }
  std::vector<std::optional<Peak>> found(masses.size());
  const PickedSpectrum picked = Pick(spectrum, -kInfinity, kInfinity, options);
  const std::vector<Cluster> clusters = GroupIsotopes(picked.peaks, calibration, picked.width);
  const std::vector<Expected> expected = ExpectedTimes(masses, calibration, window_percent);
  const Alignment alignment = AlignTimes(expected, clusters, picked.width);
  for (std::size_t i = 0; i < masses.size(); ++i) {
    if (alignment.matched < kLeastAligned) {
      found[i] = OnlyCluster(clusters, expected[i]);
      continue;
    }
    const double time_ns = alignment.Correct(expected[i].time_ns);
    if (!(std::abs(time_ns - expected[i].time_ns) <= expected[i].window_ns)) continue;
    found[i] = PeakNear(picked.peaks, time_ns,
                        FinalTolerance(time_ns, alignment, calibration, picked.width));
  }
  return found;
}

std::vector<Peak> FindPeaks(const spectra::Spectrum& spectrum, double start_ns, double end_ns,
                            std::size_t count, const masstime::MassTimeModel& calibration,
                            const FinderOptions& options) {
  const PickedSpectrum picked = Pick(spectrum, start_ns, end_ns, options);
  std::vector<Cluster> clusters = GroupIsotopes(picked.peaks, calibration, picked.width);
  std::stable_sort(clusters.begin(), clusters.end(),
                   [](const Cluster& a, const Cluster& b) { return a.abundance > b.abundance; });
  clusters.resize(std::min(clusters.size(), count));
  std::vector<Peak> peaks;
  peaks.reserve(clusters.size());
  for (const Cluster& cluster : clusters) peaks.push_back(cluster.first);
  std::sort(peaks.begin(), peaks.end(),
            [](const Peak& a, const Peak& b) { return a.time_ns < b.time_ns; });
  return peaks;
}

std::optional<Peak> FindPeakAtMass(const spectra::Spectrum& spectrum, double mass,
                                   double tolerance_mz, const masstime::MassTimeModel& calibration,
                                   const FinderOptions& options) {
  const double from_ns = masstime::MassToTime(calibration, mass - tolerance_mz);
  const double to_ns = masstime::MassToTime(calibration, mass + tolerance_mz);
  return PeakBetween(spectrum, from_ns, to_ns, options);
}

double MeasurePeakAbundance(const spectra::Spectrum& spectrum, double mass, double tolerance_mz,
                            const masstime::MassTimeModel& calibration,
                            const FinderOptions& options) {
  return AbundanceOf(FindPeakAtMass(spectrum, mass, tolerance_mz, calibration, options));
}

double MeasureAbundanceBetween(const spectra::Spectrum& spectrum, double start_ns, double end_ns,
                               const FinderOptions& options) {
  return AbundanceOf(PeakBetween(spectrum, start_ns, end_ns, options));
}

}  // namespace tof::peaks
