#include "instruments/peaks/peak_width.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tof::peaks {
namespace {

constexpr std::size_t kSections = 128;
constexpr std::size_t kStrongest = 24;
// A maximum is a peak when it is so many times higher than that of a usual section: most sections
// hold noise or small peaks alone.
constexpr double kHeightOfAPeak = 3.0;
// Flight times must differ by this much for a pair of widths to say how the width grows.
constexpr double kDistinctTimes = 1.15;

double MedianOf(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// The highest bin of each section that is a maximum of the trace and not its section's edge.
std::vector<std::size_t> SectionMaxima(const std::vector<double>& y) {
  std::vector<std::size_t> maxima;
  const std::size_t length = std::max<std::size_t>(y.size() / kSections, 32);
  for (std::size_t begin = 0; begin < y.size(); begin += length) {
    const std::size_t end = std::min(begin + length, y.size());
    const auto highest = std::max_element(y.begin() + static_cast<std::ptrdiff_t>(begin),
                                          y.begin() + static_cast<std::ptrdiff_t>(end));
    const auto apex = static_cast<std::size_t>(highest - y.begin());
    if (*highest > 0.0 && apex > begin && apex + 1 < end) maxima.push_back(apex);
  }
  return maxima;
}

// Slope through all pairs of points by their median (Theil and Sen).
double ExponentOf(const std::vector<double>& times_ns, const std::vector<double>& widths_ns) {
  std::vector<double> slopes;
  for (std::size_t i = 0; i < times_ns.size(); ++i) {
    for (std::size_t j = 0; j < times_ns.size(); ++j) {
      if (times_ns[j] < kDistinctTimes * times_ns[i] || times_ns[i] <= 0.0) continue;
      slopes.push_back(std::log(widths_ns[j] / widths_ns[i]) / std::log(times_ns[j] / times_ns[i]));
    }
  }
  return slopes.size() < 10 ? 1.0 : std::clamp(MedianOf(std::move(slopes)), -1.0, 1.0);
}

}  // namespace

double PeakWidthModel::FwhmAt(double time_ns) const {
  if (!(time_ns > 0.0)) return reference_fwhm_ns;
  return reference_fwhm_ns * std::pow(time_ns / reference_time_ns, exponent);
}

PeakWidthModel WidthFromResolvingPower(double resolving_power) {
  return {1.0, 0.5 / resolving_power, 1.0};
}

double FullWidthAtHalfHeight(const Trace& trace, std::size_t apex, double baseline) {
  const std::vector<double>& y = trace.intensity;
  const double half = baseline + 0.5 * (y[apex] - baseline);
  std::size_t left = apex;
  while (left > 0 && y[left] > half) --left;
  std::size_t right = apex;
  while (right + 1 < y.size() && y[right] > half) ++right;
  auto width = static_cast<double>(right - left);
  if (y[left] < half) width -= (half - y[left]) / (y[left + 1] - y[left]);
  if (y[right] < half) width -= (half - y[right]) / (y[right - 1] - y[right]);
  return width;
}

PeakWidthModel EstimatePeakWidth(const Trace& trace) {
  const std::vector<double>& y = trace.intensity;
  std::vector<std::size_t> maxima = SectionMaxima(y);
  if (maxima.empty()) return {1.0, 2.0 * trace.bin_ns, 0.0};
  std::sort(maxima.begin(), maxima.end(),
            [&](std::size_t a, std::size_t b) { return y[a] > y[b]; });
  const double usual = y[maxima[maxima.size() / 2]];
  while (maxima.size() > 1 && y[maxima.back()] < kHeightOfAPeak * usual) maxima.pop_back();
  maxima.resize(std::min(maxima.size(), kStrongest));

  std::vector<double> times_ns;
  std::vector<double> widths_ns;
  for (const std::size_t apex : maxima) {
    times_ns.push_back(trace.TimeOf(static_cast<double>(apex)));
    widths_ns.push_back(std::max(1.0, FullWidthAtHalfHeight(trace, apex, 0.0)) * trace.bin_ns);
  }
  PeakWidthModel model{MedianOf(times_ns), 1.0, ExponentOf(times_ns, widths_ns)};
  std::vector<double> scaled;
  for (std::size_t i = 0; i < times_ns.size(); ++i) {
    scaled.push_back(widths_ns[i] / model.FwhmAt(times_ns[i]));
  }
  model.reference_fwhm_ns = MedianOf(std::move(scaled));
  return model;
}

}  // namespace tof::peaks
