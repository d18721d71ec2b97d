#include "hosts/drift/analysis.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <tuple>

namespace tof::drift {
namespace {

constexpr double kPpm = 1e6;
constexpr double kPercent = 100.0;

// As much of "2024-02-29 13:05:09" as the period says.
std::string PeriodText(std::int64_t moment, Period period) {
  constexpr std::array<std::size_t, 4> kLengths{19, 10, 7, 4};
  return MomentText(moment).substr(0, kLengths[static_cast<std::size_t>(period)]);
}

// The periods that the points of an instrument fall into, but no more than one too many.
std::size_t CountPeriods(const Series& series, Period period) {
  std::set<std::string> texts;
  for (const auto& [mass, points] : series) {
    std::int64_t last = -1;
    for (const Point& point : points) {
      if (point.moment == last) continue;
      last = point.moment;
      texts.insert(PeriodText(point.moment, period));
      if (texts.size() > kMostPeriods) return texts.size();
    }
  }
  return texts.size();
}

Period ShortestPeriod(const Series& series) {
  for (const Period period : {Period::kRun, Period::kDay, Period::kMonth}) {
    if (CountPeriods(series, period) <= kMostPeriods) return period;
  }
  return Period::kYear;
}

std::vector<PeriodRow> PeriodsOf(const std::vector<Point>& points, const std::vector<bool>& jumps,
                                 Period period) {
  std::vector<PeriodRow> rows;
  double measurements = 0.0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const Point& point = points[i];
    std::string text = PeriodText(point.moment, period);
    if (rows.empty() || rows.back().period != text) {
      rows.push_back({});
      rows.back().period = std::move(text);
      measurements = 0.0;
    }
    PeriodRow& row = rows.back();
    const double n = point.measurements;
    measurements += n;
    row.time_ns += (point.time_ns - row.time_ns) * n / measurements;
    row.abundance += (point.abundance - row.abundance) * n / measurements;
    row.runs += point.runs;
    if (jumps[i]) ++row.jumps;
  }
  for (PeriodRow& row : rows) row.drift_ppm = (row.time_ns / points.front().time_ns - 1.0) * kPpm;
  return rows;
}

std::vector<CurvePoint> CurveOf(const std::vector<Point>& points) {
  const std::size_t group = (points.size() + kMostCurvePoints - 1) / kMostCurvePoints;
  std::vector<CurvePoint> curve;
  for (std::size_t begin = 0; begin < points.size(); begin += group) {
    const std::size_t end = std::min(begin + group, points.size());
    CurvePoint joined{points[begin].moment};
    for (std::size_t i = begin; i < end; ++i) {
      const auto share = 1.0 / static_cast<double>(end - begin);
      joined.drift_ppm += (points[i].time_ns / points.front().time_ns - 1.0) * kPpm * share;
      joined.abundance += points[i].abundance * share;
    }
    curve.push_back(joined);
  }
  return curve;
}

class MassAnalysis {
 public:
  MassAnalysis(std::int32_t mass, const std::vector<Point>& points, const AnalysisOptions& options)
      : points_(points), options_(options), jumped_(points.size(), false) {
    drift_.mass = mass;
  }

  MassDrift Run(Period period, std::vector<Jump>& jumps) {
    const Point& first = points_.front();
    drift_.first_time_ns = first.time_ns;
    drift_.last_time_ns = points_.back().time_ns;
    drift_.first_abundance = first.abundance;
    drift_.last_abundance = points_.back().abundance;
    FlightTimeJumps(jumps);
    AbundanceJumps(jumps);
    drift_.periods = PeriodsOf(points_, jumped_, period);
    drift_.curve = CurveOf(points_);
    return std::move(drift_);
  }

 private:
  void FlightTimeJumps(std::vector<Jump>& jumps) {
    std::vector<double> ppm(points_.size());
    for (std::size_t i = 0; i < ppm.size(); ++i) {
      ppm[i] = (points_[i].time_ns / points_.front().time_ns - 1.0) * kPpm;
    }
    const StepStatistics steps = FindJumps(ppm, {options_.jump_sigmas, options_.jump_ppm});
    const auto [lowest, highest] = std::minmax_element(ppm.begin(), ppm.end());
    drift_.lowest_ppm = *lowest;
    drift_.highest_ppm = *highest;
    drift_.last_ppm = ppm.back();
    drift_.noise_ppm = steps.robust_deviation;
    for (const std::size_t i : steps.jumps) {
      Note(i, Quantity::kFlightTime, ppm[i] - ppm[i - 1], ppm[i], jumps);
    }
  }

  // On a logarithmic scale, where half and double are equally far. Without a logarithm, a point has
  // the one of the point before it.
  void AbundanceJumps(std::vector<Jump>& jumps) {
    std::vector<double> logs(points_.size());
    for (std::size_t i = 0; i < logs.size(); ++i) {
      const double abundance = points_[i].abundance;
      const double before = i == 0 ? 0.0 : logs[i - 1];
      logs[i] = abundance > 0.0 ? std::log(abundance) : before;
    }
    const JumpRule rule{options_.jump_sigmas, std::log1p(options_.jump_percent / kPercent)};
    for (const std::size_t i : FindJumps(logs, rule).jumps) {
      Note(i, Quantity::kAbundance, std::expm1(logs[i] - logs[i - 1]) * kPercent,
           points_[i].abundance, jumps);
    }
  }

  void Note(std::size_t i, Quantity quantity, double step, double value, std::vector<Jump>& jumps) {
    jumped_[i] = true;
    jumps.push_back({points_[i - 1].moment, points_[i].moment, drift_.mass, quantity, step, value});
  }

  const std::vector<Point>& points_;
  const AnalysisOptions& options_;
  std::vector<bool> jumped_;  // by point
  MassDrift drift_;
};

}  // namespace

InstrumentDrift Analyse(const Instrument& instrument, const AnalysisOptions& options) {
  InstrumentDrift drift;
  drift.label = instrument.label;
  drift.runs = instrument.runs;
  if (instrument.series.empty()) return drift;
  drift.period = options.period ? *options.period : ShortestPeriod(instrument.series);
  const auto& any = instrument.series.begin()->second;
  drift.first_moment = any.front().moment;
  drift.last_moment = any.back().moment;
  for (const auto& [mass, points] : instrument.series) {
    drift.first_moment = std::min(drift.first_moment, points.front().moment);
    drift.last_moment = std::max(drift.last_moment, points.back().moment);
    drift.masses.push_back(MassAnalysis(mass, points, options).Run(drift.period, drift.jumps));
  }
  std::sort(drift.jumps.begin(), drift.jumps.end(), [](const Jump& a, const Jump& b) {
    return std::tie(a.moment, a.mass, a.quantity) < std::tie(b.moment, b.mass, b.quantity);
  });
  return drift;
}

std::vector<JointJump> JointJumps(const std::vector<Jump>& jumps) {
  std::vector<JointJump> joint;
  for (const Jump& jump : jumps) {
    const auto same = std::find_if(joint.rbegin(), joint.rend(), [&](const JointJump& one) {
      return one.first->moment != jump.moment || one.first->quantity == jump.quantity;
    });
    if (same == joint.rend() || same->first->moment != jump.moment) {
      joint.push_back({&jump, 1, jump.step, jump.step});
      continue;
    }
    ++same->masses;
    same->lowest = std::min(same->lowest, jump.step);
    same->highest = std::max(same->highest, jump.step);
  }
  return joint;
}

}  // namespace tof::drift
