#include "instruments/virtual/random.h"

namespace tof::virtual_instrument {
namespace {

constexpr std::uint64_t kGoldenGamma =
    0x9E3779B97F4A7C15U;  // 2^64 divided by the golden ratio, odd

}  // namespace

std::uint64_t SplitMix64(std::uint64_t& state) {
  state += kGoldenGamma;
  std::uint64_t mixed = state;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
  return mixed ^ (mixed >> 31);
}

Random::Random(std::uint64_t seed, std::uint64_t stream) : state_{} {
  std::uint64_t split_mix = seed + 4 * stream * kGoldenGamma;
  for (std::uint64_t& word : state_) word = SplitMix64(split_mix);
}

}  // namespace tof::virtual_instrument
