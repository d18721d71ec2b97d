// The virtual instrument's source of chance: the same seed gives the same numbers on every machine.
//
// The distributions of <random> are left to each standard library, so a spectrum made with them
// would differ between compilers. The generator here and the samplers in samplers.h are fully
// specified.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

namespace tof::virtual_instrument {

// xoshiro256++: D. Blackman, S. Vigna, "Scrambled Linear Pseudorandom Number Generators", ACM
// Trans. Math. Softw. 47(4), article 36 (2021). Period 2^256 - 1.
class Random {
 public:
  using State = std::array<std::uint64_t, 4>;

  // `stream` tells independent uses of one seed apart (noise, ions, drift, ...), so that one of
  // them drawing more numbers never changes the others. The state is filled by SplitMix64, as the
  // authors of the generator advise: G. L. Steele, D. Lea, C. H. Flood, "Fast Splittable
  // Pseudorandom Number Generators", OOPSLA 2014; stream s takes the outputs 4 s to 4 s + 3.
  Random(std::uint64_t seed, std::uint64_t stream);

  // From a state, which must not be all zeros.
  explicit Random(const State& state) : state_(state) {}

  // 64 equally likely bits.
  std::uint64_t NextBits() {
    const std::uint64_t result = std::rotl(state_[0] + state_[3], 23) + state_[0];
    const std::uint64_t shifted = state_[1] << 17;
    state_[2] ^= state_[0];
    state_[3] ^= state_[1];
    state_[1] ^= state_[2];
    state_[0] ^= state_[3];
    state_[2] ^= shifted;
    state_[3] = std::rotl(state_[3], 45);
    return result;
  }

  // Uniform in the open interval (0, 1): the midpoints of 2^52 equal cells, so a logarithm is safe.
  double NextUniform() { return (static_cast<double>(NextBits() >> 12) + 0.5) * 0x1.0p-52; }

 private:
  State state_;
};

// One output of SplitMix64; `state` moves on. See the reference above.
std::uint64_t SplitMix64(std::uint64_t& state);

}  // namespace tof::virtual_instrument
