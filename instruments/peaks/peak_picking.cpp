#include "instruments/peaks/peak_picking.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace tof::peaks {
namespace {

// A piece of the trace whose baseline and noise are taken together. Long enough that a cluster of
// isotopes fills a small part of it, short enough to follow the background.
constexpr double kPieceFwhm = 256.0;
constexpr double kAbundanceReachFwhm = 1.5;
constexpr double kSigmaPerMedianDeviation = 1.4826;  // of a normal distribution

struct Piece {
  std::size_t begin;
  std::size_t end;
  std::size_t smoothing_bins;  // odd
  double fwhm_bins;
};

struct Background {
  double baseline = 0.0;
  double noise = 0.0;  // standard deviation of the smoothed trace
};

Piece PieceFrom(const Trace& trace, std::size_t begin, const PeakWidthModel& width) {
  const double fwhm_bins =
      std::max(1.0, width.FwhmAt(trace.TimeOf(static_cast<double>(begin))) / trace.bin_ns);
  const auto smoothing = 2 * static_cast<std::size_t>(fwhm_bins / 2.0) + 1;
  const auto length = static_cast<std::size_t>(kPieceFwhm * fwhm_bins);
  // The rest of the trace joins the last piece when it is too short for one of its own.
  const std::size_t rest = trace.intensity.size() - begin;
  return {begin, rest < length + length / 2 ? trace.intensity.size() : begin + length, smoothing,
          fwhm_bins};
}

// The bins of the piece and `margin` more on either side; 0 beyond the trace.
void CopyWithMargins(const Trace& trace, const Piece& piece, std::size_t margin,
                     std::vector<double>& copy) {
  const std::vector<double>& y = trace.intensity;
  copy.assign(piece.end - piece.begin + 2 * margin, 0.0);
  const std::size_t before = std::min(margin, piece.begin);
  const std::size_t after = std::min(margin, y.size() - piece.end);
  std::copy(y.begin() + static_cast<std::ptrdiff_t>(piece.begin - before),
            y.begin() + static_cast<std::ptrdiff_t>(piece.end + after),
            copy.begin() + static_cast<std::ptrdiff_t>(margin - before));
}

// Means over `smoothing_bins` around each bin, from one such width before the piece to one after
// it, so that a maximum at its edge is recognised. `bins` is working space.
void Smooth(const Trace& trace, const Piece& piece, std::vector<double>& bins,
            std::vector<double>& smoothed) {
  const std::size_t width = piece.smoothing_bins;
  CopyWithMargins(trace, piece, width + width / 2, bins);
  smoothed.resize(bins.size() - width + 1);
  const double scale = 1.0 / static_cast<double>(width);
  double sum =
      std::accumulate(bins.begin(), bins.begin() + static_cast<std::ptrdiff_t>(width), 0.0);
  smoothed[0] = sum * scale;
  for (std::size_t i = 1; i < smoothed.size(); ++i) {
    sum += bins[i + width - 1] - bins[i - 1];
    smoothed[i] = sum * scale;
  }
}

double MedianOf(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Size of a single ion in a counting spectrum: a low quantile of the bins that hold something.
double SingleIonSize(const Trace& trace) {
  std::vector<double> filled;
  for (const double value : trace.intensity) {
    if (value > 0.0) filled.push_back(value);
  }
  if (filled.empty()) return 0.0;
  const auto quartile = filled.begin() + static_cast<std::ptrdiff_t>(filled.size() / 4);
  std::nth_element(filled.begin(), quartile, filled.end());
  return *quartile;
}

// Baseline and noise of a piece, from independent samples of it, one per smoothing width.
class BackgroundEstimate {
 public:
  explicit BackgroundEstimate(const Trace& trace) : trace_(trace) {}

  Background Of(const Piece& piece, const std::vector<double>& smoothed) {
    samples_.clear();
    for (std::size_t i = piece.smoothing_bins; i + piece.smoothing_bins < smoothed.size();
         i += piece.smoothing_bins) {
      samples_.push_back(smoothed[i]);
    }
    if (samples_.empty()) return {};
    Background background;
    background.baseline = MedianOf(samples_);
    background.noise = kSigmaPerMedianDeviation * MedianDeviation(piece, background.baseline);
    return background;
  }

 private:
  // In a counting spectrum most samples are empty and the median deviation would be 0, although
  // single ions come along. There it is that of the samples which are not empty, but no more than a
  // single ion's, because they may hold a peak alone.
  double MedianDeviation(const Piece& piece, double baseline) {
    const std::size_t all = samples_.size();
    for (double& sample : samples_) sample = std::abs(sample - baseline);
    const double rounding = 1e-9 * *std::max_element(samples_.begin(), samples_.end());
    std::erase_if(samples_, [&](double deviation) { return !(deviation > rounding); });
    if (samples_.empty()) return SingleIon() / static_cast<double>(piece.smoothing_bins);
    const double deviation = MedianOf(samples_);
    if (2 * samples_.size() >= all) return deviation;
    return std::min(deviation, SingleIon() / static_cast<double>(piece.smoothing_bins));
  }

  double SingleIon() {
    if (!single_ion_known_) {
      single_ion_ = SingleIonSize(trace_);
      single_ion_known_ = true;
    }
    return single_ion_;
  }

  const Trace& trace_;
  double single_ion_ = 0.0;  // worked out when a piece needs it
  bool single_ion_known_ = false;
  std::vector<double> samples_;
};

// The highest of everything within one smoothing width; the first of equals.
bool IsMaximum(const std::vector<double>& smoothed, std::size_t i, std::size_t reach) {
  for (std::size_t k = 1; k <= reach; ++k) {
    if (!(smoothed[i] > smoothed[i - k]) || !(smoothed[i] >= smoothed[i + k])) return false;
  }
  return true;
}

double SumAround(const Trace& trace, double centre, double reach, double baseline) {
  const double last = static_cast<double>(trace.intensity.size()) - 1.0;
  const auto begin = static_cast<std::size_t>(std::clamp(std::ceil(centre - reach), 0.0, last));
  const auto end = static_cast<std::size_t>(std::clamp(std::floor(centre + reach), 0.0, last));
  double sum = 0.0;
  for (std::size_t i = begin; i <= end; ++i) sum += trace.intensity[i] - baseline;
  return sum;
}

Peak MeasurePeak(const Trace& trace, std::size_t apex, const Piece& piece,
                 const Background& background, const CentroidOptions& options) {
  const double centre = Centroid(trace, apex, piece.fwhm_bins, background.baseline, options);
  Peak peak;
  peak.time_ns = trace.TimeOf(centre);
  if (!std::isfinite(centre)) return peak;
  const std::size_t reach = piece.smoothing_bins / 2 + 1;
  const auto y = trace.intensity.begin();
  const std::size_t from = apex > reach ? apex - reach : 0;
  const std::size_t to = std::min(apex + reach + 1, trace.intensity.size());
  const auto highest =
      std::max_element(y + static_cast<std::ptrdiff_t>(from), y + static_cast<std::ptrdiff_t>(to));
  peak.height = *highest - background.baseline;
  peak.abundance =
      SumAround(trace, centre, kAbundanceReachFwhm * piece.fwhm_bins, background.baseline);
  peak.fwhm_ns = trace.bin_ns * FullWidthAtHalfHeight(trace, static_cast<std::size_t>(highest - y),
                                                      background.baseline);
  return peak;
}

// Two maxima of one peak give one centroid.
void AddPeak(std::vector<Peak>& peaks, const Peak& peak, double fwhm_ns) {
  if (!std::isfinite(peak.time_ns)) return;
  if (!peaks.empty() && peak.time_ns < peaks.back().time_ns + 0.5 * fwhm_ns) {
    if (peak.snr > peaks.back().snr) peaks.back() = peak;
    return;
  }
  peaks.push_back(peak);
}

}  // namespace

std::vector<Peak> PickPeaks(const Trace& trace, const PeakWidthModel& width,
                            const PickOptions& options) {
  std::vector<Peak> peaks;
  BackgroundEstimate estimate(trace);
  std::vector<double> bins;
  std::vector<double> smoothed;
  for (std::size_t begin = 0; begin < trace.intensity.size();) {
    const Piece piece = PieceFrom(trace, begin, width);
    Smooth(trace, piece, bins, smoothed);
    const Background background = estimate.Of(piece, smoothed);
    const double threshold = background.baseline + options.min_snr * background.noise;
    const std::size_t margin = piece.smoothing_bins;
    for (std::size_t i = margin; i + margin < smoothed.size(); ++i) {
      if (!(smoothed[i] > threshold) || !IsMaximum(smoothed, i, margin)) continue;
      Peak peak = MeasurePeak(trace, piece.begin + i - margin, piece, background, options.centroid);
      peak.snr = (smoothed[i] - background.baseline) / background.noise;
      AddPeak(peaks, peak, piece.fwhm_bins * trace.bin_ns);
    }
    begin = piece.end;
  }
  return peaks;
}

}  // namespace tof::peaks
