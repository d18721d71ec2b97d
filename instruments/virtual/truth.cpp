#include "instruments/virtual/truth.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "instruments/virtual/detector.h"
#include "instruments/virtual/flight_time.h"

namespace tof::virtual_instrument {
namespace {

double ErrorPpm(const TimeToMass& time_to_mass, double flight_time_ns, double mass_u) {
  return 1e6 * (time_to_mass(flight_time_ns) / mass_u - 1.0);
}

// One row of the fit of sqrt(m) = slope (A t) + offset with relative residuals. The time is
// multiplied by the nominal A, so that both columns are of one size.
struct Row {
  double slope;
  double offset;
};

Row RowOf(double a, double flight_time_ns, double mass_u) {
  const double root = std::sqrt(mass_u);
  return {a * flight_time_ns / root, 1.0 / root};
}

struct SymmetricMatrix {
  double slope = 0.0;
  double mixed = 0.0;
  double offset = 0.0;

  void AddOuterProduct(const Row& row, double weight) {
    slope += weight * row.slope * row.slope;
    mixed += weight * row.slope * row.offset;
    offset += weight * row.offset * row.offset;
  }
};

}  // namespace

ErrorFigures Summarize(std::span<const double> errors_ppm) {
  ErrorFigures figures;
  if (errors_ppm.empty()) return figures;
  const auto count = static_cast<double>(errors_ppm.size());
  double sum = 0.0;
  for (const double error : errors_ppm) {
    sum += error;
    figures.max_ppm = std::max(figures.max_ppm, std::abs(error));
  }
  figures.common_ppm = sum / count;
  double rest = 0.0;
  for (const double error : errors_ppm) {
    rest += (error - figures.common_ppm) * (error - figures.common_ppm);
  }
  figures.mass_dependent_ppm = std::sqrt(rest / count);
  // Not std::hypot, which the C libraries round differently.
  figures.rms_ppm = std::sqrt(figures.common_ppm * figures.common_ppm + rest / count);
  return figures;
}

std::vector<double> CheckMasses(double lowest_u, double highest_u, std::size_t count) {
  std::vector<double> masses;
  const double steps = static_cast<double>(count) - 1.0;
  for (std::size_t i = 0; i < count; ++i) {
    masses.push_back(lowest_u * std::pow(highest_u / lowest_u, static_cast<double>(i) / steps));
  }
  return masses;
}

double DeadTimeShiftSigmas(double lambda, double dead_time_sigmas) {
  if (lambda <= 0.0) return 0.0;
  // The detector's own rule on a grid that is fine against the peak. Taking the bins' middles for
  // the arrivals in them costs nothing: for a smooth density the error of the mean is of the order
  // of exp(-2 pi^2 / step^2).
  constexpr double kStepSigmas = 0.05;
  constexpr double kReachSigmas = 6.0;
  const TimeBins bins{-kReachSigmas, kStepSigmas,
                      static_cast<std::size_t>(std::lround(2.0 * kReachSigmas / kStepSigmas))};
  std::vector<double> ions_per_pulse(bins.count);
  AddGaussianPeak(bins, 0.0, 1.0, lambda, ions_per_pulse);
  const double dead_bins =
      std::min(dead_time_sigmas / kStepSigmas, static_cast<double>(bins.count));
  const std::vector<double> recorded =
      ExpectedRecordedIons(ions_per_pulse, static_cast<std::size_t>(std::lround(dead_bins)));
  double sum = 0.0;
  double moment = 0.0;
  for (std::size_t j = 0; j < bins.count; ++j) {
    sum += recorded[j];
    moment += recorded[j] * (bins.start_ns + (static_cast<double>(j) + 0.5) * bins.width_ns);
  }
  return moment / sum;
}

double ExpectedTimeNs(const Parameters& parameters, double mass_u, double lambda,
                      double drift_ppm) {
  const double center_ns = FlightTimeNs(parameters, mass_u, drift_ppm);
  const double sigma_ns = PeakSigmaNs(parameters.analyzer, center_ns);
  return center_ns +
         sigma_ns * DeadTimeShiftSigmas(lambda, parameters.detector.dead_time_ns / sigma_ns);
}

double DeadTimeShiftPpm(const Parameters& parameters, double mass_u, double lambda) {
  const double true_ns = FlightTimeNs(parameters, mass_u, 0.0);
  const double shift_ns = ExpectedTimeNs(parameters, mass_u, lambda, 0.0) - true_ns;
  return 2e6 * shift_ns / (true_ns - parameters.analyzer.t0_ns);
}

double IonsPerPulseOf(double recorded_ions, std::int64_t pulses) {
  const double fraction = recorded_ions / static_cast<double>(pulses);
  if (fraction >= 1.0) return std::numeric_limits<double>::infinity();
  return -std::log1p(-fraction);
}

ErrorFigures ErrorsAt(const Parameters& parameters, const TimeToMass& time_to_mass,
                      std::span<const double> masses_u, double lambda, double drift_ppm) {
  std::vector<double> errors;
  for (const double mass_u : masses_u) {
    errors.push_back(
        ErrorPpm(time_to_mass, ExpectedTimeNs(parameters, mass_u, lambda, drift_ppm), mass_u));
  }
  return Summarize(errors);
}

ErrorFigures ErrorsInBand(const Parameters& parameters, const TimeToMass& time_to_mass,
                          std::span<const double> masses_u, double lowest_lambda,
                          double highest_lambda, double drift_ppm) {
  // The shift is close to a straight line over a band, so a few equal cells give its spread.
  constexpr int kCells = 16;
  std::vector<double> errors;
  for (int cell = 0; cell < kCells; ++cell) {
    const double lambda = lowest_lambda + (cell + 0.5) / kCells * (highest_lambda - lowest_lambda);
    for (const double mass_u : masses_u) {
      errors.push_back(
          ErrorPpm(time_to_mass, ExpectedTimeNs(parameters, mass_u, lambda, drift_ppm), mass_u));
    }
  }
  return Summarize(errors);
}

double PredictedWeakOffsetPpm(const Parameters& parameters, double mass_u,
                              double calibration_lambda) {
  return -DeadTimeShiftPpm(parameters, mass_u, calibration_lambda);
}

double StatisticalLimitPpm(const AnalyzerParameters& analyzer,
                           std::span<const CalibrantStatistics> calibrants,
                           std::span<const double> check_masses_u) {
  const double a = analyzer.a_sqrt_u_per_ns;
  SymmetricMatrix normal;    // sum of v v^T: its inverse is the fit's
  SymmetricMatrix variance;  // sum of var v v^T
  for (const CalibrantStatistics& calibrant : calibrants) {
    const Row row = RowOf(a, calibrant.flight_time_ns, calibrant.mass_u);
    const double sigma_ns = PeakSigmaNs(analyzer, calibrant.flight_time_ns);
    const double relative = a * sigma_ns / std::sqrt(calibrant.mass_u);
    normal.AddOuterProduct(row, 1.0);
    variance.AddOuterProduct(row, relative * relative / calibrant.recorded_ions);
  }
  const double determinant = normal.slope * normal.offset - normal.mixed * normal.mixed;
  // Relative to the product of the diagonal, so that it does not depend on any unit.
  if (!(determinant > 1e-12 * normal.slope * normal.offset)) {
    throw std::invalid_argument("statistical limit: expected two calibrants of different mass");
  }
  double sum_of_squares = 0.0;
  for (const double mass_u : check_masses_u) {
    const Row row = RowOf(a, analyzer.t0_ns + std::sqrt(mass_u) / a, mass_u);
    const Row solved{(normal.offset * row.slope - normal.mixed * row.offset) / determinant,
                     (normal.slope * row.offset - normal.mixed * row.slope) / determinant};
    sum_of_squares += variance.slope * solved.slope * solved.slope +
                      2.0 * variance.mixed * solved.slope * solved.offset +
                      variance.offset * solved.offset * solved.offset;
  }
  // Twice the relative error of sqrt(m) is that of m.
  return 2e6 * std::sqrt(sum_of_squares / static_cast<double>(check_masses_u.size()));
}

}  // namespace tof::virtual_instrument
