// What a fit came to, for the people and programs that read it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "instruments/masstime/choose_terms.h"

namespace tof::cli {

struct FitReport {
  std::string date;  // of the fit, UTC, "2026-11-21T17:05:09Z"
  masstime::AcquisitionWindow window;
  std::vector<double> masses;    // m/z
  std::vector<double> times_ns;  // of the same length
  std::vector<double> masses_without_peak;
  masstime::Fit fit;
  // Only when the terms were chosen by leave-one-out: every model that was tried, and what the
  // choice is worth when it is made anew without each mass.
  std::vector<masstime::Candidate> candidates;
  std::optional<double> loo_with_choice_ppm;
};

std::string JsonOf(const FitReport& report);
std::string TableOf(const FitReport& report);

}  // namespace tof::cli
