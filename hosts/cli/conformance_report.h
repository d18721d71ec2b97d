// What the conformance suite said of an instrument.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "instruments/conformance/table.h"

namespace tof::cli {

struct ConformanceReport {
  std::string instrument;  // by the name in its description
  std::vector<conformance::CheckResult> results;
};

inline std::size_t NumberOf(conformance::Outcome outcome, const ConformanceReport& report) {
  return conformance::NumberOf(outcome, report.results);
}

// A line per check, with the details of those that did not pass, and the sums.
inline std::string TableOf(const ConformanceReport& report) {
  return conformance::TableOf(report.instrument, report.results);
}

// The JSON document of the same.
std::string JsonOf(const ConformanceReport& report);

}  // namespace tof::cli
