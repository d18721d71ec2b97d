// How many terms the calibrants can carry: the choice by leave-one-out.
#pragma once

#include <string>
#include <vector>

#include "instruments/masstime/fit.h"

namespace tof::masstime {

// A longer model must predict calibrants that it has not seen better by at least this fraction, and
// must not hang on a single calibrant by more than this leverage. A smaller residual alone says
// nothing: every further coefficient lowers it.
inline constexpr double kRequiredGain = 0.25;
inline constexpr double kLargestLeverage = 0.9;

struct Candidate {
  Fit fit;
  bool accepted = false;
  std::string reason;  // a sentence for the reader of the table
};

struct TermChoice {
  std::vector<Candidate> candidates;  // A and t0 alone, then with C, with C and D, ... to H
  std::size_t chosen = 0;             // index of the candidate taken: the last one accepted
};

// Goes from A and t0 alone to more terms; each longer model is compared with the last one accepted.
// Models that the calibrants do not determine, or that are not monotone, are left out or refused.
// Raises FitError when A and t0 alone cannot be fitted.
TermChoice ChooseTerms(const Calibrants& calibrants, const AcquisitionWindow& window,
                       Weighting weighting);

// By calibrant: the error in ppm that it has when it is left out of the fit and of the choice of
// terms alike. This is what the choice is really worth. Needs three calibrants.
std::vector<double> LeaveOneOutWithChoice(const Calibrants& calibrants,
                                          const AcquisitionWindow& window, Weighting weighting);

}  // namespace tof::masstime
