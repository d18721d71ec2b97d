#include "hosts/apply/provenance.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "hosts/cli/coefficient_names.h"

namespace tof::apply {
namespace {

// File names may hold anything.
std::string OneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return (c >= 0 && c < ' ') || c == '\x7f'; }, '?');
  return text;
}

const char* UnitOf(std::size_t coefficient) {
  if (coefficient == masstime::kA) return "sqrt(u)/ns";
  return coefficient == masstime::kT0 ? "ns" : "sqrt(u)";
}

}  // namespace

std::vector<Fact> ProvenanceOf(const AppliedCalibration& calibration, const std::string& version,
                               const std::string& now) {
  std::vector<Fact> facts{
      {"calibration file", OneLine(calibration.file)},
      {"calibration", calibration.what},
      {"calibration date", OneLine(calibration.date)},
      {"applied", now},
      {"program", "tofcal " + version},
      {"formula", std::string(masstime::kFormula)},
      {"terms", OneLine(fmt::format("{}", fmt::join(calibration.terms, " ")))},
  };
  const auto& [coefficients, window] = calibration.model;
  for (std::size_t i = 0; i < coefficients.size(); ++i) {
    facts.push_back({fmt::format("{} in {}", cli::kCoefficientNames[i], UnitOf(i)),
                     fmt::format("{}", coefficients[i])});
  }
  facts.push_back({"window in ns", calibration.has_window
                                       ? fmt::format("{} to {}", window.start_ns, window.end_ns)
                                       : "not recorded; A and t0 need none"});
  return facts;
}

}  // namespace tof::apply
