// Normal and binomial numbers, specified down to the last draw (see random.h for why).
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "instruments/virtual/random.h"

namespace tof::virtual_instrument {

// Standard normal numbers by the ziggurat method with 256 layers: G. Marsaglia, W. W. Tsang, "The
// Ziggurat Method for Generating Random Variables", J. Stat. Softw. 5(8) (2000). Layer and position
// come from different bits of one draw, which removes the correlation that J. A. Doornik, "An
// Improved Ziggurat Method to Generate Normal Random Samples" (2005), found in the original.
//
// A spectrum needs one for every bin, so the usual case (98.8 %) is inline: one draw, one product.
class NormalSampler {
 public:
  NormalSampler();

  double operator()(Random& random) const {
    double value = 0.0;
    std::size_t layer = 0;
    do {
      const std::uint64_t bits = random.NextBits();
      layer = bits & 0xFFU;
      value = static_cast<double>(static_cast<std::int64_t>(bits) >> 11) * scale_[layer];
      if (std::abs(value) < edge_[layer + 1]) return value;
    } while (!AcceptOutsideTheCore(random, layer, value));
    return value;
  }

 private:
  static constexpr std::size_t kLayers = 256;

  // Decides about a `value` beyond the core of its layer, which lies wholly under the curve. In the
  // lowest layer `value` is replaced by one from the tail.
  bool AcceptOutsideTheCore(Random& random, std::size_t layer, double& value) const;

  std::array<double, kLayers + 1> edge_{};    // right edges, falling; the lowest layer's is virtual
  std::array<double, kLayers + 1> height_{};  // exp(-x^2 / 2) at the edges
  std::array<double, kLayers> scale_{};       // edge / 2^52
};

// How many of `trials` (>= 0) independent trials succeed when each does with `probability` (0 to 1;
// what is below or not a number counts as 0, what is above as 1). Inversion when fewer than ten
// successes are expected, else the transformed rejection BTRS of W. Hoermann, "The generation of
// binomial random variates", J. Stat. Comput. Simul. 46, 101 (1993).
std::int64_t SampleBinomial(Random& random, std::int64_t trials, double probability);

}  // namespace tof::virtual_instrument
