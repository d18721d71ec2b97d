#include "instruments/masstime/choose_terms.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>

namespace tof::masstime {
namespace {

// Why `candidate` does not replace `best`; empty when it does.
std::string ReasonToRefuse(const Fit& candidate, const Fit& best, const AcquisitionWindow& window) {
  if (!IsMonotone({candidate.coefficients, window})) return "not monotone over the window";
  if (!(candidate.max_leverage <= kLargestLeverage)) {
    return fmt::format("leverage {:.2f} above {:.2f}: it hangs on a single calibrant",
                       candidate.max_leverage, kLargestLeverage);
  }
  const double limit_ppm = (1.0 - kRequiredGain) * best.loo_rms_ppm;
  if (!(candidate.loo_rms_ppm <= limit_ppm)) {
    return fmt::format("leave-one-out {:.2f} ppm is not below {:.2f} ppm, {:.0f} % under the best",
                       candidate.loo_rms_ppm, limit_ppm, 100.0 * kRequiredGain);
  }
  return {};
}

}  // namespace

TermChoice ChooseTerms(const Calibrants& calibrants, const AcquisitionWindow& window,
                       Weighting weighting) {
  TermChoice choice;
  choice.candidates.push_back(
      {FitTerms(calibrants, window, 0, weighting), true, "A and t0 alone: the start"});
  for (std::size_t count = 1; count <= kTermCount; ++count) {
    const auto terms = static_cast<TermSet>((1U << count) - 1U);
    try {
      Candidate candidate{FitTerms(calibrants, window, terms, weighting), false, {}};
      const Fit& best = choice.candidates[choice.chosen].fit;
      candidate.reason = ReasonToRefuse(candidate.fit, best, window);
      candidate.accepted = candidate.reason.empty();
      if (candidate.accepted) {
        candidate.reason = fmt::format("leave-one-out {:.2f} ppm instead of {:.2f} ppm",
                                       candidate.fit.loo_rms_ppm, best.loo_rms_ppm);
        choice.chosen = choice.candidates.size();
      }
      choice.candidates.push_back(std::move(candidate));
    } catch (const FitError&) {
      break;  // the calibrants do not determine this model, and no longer one either
    }
  }
  return choice;
}

std::vector<double> LeaveOneOutWithChoice(const Calibrants& calibrants,
                                          const AcquisitionWindow& window, Weighting weighting) {
  std::vector<double> errors_ppm;
  for (std::size_t left_out = 0; left_out < calibrants.masses.size(); ++left_out) {
    std::vector<double> masses(calibrants.masses.begin(), calibrants.masses.end());
    std::vector<double> times_ns(calibrants.times_ns.begin(), calibrants.times_ns.end());
    masses.erase(masses.begin() + static_cast<std::ptrdiff_t>(left_out));
    times_ns.erase(times_ns.begin() + static_cast<std::ptrdiff_t>(left_out));
    const TermChoice choice = ChooseTerms({masses, times_ns}, window, weighting);
    const MassTimeModel model{choice.candidates[choice.chosen].fit.coefficients, window};
    const double mass = calibrants.masses[left_out];
    errors_ppm.push_back((TimeToMass(model, calibrants.times_ns[left_out]) - mass) / mass * 1e6);
  }
  return errors_ppm;
}

}  // namespace tof::masstime
