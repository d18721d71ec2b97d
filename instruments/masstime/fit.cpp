#include "instruments/masstime/fit.h"

#include <fmt/format.h>

#include <Eigen/QR>
#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>
#include <string_view>

namespace tof::masstime {
namespace {

// Relative size below which a direction counts as not determined. The columns are polynomials of a
// scaled time, so that a healthy design is far above it.
constexpr double kRankThreshold = 1e-10;

void RequireUnique(std::span<const double> values, std::string_view what) {
  std::vector<double> sorted(values.begin(), values.end());
  std::sort(sorted.begin(), sorted.end());
  const auto twice = std::adjacent_find(sorted.begin(), sorted.end());
  if (twice != sorted.end()) throw FitError(fmt::format("{} {} is given twice", what, *twice));
}

void RequireUsable(const Calibrants& calibrants, std::size_t coefficient_count) {
  const auto& [masses, times_ns] = calibrants;
  if (masses.size() != times_ns.size()) {
    throw FitError(fmt::format("{} masses but {} flight times", masses.size(), times_ns.size()));
  }
  for (std::size_t i = 0; i < masses.size(); ++i) {
    if (!std::isfinite(masses[i]) || !(masses[i] > 0.0)) {
      throw FitError(fmt::format("mass {} of calibrant {} is not a positive number", masses[i], i));
    }
    if (!std::isfinite(times_ns[i])) {
      throw FitError(
          fmt::format("flight time of calibrant {} (mass {}) is not a number", i, masses[i]));
    }
  }
  if (masses.size() < coefficient_count) {
    throw FitError(fmt::format("{} calibrants cannot determine {} coefficients", masses.size(),
                               coefficient_count));
  }
  RequireUnique(masses, "mass");
  RequireUnique(times_ns, "flight time");
}

// The factor of a calibrant's equation for sqrt(m). With s = sqrt(m), an error ds is 2 ds/s of the
// mass, ds/A of the time and 2 s ds in u; constant factors do not matter.
double WeightOf(double root_mass, Weighting weighting) {
  switch (weighting) {
    case Weighting::kRelativeMass:
      return 1.0 / root_mass;
    case Weighting::kFlightTime:
      return 1.0;
    case Weighting::kAbsoluteMass:
      return root_mass;
  }
  throw FitError(fmt::format("weighting {} is none of 0 (relative mass), 1 (flight time), 2 (mass)",
                             static_cast<std::int32_t>(weighting)));
}

// The fit's own scale of time for the straight line: the calibrants' middle and half width. It
// keeps the equations well conditioned whatever the window is.
struct TimeScale {
  double middle_ns;
  double half_width_ns;
};

TimeScale ScaleOf(std::span<const double> times_ns) {
  const auto [first, last] = std::minmax_element(times_ns.begin(), times_ns.end());
  return {0.5 * (*first + *last), 0.5 * (*last - *first)};
}

// One row per calibrant: 1, the scaled time, the chosen terms; each row times its weight.
struct WeightedEquations {
  Eigen::MatrixXd design;
  Eigen::VectorXd root_masses;
};

WeightedEquations Equations(const Calibrants& calibrants, const AcquisitionWindow& window,
                            TermSet terms, Weighting weighting, const TimeScale& scale) {
  const auto rows = static_cast<Eigen::Index>(calibrants.masses.size());
  WeightedEquations equations{Eigen::MatrixXd(rows, 2 + std::popcount(terms)),
                              Eigen::VectorXd(rows)};
  for (Eigen::Index row = 0; row < rows; ++row) {
    const double time_ns = calibrants.times_ns[static_cast<std::size_t>(row)];
    const double root_mass = std::sqrt(calibrants.masses[static_cast<std::size_t>(row)]);
    const double weight = WeightOf(root_mass, weighting);
    const auto legendre = LegendreTerms(ScaledTime(window, time_ns));
    Eigen::Index column = 0;
    equations.design(row, column++) = weight;
    equations.design(row, column++) = weight * (time_ns - scale.middle_ns) / scale.half_width_ns;
    for (std::size_t term = 0; term < kTermCount; ++term) {
      if (((terms >> term) & 1U) != 0) equations.design(row, column++) = weight * legendre[term];
    }
    equations.root_masses(row) = weight * root_mass;
  }
  return equations;
}

// Undoes the fit's scale of time and puts the terms in their places.
CoefficientRecord RecordOf(const Eigen::VectorXd& solution, TermSet terms, const TimeScale& scale) {
  CoefficientRecord record{};
  record[kA] = solution(1) / scale.half_width_ns;
  record[kT0] = scale.middle_ns - solution(0) / record[kA];
  Eigen::Index column = 2;
  for (std::size_t term = 0; term < kTermCount; ++term) {
    if (((terms >> term) & 1U) != 0) record[kFirstTerm + term] = solution(column++);
  }
  return record;
}

// The diagonal of the hat matrix: the squared lengths of the rows of the thin Q.
std::vector<double> Leverages(const Eigen::ColPivHouseholderQR<Eigen::MatrixXd>& qr) {
  const Eigen::MatrixXd thin_q =
      qr.householderQ() * Eigen::MatrixXd::Identity(qr.rows(), qr.cols());
  std::vector<double> leverage(static_cast<std::size_t>(qr.rows()));
  for (Eigen::Index row = 0; row < qr.rows(); ++row) {
    leverage[static_cast<std::size_t>(row)] = std::min(1.0, thin_q.row(row).squaredNorm());
  }
  return leverage;
}

double LargestSize(std::span<const double> values) {
  double largest = 0.0;
  for (const double value : values) largest = std::max(largest, std::abs(value));
  return largest;
}

void JudgeFit(Fit& fit, const Calibrants& calibrants, const AcquisitionWindow& window) {
  const MassTimeModel model{fit.coefficients, window};
  for (std::size_t i = 0; i < calibrants.masses.size(); ++i) {
    const double mass = calibrants.masses[i];
    const double error_ppm = (TimeToMass(model, calibrants.times_ns[i]) - mass) / mass * 1e6;
    // What is left of the error's own pull on the fit; nothing once the fit goes through the point.
    const double freedom = 1.0 - fit.leverage[i];
    fit.error_ppm.push_back(error_ppm);
    fit.loo_error_ppm.push_back(freedom > 1e-9 ? error_ppm / freedom
                                               : std::numeric_limits<double>::quiet_NaN());
  }
  fit.rms_ppm = RootMeanSquare(fit.error_ppm);
  fit.max_ppm = LargestSize(fit.error_ppm);
  fit.loo_rms_ppm = RootMeanSquare(fit.loo_error_ppm);
  fit.max_leverage = LargestSize(fit.leverage);
}

// The set without its highest term.
TermSet WithoutHighest(TermSet terms) {
  return terms & ~std::bit_floor(terms);
}

}  // namespace

double RootMeanSquare(std::span<const double> values) {
  const double sum = std::inner_product(values.begin(), values.end(), values.begin(), 0.0);
  return std::sqrt(sum / static_cast<double>(values.size()));
}

Fit FitTerms(const Calibrants& calibrants, const AcquisitionWindow& window, TermSet terms,
             Weighting weighting) {
  terms &= kAllTerms;
  RequireUsable(calibrants, 2 + static_cast<std::size_t>(std::popcount(terms)));
  if (terms != 0 && !(window.end_ns > window.start_ns)) {
    throw FitError(fmt::format("terms need an acquisition window, not {} to {} ns", window.start_ns,
                               window.end_ns));
  }

  const TimeScale scale = ScaleOf(calibrants.times_ns);
  const auto equations = Equations(calibrants, window, terms, weighting, scale);
  Eigen::ColPivHouseholderQR<Eigen::MatrixXd> qr(equations.design);
  qr.setThreshold(kRankThreshold);
  if (qr.rank() < equations.design.cols()) {
    throw FitError(fmt::format("the calibrants do not determine {} coefficients (rank {})",
                               equations.design.cols(), qr.rank()));
  }

  Fit fit;
  fit.terms = terms;
  fit.coefficients = RecordOf(qr.solve(equations.root_masses), terms, scale);
  if (!std::all_of(fit.coefficients.begin(), fit.coefficients.end(),
                   [](double value) { return std::isfinite(value); })) {
    throw FitError("the calibrants give no finite coefficients");
  }
  fit.leverage = Leverages(qr);
  JudgeFit(fit, calibrants, window);
  return fit;
}

Fit FitWithFallback(const Calibrants& calibrants, const AcquisitionWindow& window, TermSet terms,
                    Weighting a_and_t0, Weighting with_terms) {
  Fit plain = FitTerms(calibrants, window, 0, a_and_t0);
  WeightOf(1.0,
           with_terms);  // an unknown weighting is the caller's error, not a reason to fall back
  for (terms &= kAllTerms; terms != 0; terms = WithoutHighest(terms)) {
    try {
      Fit fit = FitTerms(calibrants, window, terms, with_terms);
      if (IsMonotone({fit.coefficients, window}) && fit.loo_rms_ppm <= plain.loo_rms_ppm) {
        return fit;
      }
    } catch (const FitError&) {
      // Too many terms for these calibrants; fewer may do.
    }
  }
  return plain;
}

}  // namespace tof::masstime
