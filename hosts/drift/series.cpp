#include "hosts/drift/series.h"

#include <algorithm>
#include <utility>

namespace tof::drift {
namespace {

void Join(Point& point, const Point& next) {
  const double a = point.measurements;
  const double b = next.measurements;
  point.time_ns = (point.time_ns * a + next.time_ns * b) / (a + b);
  point.abundance = (point.abundance * a + next.abundance * b) / (a + b);
  point.runs += next.runs;
  point.measurements += next.measurements;
}

bool Follows(const DataRow& row, const DataRow& before) {
  return row.moment == before.moment &&
         std::pair(row.mass, row.measurement) > std::pair(before.mass, before.measurement);
}

}  // namespace

void SeriesBuilder::BeginFile(const std::string& label) {
  const auto known = std::find_if(instruments_.begin(), instruments_.end(),
                                  [&](const Instrument& one) { return one.label == label; });
  current_ = static_cast<std::size_t>(known - instruments_.begin());
  if (known == instruments_.end()) instruments_.push_back({label, {}, 0});
}

void SeriesBuilder::Add(const DataRow& row) {
  if (!masses_.empty() && !Follows(row, last_row_)) EndRun();
  last_row_ = row;
  const auto mass = static_cast<std::size_t>(row.mass);
  if (mass >= sums_.size()) sums_.resize(mass + 1);
  Sums& sums = sums_[mass];
  if (sums.count == 0) masses_.push_back(row.mass);
  sums.time_ns += row.time_ns;
  sums.abundance += row.abundance;
  ++sums.count;
}

void SeriesBuilder::EndFile() {
  if (!masses_.empty()) EndRun();
}

void SeriesBuilder::EndRun() {
  Instrument& instrument = instruments_[current_];
  ++instrument.runs;
  for (const std::int32_t mass : masses_) {
    Sums& sums = sums_[static_cast<std::size_t>(mass)];
    const Point point{last_row_.moment, sums.time_ns / sums.count, sums.abundance / sums.count, 1,
                      sums.count};
    sums = {};
    std::vector<Point>& points = instrument.series[mass];
    if (!points.empty() && points.back().runs < runs_per_point_) {
      Join(points.back(), point);
      continue;
    }
    points.push_back(point);
    ++points_;
  }
  masses_.clear();
  if (points_ >= most_points_) Coarsen();
}

void SeriesBuilder::Coarsen() {
  runs_per_point_ *= 2;
  points_ = 0;
  for (Instrument& instrument : instruments_) {
    for (auto& [mass, points] : instrument.series) {
      std::size_t kept = 0;
      for (std::size_t i = 1; i < points.size(); ++i) {
        if (points[kept].runs + points[i].runs <= runs_per_point_) {
          Join(points[kept], points[i]);
        } else {
          points[++kept] = points[i];
        }
      }
      points.resize(kept + 1);
      points_ += points.size();
    }
  }
}

std::vector<Instrument> SeriesBuilder::Finish() {
  for (Instrument& instrument : instruments_) {
    for (auto& [mass, points] : instrument.series) {
      std::stable_sort(points.begin(), points.end(),
                       [](const Point& a, const Point& b) { return a.moment < b.moment; });
    }
  }
  return std::move(instruments_);
}

}  // namespace tof::drift
