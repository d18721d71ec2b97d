// Averages and deviations of a table of measurements.
#pragma once

#include "component/calibrator/collaborators.h"

namespace tof::standin {

// Per column (second dimension) over the rows, results from index 0. The deviation is that of a
// sample (divided by n - 1), and 0 for a single row.
ColumnStatistics ColumnStatisticsOf(const BoundedArray2D<double>& values);

}  // namespace tof::standin
