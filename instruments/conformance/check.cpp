#include "instruments/conformance/check.h"

#include <cmath>
#include <utility>

#include "component/automation/number_text.h"

namespace tof::conformance {

std::string IdOf(const Check& check) {
  return std::string(check.collaborator) + "." + std::string(check.name);
}

Unmet::Unmet(std::string expected_text, std::string found_text)
    : expected(std::move(expected_text)), found(std::move(found_text)) {}

NotApplicable::NotApplicable(std::string why_not) : why(std::move(why_not)) {}

void Require(bool holds, const std::string& expected, const std::string& found) {
  if (!holds) throw Unmet(expected, found);
}

void RequireNear(const std::string& what, double found, double expected, double tolerance) {
  Require(std::fabs(found - expected) <= tolerance,
          what + " of " + NumberText(expected) +
              (tolerance > 0.0 ? ", " + NumberText(tolerance) + " off at most" : std::string()),
          NumberText(found));
}

}  // namespace tof::conformance
