#include "hosts/report/abundance_effect.h"

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
#include <utility>

namespace tof::report {
namespace {

constexpr double kPpm = 1e6;
constexpr double kLeastSpanOfAll = 0.3;      // decades of abundance: a factor of two
constexpr double kLeastSpanOfASlope = 0.03;  // decades
constexpr std::size_t kLeastPointsOfASlope = 8;
constexpr std::size_t kMostSlopes = 10;

AbundanceEffect NotMeasured(std::string why) {
  AbundanceEffect effect;
  effect.not_measured = std::move(why);
  return effect;
}

// One point, ready for the fit.
struct Row {
  std::size_t calibrant = 0;
  double log_abundance = 0.0;
  double abundance = 0.0;
  double error_ppm = 0.0;
};

// A calibrant with a single point says nothing: its constant takes it up.
std::vector<Row> RowsOf(const std::vector<AbundancePoint>& points, std::size_t calibrants,
                        double t0_ns) {
  std::vector<double> weight(calibrants);
  std::vector<double> mean_ns(calibrants);
  std::vector<std::size_t> count(calibrants);
  for (const AbundancePoint& point : points) {
    weight[point.calibrant] += point.abundance;
    mean_ns[point.calibrant] += point.abundance * point.time_ns;
    ++count[point.calibrant];
  }
  std::vector<Row> rows;
  for (const AbundancePoint& point : points) {
    const std::size_t m = point.calibrant;
    if (count[m] < 2) continue;
    const double mean = mean_ns[m] / weight[m];
    rows.push_back({m, std::log10(point.abundance), point.abundance,
                    2.0 * (point.time_ns - mean) / (mean - t0_ns) * kPpm});
  }
  return rows;
}

// Where the curve is bent, the two ends included: about the same number of points in each part, so
// that it follows a bend where there are many of them.
std::vector<double> KnotsOf(const std::vector<Row>& rows) {
  std::vector<double> logs;
  logs.reserve(rows.size());
  for (const Row& row : rows) logs.push_back(row.log_abundance);
  std::sort(logs.begin(), logs.end());
  const std::size_t least = std::max(kLeastPointsOfASlope, logs.size() / kMostSlopes);
  std::vector<double> knots{logs.front()};
  std::size_t points = 0;
  for (std::size_t i = 0; i < logs.size(); ++i) {
    ++points;
    const bool rest_is_a_part =
        logs.size() - i > least && logs.back() - logs[i] >= kLeastSpanOfASlope;
    if (points < least || !rest_is_a_part || logs[i] - knots.back() < kLeastSpanOfASlope) continue;
    knots.push_back(logs[i]);
    points = 0;
  }
  knots.push_back(logs.back());
  return knots;
}

std::size_t CountWithin(const std::vector<Row>& rows, double low, double high) {
  return static_cast<std::size_t>(std::count_if(rows.begin(), rows.end(), [&](const Row& row) {
    return row.log_abundance >= low && row.log_abundance <= high;
  }));
}

// How much of each part of the curve lies below x.
Eigen::RowVectorXd PartsBelow(const std::vector<double>& knots, double x) {
  Eigen::RowVectorXd parts(static_cast<Eigen::Index>(knots.size()) - 1);
  for (Eigen::Index i = 0; i < parts.size(); ++i) {
    const double from = knots[static_cast<std::size_t>(i)];
    const double to = knots[static_cast<std::size_t>(i) + 1];
    parts[i] = std::clamp(x, from, to) - from;
  }
  return parts;
}

// The design matrix and the errors.
struct System {
  Eigen::MatrixXd parts;
  Eigen::VectorXd errors;
  Eigen::VectorXd weights;
};

System SystemOf(const std::vector<Row>& rows, const std::vector<double>& knots) {
  const auto count = static_cast<Eigen::Index>(rows.size());
  System system{Eigen::MatrixXd(count, static_cast<Eigen::Index>(knots.size()) - 1),
                Eigen::VectorXd(count), Eigen::VectorXd(count)};
  for (Eigen::Index i = 0; i < count; ++i) {
    const Row& row = rows[static_cast<std::size_t>(i)];
    system.parts.row(i) = PartsBelow(knots, row.log_abundance);
    system.errors[i] = row.error_ppm;
    system.weights[i] = row.abundance;
  }
  return system;
}

// Taking each calibrant's weighted mean away is the same as fitting a constant for it.
System WithoutConstants(System system, const std::vector<Row>& rows, std::size_t calibrants) {
  const auto masses = static_cast<Eigen::Index>(calibrants);
  Eigen::MatrixXd mean_parts = Eigen::MatrixXd::Zero(masses, system.parts.cols());
  Eigen::VectorXd mean_errors = Eigen::VectorXd::Zero(masses);
  Eigen::VectorXd weights = Eigen::VectorXd::Zero(masses);
  const auto mass_of = [&](Eigen::Index i) {
    return static_cast<Eigen::Index>(rows[static_cast<std::size_t>(i)].calibrant);
  };
  for (Eigen::Index i = 0; i < system.errors.size(); ++i) {
    mean_parts.row(mass_of(i)) += system.weights[i] * system.parts.row(i);
    mean_errors[mass_of(i)] += system.weights[i] * system.errors[i];
    weights[mass_of(i)] += system.weights[i];
  }
  for (Eigen::Index i = 0; i < system.errors.size(); ++i) {
    const Eigen::Index m = mass_of(i);
    system.parts.row(i) -= mean_parts.row(m) / weights[m];
    system.errors[i] -= mean_errors[m] / weights[m];
  }
  return system;
}

struct Solution {
  Eigen::VectorXd slopes;
  Eigen::VectorXd uncertainties;
  Eigen::VectorXd residuals;
};

std::optional<Solution> Solve(const System& system, std::size_t calibrants) {
  const Eigen::MatrixXd weighted = system.weights.cwiseSqrt().asDiagonal() * system.parts;
  const Eigen::VectorXd errors = system.weights.cwiseSqrt().asDiagonal() * system.errors;
  const Eigen::ColPivHouseholderQR<Eigen::MatrixXd> decomposition(weighted);
  const auto freedom =
      system.errors.size() - weighted.cols() - static_cast<Eigen::Index>(calibrants);
  if (decomposition.rank() < weighted.cols() || freedom < 1) return std::nullopt;

  Solution solution;
  solution.slopes = decomposition.solve(errors);
  solution.residuals = system.errors - system.parts * solution.slopes;
  const double scatter =
      (errors - weighted * solution.slopes).squaredNorm() / static_cast<double>(freedom);
  const Eigen::MatrixXd covariance = (weighted.transpose() * weighted).inverse() * scatter;
  solution.uncertainties = covariance.diagonal().cwiseSqrt();
  if (!solution.slopes.allFinite() || !solution.uncertainties.allFinite()) return std::nullopt;
  return solution;
}

std::vector<AbundanceSlope> SlopesOf(const Solution& solution, const std::vector<Row>& rows,
                                     const std::vector<double>& knots) {
  std::vector<AbundanceSlope> slopes;
  double at_ppm = 0.0;
  for (std::size_t i = 0; i + 1 < knots.size(); ++i) {
    AbundanceSlope& slope = slopes.emplace_back();
    slope.from_abundance = std::pow(10.0, knots[i]);
    slope.to_abundance = std::pow(10.0, knots[i + 1]);
    slope.points = CountWithin(rows, knots[i], knots[i + 1]);
    slope.ppm_per_decade = solution.slopes[static_cast<Eigen::Index>(i)];
    slope.standard_uncertainty = solution.uncertainties[static_cast<Eigen::Index>(i)];
    slope.from_ppm = at_ppm;
    at_ppm += slope.ppm_per_decade * (knots[i + 1] - knots[i]);
    slope.to_ppm = at_ppm;
  }
  return slopes;
}

std::size_t CalibrantsIn(const std::vector<Row>& rows, std::size_t calibrants) {
  std::vector<bool> present(calibrants);
  for (const Row& row : rows) present[row.calibrant] = true;
  return static_cast<std::size_t>(std::count(present.begin(), present.end(), true));
}

}  // namespace

AbundanceEffect AbundanceEffectOf(const std::vector<AbundancePoint>& points, std::size_t calibrants,
                                  std::optional<double> t0_ns) {
  if (points.empty()) return NotMeasured("there is no survey with flight times");
  if (!t0_ns) return NotMeasured("t0 is not recorded");
  const std::vector<Row> rows = RowsOf(points, calibrants, *t0_ns);
  if (rows.empty()) return NotMeasured("no calibrant was found at two voltages");
  const std::vector<double> knots = KnotsOf(rows);
  if (knots.back() - knots.front() < kLeastSpanOfAll) {
    return NotMeasured("the abundances did not change by a factor of two");
  }

  AbundanceEffect effect;
  effect.points = rows.size();
  effect.calibrants = CalibrantsIn(rows, calibrants);
  const System system = WithoutConstants(SystemOf(rows, knots), rows, calibrants);
  const std::optional<Solution> solution = Solve(system, effect.calibrants);
  if (!solution) return NotMeasured("the survey has too few points with a peak");
  effect.slopes = SlopesOf(*solution, rows, knots);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const double on_curve = PartsBelow(knots, rows[i].log_abundance).dot(solution->slopes);
    effect.errors.push_back({rows[i].calibrant, rows[i].abundance,
                             on_curve + solution->residuals[static_cast<Eigen::Index>(i)]});
  }
  return effect;
}

}  // namespace tof::report
