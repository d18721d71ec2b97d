// The conformance suite: whether an instrument's collaborators do what the calibrator relies on.
#pragma once

#include <string>
#include <vector>

#include "instruments/conformance/check.h"
#include "instruments/conformance/subject.h"

namespace tof::conformance {

enum class Outcome { kPass, kFail, kNotApplicable };

struct CheckResult {
  std::string id;
  std::string collaborator;
  std::string relied_on;
  Outcome outcome = Outcome::kPass;
  std::string expected = {};  // of a failure
  std::string found = {};     // of a failure
  std::string why_not_applicable = {};
};

// Every check there is, collaborator by collaborator.
std::vector<Check> AllChecks();

// Runs them all, on collaborators of its own. Takes about fifteen spectra, moves the RF voltage and
// the coefficients in force and puts them back, and leaves the display live. What stays are three
// log files: one each of the prefixes "AIC" and "CalibrationData", and ConformanceCheck.txt.
// Whatever a check raises is the failure of that check alone.
std::vector<CheckResult> RunChecks(const Supplied& supplied);

}  // namespace tof::conformance
