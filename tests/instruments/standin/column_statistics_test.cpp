#include "instruments/standin/column_statistics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tof::standin {
namespace {

TEST(ColumnStatistics, AreTheAverageAndTheDeviationOfASample) {
  BoundedArray2D<double> values({0, 2}, {0, 1});
  values(0, 0) = 1.0;
  values(1, 0) = 2.0;
  values(2, 0) = 6.0;
  values(0, 1) = values(1, 1) = values(2, 1) = -5.0;
  const ColumnStatistics statistics = ColumnStatisticsOf(values);
  EXPECT_EQ(statistics.averages, (BoundedArray<double>{3.0, -5.0}));
  EXPECT_DOUBLE_EQ(statistics.standard_deviations(0), std::sqrt(7.0));  // (4 + 1 + 9) / 2
  EXPECT_EQ(statistics.standard_deviations(1), 0.0);
}

TEST(ColumnStatistics, HaveNoDeviationForASingleRow) {
  BoundedArray2D<double> values({0, 0}, {0, 0});
  values(0, 0) = 4.0;
  const ColumnStatistics statistics = ColumnStatisticsOf(values);
  EXPECT_EQ(statistics.averages(0), 4.0);
  EXPECT_EQ(statistics.standard_deviations(0), 0.0);
}

TEST(ColumnStatistics, CountFromZeroWhateverTheBounds) {
  BoundedArray2D<double> values({1, 2}, {5, 6});
  values(1, 5) = 1.0;
  values(2, 5) = 3.0;
  const ColumnStatistics statistics = ColumnStatisticsOf(values);
  EXPECT_EQ(statistics.averages, (BoundedArray<double>{2.0, 0.0}));
}

TEST(ColumnStatistics, ShowAValueThatIsNotANumber) {
  BoundedArray2D<double> values({0, 1}, {0, 0});
  values(0, 0) = std::numeric_limits<double>::quiet_NaN();
  EXPECT_TRUE(std::isnan(ColumnStatisticsOf(values).averages(0)));
}

}  // namespace
}  // namespace tof::standin
