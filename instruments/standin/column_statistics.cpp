#include "instruments/standin/column_statistics.h"

#include <cmath>

namespace tof::standin {
namespace {

double Average(const BoundedArray2D<double>& values, std::int32_t column) {
  double sum = 0.0;
  for (std::int32_t i = values.LBound(1); i <= values.UBound(1); ++i) sum += values(i, column);
  return sum / (values.UBound(1) - values.LBound(1) + 1);
}

double SampleDeviation(const BoundedArray2D<double>& values, std::int32_t column, double average) {
  const std::int32_t n = values.UBound(1) - values.LBound(1) + 1;
  if (n == 1) return 0.0;
  double squares = 0.0;
  for (std::int32_t i = values.LBound(1); i <= values.UBound(1); ++i) {
    squares += (values(i, column) - average) * (values(i, column) - average);
  }
  return std::sqrt(squares / (n - 1));
}

}  // namespace

ColumnStatistics ColumnStatisticsOf(const BoundedArray2D<double>& values) {
  const std::int32_t first = values.LBound(2);
  const std::int32_t last = values.UBound(2) - first;
  ColumnStatistics statistics{BoundedArray<double>(0, last), BoundedArray<double>(0, last)};
  for (std::int32_t k = 0; k <= last; ++k) {
    statistics.averages(k) = Average(values, first + k);
    statistics.standard_deviations(k) = SampleDeviation(values, first + k, statistics.averages(k));
  }
  return statistics;
}

}  // namespace tof::standin
