// Fits the relation between flight time and mass to calibrants, and says how far to trust it.
#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <vector>

#include "instruments/masstime/mass_time_model.h"

namespace tof::masstime {

// What the least squares make small. The numbers are those of the calibration information record.
enum class Weighting : std::int32_t {
  kRelativeMass = 0,  // errors in ppm of the mass: what a user of the spectra sees
  kFlightTime = 1,    // errors in flight time: right when every time is equally uncertain
  kAbsoluteMass = 2,  // errors in u
};

// Calibrants that no coefficients can be fitted to. The text says which and why.
class FitError : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

// Calibrants by index: the mass (m/z in u, positive, each once) and its flight time (ns, each
// once).
struct Calibrants {
  std::span<const double> masses;
  std::span<const double> times_ns;
};

struct Fit {
  CoefficientRecord coefficients{};
  TermSet terms = 0;  // the terms that were fitted; the others are 0

  // By calibrant. Error in ppm: (mass given by the fit - mass) / mass x 1e6.
  std::vector<double> error_ppm;
  // The error a calibrant has with coefficients fitted to all the others. NaN for one that the
  // others cannot predict (leverage 1).
  std::vector<double> loo_error_ppm;
  // How much the fit follows this one calibrant: from 0 (not at all) to 1 (goes through it).
  std::vector<double> leverage;

  double rms_ppm = 0.0;
  double max_ppm = 0.0;
  double loo_rms_ppm = 0.0;
  double max_leverage = 0.0;
};

// Weighted linear least squares for A, t0 and `terms` together. Raises FitError when the calibrants
// differ in number, are fewer than the coefficients, hold a mass or time that is not finite, a mass
// that is not positive, a mass or a time twice, when `terms` are wanted over a window without an
// extent, or when they do not determine the coefficients (rank).
Fit FitTerms(const Calibrants& calibrants, const AcquisitionWindow& window, TermSet terms,
             Weighting weighting);

// As FitTerms, but gives up the highest term, and the next, as long as the fit is not monotone over
// the window, not determined by the calibrants, or predicts a calibrant that it has not seen worse
// than A and t0 alone do. `a_and_t0` is the weighting of a fit without terms, `with_terms` of one
// with them. Raises only when A and t0 alone cannot be fitted either.
Fit FitWithFallback(const Calibrants& calibrants, const AcquisitionWindow& window, TermSet terms,
                    Weighting a_and_t0, Weighting with_terms);

// Root of the mean square; NaN for no values.
double RootMeanSquare(std::span<const double> values);

}  // namespace tof::masstime
