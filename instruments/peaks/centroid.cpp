#include "instruments/peaks/centroid.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace tof::peaks {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kFwhmPerSigma = 2.3548200450309493;  // 2 sqrt(2 ln 2)
constexpr double kSettledBins = 1e-7;
constexpr int kMostSteps = 50;
constexpr int kEdgeLevels = 24;  // finer changes nothing on spectra of some bins per peak

// The bins `reach` to either side of `centre`, within the trace.
struct BinRange {
  std::size_t begin;
  std::size_t end;
};

BinRange BinsAround(const Trace& trace, double centre, double reach) {
  const auto last = static_cast<double>(trace.intensity.size());
  const double begin = std::clamp(std::ceil(centre - reach), 0.0, last);
  const double end = std::clamp(std::floor(centre + reach) + 1.0, begin, last);
  return {static_cast<std::size_t>(begin), static_cast<std::size_t>(end)};
}

// The highest bin within half a width of `apex`: a smoothed maximum can lie beside it.
std::size_t HighestBin(const Trace& trace, std::size_t apex, double fwhm) {
  const auto [begin, end] = BinsAround(trace, static_cast<double>(apex), 0.5 * fwhm + 1.0);
  const auto y = trace.intensity.begin();
  return static_cast<std::size_t>(std::max_element(y + static_cast<std::ptrdiff_t>(begin),
                                                   y + static_cast<std::ptrdiff_t>(end)) -
                                  y);
}

// A bin counts with as much of it as lies in the window, so that the sum has no steps when the
// window moves.
double CentreOfGravity(const Trace& trace, std::size_t apex, double fwhm, double baseline) {
  const double reach = 1.2 * fwhm + 0.5;
  auto centre = static_cast<double>(apex);
  for (int step = 0; step < kMostSteps; ++step) {
    double sum = 0.0;
    double moment = 0.0;
    const auto [begin, end] = BinsAround(trace, centre, reach + 1.0);
    for (std::size_t i = begin; i < end; ++i) {
      const double distance = static_cast<double>(i) - centre;
      const double part = std::clamp(reach + 0.5 - std::abs(distance), 0.0, 1.0);
      sum += part * (trace.intensity[i] - baseline);
      moment += part * (trace.intensity[i] - baseline) * distance;
    }
    if (!(sum > 0.0)) return kNaN;
    centre += moment / sum;
    if (std::abs(moment / sum) < kSettledBins) break;
  }
  return centre;
}

// Where the trace comes down to `level` from the bin `top`, going by `step` (-1 or 1) from bin to
// bin; between the bins by a straight line. NaN when it does not within `reach` bins, or only
// behind a higher peak.
double Crossing(const Trace& trace, std::size_t top, int step, double level, double reach) {
  const std::vector<double>& y = trace.intensity;
  std::size_t inner = top;
  for (double distance = 1.0; distance <= reach; ++distance) {
    if (step < 0 ? inner == 0 : inner + 1 >= y.size()) return kNaN;
    const std::size_t outer = step < 0 ? inner - 1 : inner + 1;
    if (y[outer] > y[top]) return kNaN;
    if (y[outer] <= level) {
      const double beyond = (y[inner] - level) / (y[inner] - y[outer]);
      return static_cast<double>(inner) + step * beyond;
    }
    inner = outer;
  }
  return kNaN;
}

double BetweenEdges(const Trace& trace, std::size_t apex, double fwhm, double baseline,
                    const EdgeTiming& edges) {
  const std::size_t top = HighestBin(trace, apex, fwhm);
  const double height = trace.intensity[top] - baseline;
  if (!(height > 0.0)) return kNaN;
  const double reach = 3.0 * fwhm + 2.0;
  double sum = 0.0;
  for (int i = 0; i < kEdgeLevels; ++i) {
    const double part = edges.low + (edges.high - edges.low) * (i + 0.5) / kEdgeLevels;
    const double level = baseline + part * height;
    // An edge that does not count need not exist.
    if (edges.position < 1.0) {
      sum += (1.0 - edges.position) * Crossing(trace, top, -1, level, reach);
    }
    if (edges.position > 0.0) sum += edges.position * Crossing(trace, top, 1, level, reach);
  }
  return sum / kEdgeLevels;
}

// Solves the symmetric 3 x 3 system by Cramer's rule; false when it is singular.
bool Solve3(const std::array<std::array<double, 3>, 3>& m, const std::array<double, 3>& r,
            std::array<double, 3>& x) {
  const auto determinant = [](const std::array<std::array<double, 3>, 3>& a) {
    return a[0][0] * (a[1][1] * a[2][2] - a[1][2] * a[2][1]) -
           a[0][1] * (a[1][0] * a[2][2] - a[1][2] * a[2][0]) +
           a[0][2] * (a[1][0] * a[2][1] - a[1][1] * a[2][0]);
  };
  const double whole = determinant(m);
  if (whole == 0.0 || !std::isfinite(whole)) return false;
  for (std::size_t k = 0; k < 3; ++k) {
    auto replaced = m;
    for (std::size_t row = 0; row < 3; ++row) replaced[row][k] = r[row];
    x[k] = determinant(replaced) / whole;
  }
  return true;
}

