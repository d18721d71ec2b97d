#include "instruments/peaks/trace.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace tof::peaks {
namespace {

constexpr double kMostBins = 1 << 28;
// Times are read from text with few digits: so far from the grid counts as on it.
constexpr double kOnGrid = 0.01;

}  // namespace

Trace ExtractTrace(const spectra::Spectrum& spectrum, double start_ns, double end_ns) {
  if (!(spectrum.bin_width_ns > 0.0)) {
    throw std::invalid_argument(
        fmt::format("bin width {} ns of a spectrum is not positive", spectrum.bin_width_ns));
  }
  const std::vector<double>& times = spectrum.time_ns;
  if (times.size() != spectrum.intensity.size()) {
    throw std::invalid_argument(fmt::format("a spectrum has {} times but {} intensities",
                                            times.size(), spectrum.intensity.size()));
  }
  const auto first = std::lower_bound(times.begin(), times.end(), start_ns);
  const auto last = std::upper_bound(first, times.end(), end_ns);
  Trace trace{0.0, spectrum.bin_width_ns, {}};
  if (first == last) return trace;

  trace.start_ns = *first;
  const double extent = std::floor(trace.BinOf(*(last - 1)) + kOnGrid) + 2.0;
  if (!(extent < kMostBins)) {
    throw std::invalid_argument(
        fmt::format("a spectrum from {} to {} ns has too many bins of {} ns", *first, *(last - 1),
                    spectrum.bin_width_ns));
  }
  trace.intensity.assign(static_cast<std::size_t>(extent), 0.0);
  const auto offset = static_cast<std::size_t>(first - times.begin());
  const auto count = static_cast<std::size_t>(last - first);
  const double bins_per_ns = 1.0 / trace.bin_ns;
  for (std::size_t i = offset; i < offset + count; ++i) {
    const double position = (times[i] - trace.start_ns) * bins_per_ns;
    const auto bin = static_cast<std::size_t>(position + kOnGrid);
    const double beyond = position - static_cast<double>(bin);
    const double shared = beyond < kOnGrid ? 0.0 : beyond;
    trace.intensity[bin] += (1.0 - shared) * spectrum.intensity[i];
    trace.intensity[bin + 1] += shared * spectrum.intensity[i];
  }
  if (trace.intensity.back() == 0.0) trace.intensity.pop_back();
  return trace;
}

}  // namespace tof::peaks
