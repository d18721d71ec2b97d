#include "instruments/virtual/samplers.h"

#include <numbers>

namespace tof::virtual_instrument {
namespace {

// Right edge of the lowest of 256 layers: the value for which all layers have one area and the top
// one ends at 0 (Marsaglia and Tsang, section 3).
constexpr double kTailStart = 3.6541528853610088;

double NormalHeight(double x) {
  return std::exp(-0.5 * x * x);
}

// Area under exp(-x^2 / 2) beyond `x`.
double NormalTailArea(double x) {
  return std::sqrt(std::numbers::pi / 2.0) * std::erfc(x / std::numbers::sqrt2);
}

// ln(k!): products for the first few, then Stirling's series, whose next term is below 1e-11 here.
double LogFactorial(std::int64_t k) {
  const auto value = static_cast<double>(k);
  if (k < 10) {
    double product = 1.0;
    for (double factor = 2.0; factor <= value; factor += 1.0) product *= factor;
    return std::log(product);
  }
  const double inverse = 1.0 / value;
  const double inverse_squared = inverse * inverse;
  const double series =
      inverse * (1.0 / 12.0 - inverse_squared * (1.0 / 360.0 - inverse_squared / 1260.0));
  return (value + 0.5) * std::log(value) - value + 0.5 * std::log(2.0 * std::numbers::pi) + series;
}

// Sums the probabilities from 0 upwards until they pass a uniform number. `probability` <= 0.5.
std::int64_t BinomialByInversion(Random& random, std::int64_t trials, double probability) {
  const double odds = probability / (1.0 - probability);
  const double none = std::exp(static_cast<double>(trials) * std::log1p(-probability));
  double left = random.NextUniform();
  double term = none;
  std::int64_t successes = 0;
  while (left > term && successes < trials) {
    left -= term;
    ++successes;
    term *= odds * static_cast<double>(trials - successes + 1) / static_cast<double>(successes);
  }
  return successes;
}

// Algorithm BTRS; names follow the paper. `probability` <= 0.5, at least ten successes expected.
std::int64_t BinomialByRejection(Random& random, std::int64_t trials, double probability) {
  const auto n = static_cast<double>(trials);
  const double deviation = std::sqrt(n * probability * (1.0 - probability));
  const double b = 1.15 + 2.53 * deviation;
  const double a = -0.0873 + 0.0248 * b + 0.01 * probability;
  const double c = n * probability + 0.5;
  const double alpha = (2.83 + 5.1 / b) * deviation;
  const double v_squeeze = 0.92 - 4.2 / b;
  const double log_odds = std::log(probability / (1.0 - probability));
  const auto mode = static_cast<std::int64_t>((n + 1.0) * probability);

  for (;;) {
    const double u = random.NextUniform() - 0.5;
    const double v = random.NextUniform();
    const double us = 0.5 - std::abs(u);
    const double candidate = std::floor((2.0 * a / us + b) * u + c);
    if (candidate < 0.0 || candidate > n) continue;
    const auto k = static_cast<std::int64_t>(candidate);
    if (us >= 0.07 && v <= v_squeeze) return k;
    const double log_ratio_to_mode = LogFactorial(mode) + LogFactorial(trials - mode) -
                                     LogFactorial(k) - LogFactorial(trials - k) +
                                     static_cast<double>(k - mode) * log_odds;
    if (std::log(v * alpha / (a / (us * us) + b)) <= log_ratio_to_mode) return k;
  }
}

}  // namespace

NormalSampler::NormalSampler() {
  const double area = kTailStart * NormalHeight(kTailStart) + NormalTailArea(kTailStart);
  edge_[0] = area / NormalHeight(kTailStart);  // the lowest layer as a box: core and tail together
  edge_[1] = kTailStart;
  for (std::size_t i = 2; i < kLayers; ++i) {
    edge_[i] = std::sqrt(-2.0 * std::log(area / edge_[i - 1] + NormalHeight(edge_[i - 1])));
  }
  edge_[kLayers] = 0.0;
  for (std::size_t i = 0; i <= kLayers; ++i) height_[i] = NormalHeight(edge_[i]);
  for (std::size_t i = 0; i < kLayers; ++i) scale_[i] = edge_[i] * 0x1.0p-52;
}

bool NormalSampler::AcceptOutsideTheCore(Random& random, std::size_t layer, double& value) const {
  if (layer > 0) {
    const double drop = height_[layer + 1] - height_[layer];
    return height_[layer] + random.NextUniform() * drop < NormalHeight(value);
  }
  double beyond = 0.0;
  double exponential = 0.0;
  do {
    beyond = -std::log(random.NextUniform()) / kTailStart;
    exponential = -std::log(random.NextUniform());
  } while (2.0 * exponential < beyond * beyond);
  value = std::copysign(kTailStart + beyond, value);
  return true;
}

std::int64_t SampleBinomial(Random& random, std::int64_t trials, double probability) {
  if (trials <= 0 || !(probability > 0.0)) return 0;
  if (probability >= 1.0) return trials;
  if (probability > 0.5) return trials - SampleBinomial(random, trials, 1.0 - probability);
  if (static_cast<double>(trials) * probability < 10.0) {
    return BinomialByInversion(random, trials, probability);
  }
  return BinomialByRejection(random, trials, probability);
}

}  // namespace tof::virtual_instrument
