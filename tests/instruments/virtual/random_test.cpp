#include "instruments/virtual/random.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

namespace tof::virtual_instrument {
namespace {

TEST(Random, FollowsThePublishedGenerator) {
  // Worked out from the recurrence of the paper for the state 1, 2, 3, 4.
  Random random(Random::State{1, 2, 3, 4});
  constexpr std::array<std::uint64_t, 5> kExpected{41943041U, 58720359U, 3588806011781223U,
                                                   3591011842654386U, 9228616714210784205U};
  for (const std::uint64_t expected : kExpected) EXPECT_EQ(random.NextBits(), expected);
}

TEST(Random, FillsItsStateWithSplitMix64) {
  std::uint64_t state = 0;
  EXPECT_EQ(SplitMix64(state), 0xE220A8397B1DCDAFU);
  EXPECT_EQ(SplitMix64(state), 0x6E789E6AA1B965F4U);
  EXPECT_EQ(SplitMix64(state), 0x06C45D188009454FU);
}

TEST(Random, StreamTakesUpWhereTheOneBeforeItEnds) {
  std::uint64_t split_mix = 7;
  for (int skipped = 0; skipped < 4; ++skipped) SplitMix64(split_mix);
  Random::State second_state{};
  for (std::uint64_t& word : second_state) word = SplitMix64(split_mix);
  Random second_by_hand(second_state);
  Random second(7, 1);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(second.NextBits(), second_by_hand.NextBits());
}

TEST(Random, SeedsAndStreamsDiffer) {
  Random base(1, 0);
  Random other_seed(2, 0);
  Random other_stream(1, 1);
  const std::uint64_t first = base.NextBits();
  EXPECT_NE(first, other_seed.NextBits());
  EXPECT_NE(first, other_stream.NextBits());
}

TEST(Random, UniformNumbersNeverReachTheEnds) {
  // The output is rotl(s[0] + s[3], 23) + s[0]: these states give all zeros and all ones.
  Random lowest(Random::State{0, 1, 0, 0});
  EXPECT_EQ(lowest.NextUniform(), 0x1.0p-53);
  Random highest(Random::State{0xFFFFFFFFFFFFFFFFU, 0, 0, 1});
  EXPECT_EQ(highest.NextUniform(), 1.0 - 0x1.0p-53);
}

}  // namespace
}  // namespace tof::virtual_instrument
