#include "instruments/spectra/bin_width.h"

#include <gtest/gtest.h>

namespace tof::spectra {
namespace {

TEST(BinWidth, IsTheSpacingOfNeighbours) {
  EXPECT_DOUBLE_EQ(DeduceBinWidthNs({10.0, 10.5}), 0.5);
}

TEST(BinWidth, DoesNotCountGaps) {
  EXPECT_DOUBLE_EQ(DeduceBinWidthNs({10.0, 10.5, 12.0, 12.5, 13.5}), 0.5);
}

TEST(BinWidth, IsNotMisledByAGapAtTheStart) {
  EXPECT_DOUBLE_EQ(DeduceBinWidthNs({10.0, 12.0, 13.0, 14.0}), 1.0);
}

TEST(BinWidth, AveragesTheRoundingOfTheTimes) {
  // Bins of 1/3 ns, written with one digit.
  EXPECT_NEAR(DeduceBinWidthNs({0.0, 0.3, 0.7, 1.0, 1.3, 1.7, 2.0}), 1.0 / 3.0, 1e-12);
}

}  // namespace
}  // namespace tof::spectra
