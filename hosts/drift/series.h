// What is kept of the measurements: a point per calibration and mass, in bounded memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "hosts/drift/data_set_reader.h"

namespace tof::drift {

// The measurements of one mass in one calibration, or in some that follow each other.
struct Point {
  std::int64_t moment = 0;  // of the first calibration
  double time_ns = 0.0;     // mean
  double abundance = 0.0;   // mean
  std::uint32_t runs = 0;
  std::uint32_t measurements = 0;
};

// By mass index.
using Series = std::map<std::int32_t, std::vector<Point>>;

struct Instrument {
  std::string label;
  Series series;
  std::uint64_t runs = 0;
};

// Takes rows as they come. A calibration ("run") ends where date or time change, and where mass and
// measurement don't go on ascending: two calibrations within a second have the same date and time.
//
// Never keeps more than `most_points` points, or two per series where there are more series: when
// they are reached, neighbours are joined two by two, in all series, and from then on twice as many
// runs make a point.
class SeriesBuilder {
 public:
  static constexpr std::size_t kMostPoints = 1U << 20U;  // 40 MB

  explicit SeriesBuilder(std::size_t most_points = kMostPoints) : most_points_(most_points) {}

  // The rows that follow are of this instrument; a label that was there before goes on.
  void BeginFile(const std::string& label);
  void Add(const DataRow& row);
  void EndFile();

  // In the order of their first file, the points by their moments.
  std::vector<Instrument> Finish();
  std::uint32_t RunsPerPoint() const { return runs_per_point_; }

 private:
  struct Sums {
    double time_ns = 0.0;
    double abundance = 0.0;
    std::uint32_t count = 0;
  };

  void EndRun();
  void Coarsen();

  std::size_t most_points_;
  std::size_t points_ = 0;
  std::uint32_t runs_per_point_ = 1;
  std::vector<Instrument> instruments_;
  std::size_t current_ = 0;  // in instruments_

  // Of the run that is being read.
  std::vector<Sums> sums_;            // by mass index
  std::vector<std::int32_t> masses_;  // those with a sum
  DataRow last_row_;
};

}  // namespace tof::drift
