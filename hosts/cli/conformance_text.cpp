#include <fmt/format.h>

#include "hosts/cli/conformance_report.h"

namespace tof::cli {
namespace {

using conformance::CheckResult;
using conformance::Outcome;

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

std::string TableOf(const ConformanceReport& report) {
  std::string text = report.instrument + "\n";
  std::string collaborator;
  for (const CheckResult& result : report.results) {
    if (result.collaborator != collaborator) text += "\n";
    collaborator = result.collaborator;
    text += LinesOf(result);
  }
  return text + fmt::format("\n{} passed, {} failed, {} not applicable\n",
                            NumberOf(Outcome::kPass, report), NumberOf(Outcome::kFail, report),
                            NumberOf(Outcome::kNotApplicable, report));
}

}  // namespace tof::cli
