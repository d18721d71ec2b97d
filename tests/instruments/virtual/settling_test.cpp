#include "instruments/virtual/settling.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tof::virtual_instrument {
namespace {

TEST(SettlingValue, StaysWhereItIsUntilItIsSet) {
  EXPECT_EQ(SettlingValue(75.0, 0.25).At(100.0), 75.0);
}

TEST(SettlingValue, ClosesTheGapByOneEFoldInATimeConstant) {
  SettlingValue volts(75.0, 0.25);
  volts.Set(85.0, 10.0);
  EXPECT_EQ(volts.At(10.0), 75.0);
  EXPECT_NEAR(volts.At(10.25), 85.0 - 10.0 * std::exp(-1.0), 1e-12);
  EXPECT_NEAR(volts.At(20.0), 85.0, 1e-12);
}

TEST(SettlingValue, SetsOutFromWhereItHasGot) {
  SettlingValue volts(0.0, 1.0);
  volts.Set(100.0, 0.0);
  const double half_way = volts.At(0.5);
  volts.Set(0.0, 0.5);
  EXPECT_DOUBLE_EQ(volts.At(0.5), half_way);
  EXPECT_LT(volts.At(1.0), half_way);
}

TEST(SettlingValue, JumpsWithoutATimeConstant) {
  SettlingValue volts(0.0, 0.0);
  volts.Set(100.0, 3.0);
  EXPECT_EQ(volts.At(3.0), 100.0);
}

}  // namespace
}  // namespace tof::virtual_instrument