// The logarithm of a Gaussian is a parabola. A logarithm is the less certain the smaller its bin,
// so each counts with its intensity squared.
double LogParabola(const Trace& trace, std::size_t apex, double fwhm, double baseline) {
  const std::size_t top = HighestBin(trace, apex, fwhm);
  const auto centre = static_cast<double>(top);
  const auto [begin, end] = BinsAround(trace, centre, std::max(1.0, 0.6 * fwhm));
  std::array<std::array<double, 3>, 3> m{};
  std::array<double, 3> r{};
  std::array<double, 3> x{};
  for (std::size_t i = begin; i < end; ++i) {
    const double signal = trace.intensity[i] - baseline;
    if (!(signal > 0.0)) continue;
    const double d = static_cast<double>(i) - centre;
    const std::array<double, 3> powers{1.0, d, d * d};
    for (std::size_t row = 0; row < 3; ++row) {
      for (std::size_t k = 0; k < 3; ++k) m[row][k] += signal * signal * powers[row] * powers[k];
      r[row] += signal * signal * powers[row] * std::log(signal);
    }
  }
  if (!Solve3(m, r, x) || !(x[2] < 0.0)) return kNaN;
  return centre - 0.5 * x[1] / x[2];
}

// The mean of the signal under a Gaussian window that moves with it. For a Gaussian peak of the
// same width one step goes half of the way, so twice the step goes all of it.
double MatchedFilter(const Trace& trace, std::size_t apex, double fwhm, double baseline) {
  const double sigma = std::max(fwhm, 1.5) / kFwhmPerSigma;
  auto centre = static_cast<double>(apex);
  for (int step = 0; step < kMostSteps; ++step) {
    double sum = 0.0;
    double moment = 0.0;
    const auto [begin, end] = BinsAround(trace, centre, 4.0 * sigma);
    for (std::size_t i = begin; i < end; ++i) {
      const double distance = static_cast<double>(i) - centre;
      const double weighted =
          std::exp(-0.5 * distance * distance / (sigma * sigma)) * (trace.intensity[i] - baseline);
      sum += weighted;
      moment += weighted * distance;
    }
    if (!(sum > 0.0)) return kNaN;
    const double move = std::clamp(2.0 * moment / sum, -fwhm, fwhm);
    centre += move;
    if (std::abs(move) < kSettledBins) break;
  }
  return centre;
}

// Gauss-Newton over height, centre and sigma, started from the matched filter.
double GaussianFit(const Trace& trace, std::size_t apex, double fwhm, double baseline) {
  double centre = MatchedFilter(trace, apex, fwhm, baseline);
  if (!std::isfinite(centre)) return kNaN;
  double sigma = fwhm / kFwhmPerSigma;
  double height = trace.intensity[HighestBin(trace, apex, fwhm)] - baseline;
  const auto [begin, end] = BinsAround(trace, centre, 1.5 * fwhm + 1.0);
  for (int step = 0; step < kMostSteps; ++step) {
    std::array<std::array<double, 3>, 3> m{};
    std::array<double, 3> r{};
    std::array<double, 3> x{};
    for (std::size_t i = begin; i < end; ++i) {
      const double u = (static_cast<double>(i) - centre) / sigma;
      const double shape = std::exp(-0.5 * u * u);
      const std::array<double, 3> slopes{shape, height * shape * u / sigma,
                                         height * shape * u * u / sigma};
      const double rest = trace.intensity[i] - baseline - height * shape;
      for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t k = 0; k < 3; ++k) m[row][k] += slopes[row] * slopes[k];
        r[row] += slopes[row] * rest;
      }
    }
    if (!Solve3(m, r, x)) return kNaN;
    height += x[0];
    centre += std::clamp(x[1], -0.5 * fwhm, 0.5 * fwhm);
    sigma += std::clamp(x[2], -0.3 * sigma, 0.3 * sigma);
    if (std::abs(x[1]) < kSettledBins && std::abs(x[2]) < kSettledBins) break;
  }
  return centre;
}

double CentroidBy(const CentroidOptions& options, const Trace& trace, std::size_t apex, double fwhm,
                  double baseline) {
  switch (options.method) {
    case CentroidMethod::kCentreOfGravity:
      return CentreOfGravity(trace, apex, fwhm, baseline);
    case CentroidMethod::kEdges:
      return BetweenEdges(trace, apex, fwhm, baseline, options.edges);
    case CentroidMethod::kLogParabola:
      return LogParabola(trace, apex, fwhm, baseline);
    case CentroidMethod::kGaussianFit:
      return GaussianFit(trace, apex, fwhm, baseline);
    case CentroidMethod::kMatchedFilter:
      return MatchedFilter(trace, apex, fwhm, baseline);
  }
  return kNaN;
}

}  // namespace

double Centroid(const Trace& trace, std::size_t apex, double fwhm_bins, double baseline,
                const CentroidOptions& options) {
  const double centre = CentroidBy(options, trace, apex, fwhm_bins, baseline);
  const double moved = std::abs(centre - static_cast<double>(apex));
  return moved <= 1.5 * fwhm_bins + 1.0 ? centre : kNaN;
}

}  // namespace tof::peaks
