// What the conformance suite said of an instrument.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "instruments/conformance/suite.h"

namespace tof::cli {

struct ConformanceReport {
  std::string instrument;  // by the name in its description
  std::vector<conformance::CheckResult> results;
};

inline std::size_t NumberOf(conformance::Outcome outcome, const ConformanceReport& report) {
  const auto n = std::count_if(report.results.begin(), report.results.end(),
                               [outcome](const auto& result) { return result.outcome == outcome; });
  return static_cast<std::size_t>(n);
}

// A line per check, with the details of those that did not pass, and the sums.
std::string TableOf(const ConformanceReport& report);

// The JSON document of the same.
std::string JsonOf(const ConformanceReport& report);

}  // namespace tof::cli
