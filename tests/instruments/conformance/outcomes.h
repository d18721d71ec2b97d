// What the suite says, for assertions.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "instruments/conformance/suite.h"

namespace tof::conformance {

// "id: expected ..., found ..." of every failure.
inline std::vector<std::string> Failures(const std::vector<CheckResult>& results) {
  std::vector<std::string> failures;
  for (const CheckResult& result : results) {
    if (result.outcome != Outcome::kFail) continue;
    failures.push_back(result.id + ": expected " + result.expected + ", found " + result.found);
  }
  return failures;
}

// The reasons of those that were not applicable, by id.
inline std::map<std::string, std::string> NotApplicables(const std::vector<CheckResult>& results) {
  std::map<std::string, std::string> reasons;
  for (const CheckResult& result : results) {
    if (result.outcome == Outcome::kNotApplicable) reasons[result.id] = result.why_not_applicable;
  }
  return reasons;
}

}  // namespace tof::conformance
