// The order of visits that hides a search from an onlooker.
#include <map>
#include <numeric>

#include "component/aic/set_and_measure.h"
#include "tests/support/aic_fixture.h"

namespace tof {
namespace {

using fakes::Elements;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

class RandomizingAnArray : public fakes::AicFixture {
 protected:
  std::vector<std::int32_t> Randomized(std::int32_t size, std::uint32_t seed) {
    std::vector<std::int32_t> elements(static_cast<std::size_t>(size));
    std::iota(elements.begin(), elements.end(), 0);
    BoundedArray<std::int32_t> values(elements);
    host.seed = seed;
    RandomizeThisArray(host, values);
    return Elements(values);
  }
};

TEST_F(RandomizingAnArray, SeedsOnceAndPermutes) {
  EXPECT_THAT(Randomized(100, 7), ::testing::WhenSorted(ElementsAreArray([] {
                std::vector<std::int32_t> all(100);
                std::iota(all.begin(), all.end(), 0);
                return all;
              }())));
  EXPECT_THAT(CallsMade(), ElementsAre("Host.RandomSeed"));
  EXPECT_THAT(host.trace->lines,
              ElementsAre("Entry RandomizeThisArray 9", "Exit RandomizeThisArray 9"));
}

TEST_F(RandomizingAnArray, IsTheSameForTheSameSeedAndDiffersForAnother) {
  EXPECT_EQ(Randomized(50, 7), Randomized(50, 7));
  EXPECT_NE(Randomized(50, 7), Randomized(50, 8));
}

// Swapping with a position anywhere leads to 27 equally likely courses for three elements, which do
// not spread evenly over six orders: three are met 5 times in 27, three 4 times. A fair shuffle
// would meet each 4.5 times.
TEST_F(RandomizingAnArray, IsUnfairInTheKnownWay) {
  journal.keep_entries = false;
  std::map<std::vector<std::int32_t>, int> met;
  for (std::uint32_t seed = 0; seed < 27000; ++seed) ++met[Randomized(3, seed)];
  const std::map<std::vector<std::int32_t>, int> expected = {{{0, 1, 2}, 4000}, {{0, 2, 1}, 5000},
                                                             {{1, 0, 2}, 5000}, {{1, 2, 0}, 5000},
                                                             {{2, 0, 1}, 4000}, {{2, 1, 0}, 4000}};
  for (const auto& [order, count] : expected) {
    EXPECT_NEAR(met[order], count, 260) << ::testing::PrintToString(order);
  }
}

TEST_F(RandomizingAnArray, KeepsTheBoundsOfAnArrayFromAnotherIndex) {
  BoundedArray<std::int32_t> values(std::vector<std::int32_t>{5, 6, 7, 8}, -2);
  host.seed = 5;
  RandomizeThisArray(host, values);
  EXPECT_THAT(host.trace->Texts(), ::testing::IsEmpty()) << "an error would be kept to itself";
  EXPECT_EQ(values.LBound(), -2);
  EXPECT_THAT(Elements(values), ::testing::UnorderedElementsAre(5, 6, 7, 8));
}

TEST_F(RandomizingAnArray, GivesTheSameOrderFromAnyIndex) {
  const std::vector<std::int32_t> expected = Randomized(50, 7);
  for (const std::int32_t lower : {-60, -2, 1, 1000}) {
    std::vector<std::int32_t> elements(50);
    std::iota(elements.begin(), elements.end(), 0);
    BoundedArray<std::int32_t> values(elements, lower);
    RandomizeThisArray(host, values);
    EXPECT_EQ(Elements(values), expected) << lower;
  }
}

TEST_F(RandomizingAnArray, SwallowsItsFailures) {
  BoundedArray<std::int32_t> none;
  EXPECT_NO_THROW(RandomizeThisArray(host, none));
  EXPECT_EQ(LastTrace(), "error[9] in RandomizeThisArray(): Subscript out of range");
}

}  // namespace
}  // namespace tof
