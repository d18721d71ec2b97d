#include "instruments/masstime/mass_time_model.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tof::masstime {
namespace {

// Enough for bisection alone to reach the last bit of a double from any bracket.
constexpr int kMaxInversionSteps = 200;
// A polynomial of degree 7 has six turning points at most; none of a size that matters fits between
// two of so many samples.
constexpr int kMonotonicitySamples = 512;

// sqrt(m) and its slope by t.
struct ValueAndSlope {
  double value;
  double slope;
};

ValueAndSlope SqrtMassAndSlope(const MassTimeModel& model, double time_ns) {
  const CoefficientRecord& c = model.coefficients;
  ValueAndSlope result{c[kA] * (time_ns - c[kT0]), c[kA]};
  const double x = ScaledTime(model.window, time_ns);
  const double x_per_ns = 2.0 / (model.window.end_ns - model.window.start_ns);
  const bool inside = std::abs(x) < 1.0;
  double p_before = 1.0;
  double p = x;
  double slope_before = 0.0;
  double slope = 1.0;
  for (std::size_t term = 0; term < kTermCount; ++term) {
    // Bonnet's recursion and its derivative; n is the degree of `p`.
    const auto n = static_cast<double>(term + 1);
    const double p_next = ((2.0 * n + 1.0) * x * p - n * p_before) / (n + 1.0);
    const double slope_next = slope_before + (2.0 * n + 1.0) * p;
    p_before = p;
    p = p_next;
    slope_before = slope;
    slope = slope_next;
    result.value += c[kFirstTerm + term] * p;
    if (inside) result.slope += c[kFirstTerm + term] * slope * x_per_ns;
  }
  return result;
}

// The largest amount by which the terms can move sqrt(m): no Legendre polynomial exceeds 1.
double SumOfTermSizes(const CoefficientRecord& c) {
  double sum = 0.0;
  for (std::size_t term = 0; term < kTermCount; ++term) sum += std::abs(c[kFirstTerm + term]);
  return sum;
}

}  // namespace

double ScaledTime(const AcquisitionWindow& window, double time_ns) {
  const double half_width = 0.5 * (window.end_ns - window.start_ns);
  if (!(half_width > 0.0)) return 0.0;
  const double middle = 0.5 * (window.start_ns + window.end_ns);
  return std::clamp((time_ns - middle) / half_width, -1.0, 1.0);
}

std::array<double, kTermCount> LegendreTerms(double x) {
  std::array<double, kTermCount> terms{};
  double before = 1.0;
  double current = x;
  for (std::size_t term = 0; term < kTermCount; ++term) {
    const auto n = static_cast<double>(term + 1);
    const double next = ((2.0 * n + 1.0) * x * current - n * before) / (n + 1.0);
    before = current;
    current = next;
    terms[term] = current;
  }
  return terms;
}

double SqrtMass(const MassTimeModel& model, double time_ns) {
  const CoefficientRecord& c = model.coefficients;
  double value = c[kA] * (time_ns - c[kT0]);
  const auto terms = LegendreTerms(ScaledTime(model.window, time_ns));
  for (std::size_t term = 0; term < kTermCount; ++term) value += c[kFirstTerm + term] * terms[term];
  return value;
}

double TimeToMass(const MassTimeModel& model, double time_ns) {
  const double root = SqrtMass(model, time_ns);
  return root * std::abs(root);
}

double MassToTime(const MassTimeModel& model, double mass) {
  const CoefficientRecord& c = model.coefficients;
  const double reach = SumOfTermSizes(c);
  if (!std::isfinite(mass) || !std::isfinite(c[kT0] + reach) || !(c[kA] > 0.0)) {
    return std::numeric_limits<double>::quiet_NaN();
  }
  const double root = std::copysign(std::sqrt(std::abs(mass)), mass);
  double time_ns = c[kT0] + root / c[kA];
  if (reach == 0.0) return time_ns;

  // Newton's steps inside a bracket that always holds a solution; a step that leaves the bracket is
  // replaced by its middle.
  double low = time_ns - reach / c[kA];
  double high = time_ns + reach / c[kA];
  for (int step = 0; step < kMaxInversionSteps; ++step) {
    const auto [value, slope] = SqrtMassAndSlope(model, time_ns);
    (value > root ? high : low) = time_ns;
    double next = time_ns - (value - root) / slope;
    if (!(next > low && next < high)) next = 0.5 * (low + high);
    const bool settled = std::abs(next - time_ns) <= 1e-15 * std::abs(next);
    time_ns = next;
    if (settled) break;
  }
  return time_ns;
}

bool IsMonotone(const MassTimeModel& model) {
  const AcquisitionWindow& window = model.window;
  for (int sample = 0; sample <= kMonotonicitySamples; ++sample) {
    // Just inside the edges, beyond which the terms are constant.
    const double x = (1.0 - 1e-9) * (2.0 * sample / kMonotonicitySamples - 1.0);
    const double time_ns =
        0.5 * (window.start_ns + window.end_ns) + 0.5 * x * (window.end_ns - window.start_ns);
    if (!(SqrtMassAndSlope(model, time_ns).slope > 0.0)) return false;
  }
  return true;
}

}  // namespace tof::masstime
