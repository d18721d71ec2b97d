#include "instruments/conformance/table.h"

#include <fmt/format.h>

#include <algorithm>

namespace tof::conformance {
namespace {

std::string LinesOf(const CheckResult& result) {
  switch (result.outcome) {
    case Outcome::kPass:
      return fmt::format("pass  {}\n", result.id);
    case Outcome::kNotApplicable:
      return fmt::format("n/a   {}: {}\n", result.id, result.why_not_applicable);
    case Outcome::kFail:
      break;
  }
  return fmt::format("FAIL  {}\n      {}\n      expected: {}\n      found:    {}\n", result.id,
                     result.relied_on, result.expected, result.found);
}

}  // namespace

std::size_t NumberOf(Outcome outcome, const std::vector<CheckResult>& results) {
  const auto n = std::count_if(results.begin(), results.end(),
                               [outcome](const auto& result) { return result.outcome == outcome; });
  return static_cast<std::size_t>(n);
}

std::string TableOf(const std::string& instrument, const std::vector<CheckResult>& results) {
  std::string text = instrument + "\n";
  std::string collaborator;
  for (const CheckResult& result : results) {
    if (result.collaborator != collaborator) text += "\n";
    collaborator = result.collaborator;
    text += LinesOf(result);
  }
  return text + fmt::format("\n{} passed, {} failed, {} not applicable\n",
                            NumberOf(Outcome::kPass, results), NumberOf(Outcome::kFail, results),
                            NumberOf(Outcome::kNotApplicable, results));
}

}  // namespace tof::conformance
