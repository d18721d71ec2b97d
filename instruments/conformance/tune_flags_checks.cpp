#include <algorithm>
#include <array>

#include "component/automation/convert.h"
#include "instruments/conformance/attempt.h"
#include "instruments/conformance/checks.h"
#include "instruments/conformance/subject.h"

namespace tof::conformance {
namespace {

void AbsentFlagSwitchesNothing(Subject& subject) {
  constexpr std::array<std::string_view, 5> kCompared{"Yes", "No", "1", "2", "3000"};
  const std::string text = Flag(subject.parts, "ConformanceCheck_NoSuchFlag");
  Require(std::find(kCompared.begin(), kCompared.end(), text) == kCompared.end(),
          "any text but \"Yes\", \"No\", \"1\", \"2\" and \"3000\"", "\"" + text + "\"");
}

void StartingT0IsANumber(Subject& subject) {
  const std::string text = Flag(subject.parts, "Calibration_t0ToUseToStartLookingforA_usec");
  Require(!ErrorRaisedBy([&] { TextToDouble(text); }), "a number of us, as a text",
          "\"" + text + "\"");
}

constexpr std::array kChecks{
    Check{"TuneFlags", "absent-flag-switches-nothing",
          "Many flags are read that an instrument need not have: an absent one is a text, not an "
          "error, and none of those that switch something on or off.",
          AbsentFlagSwitchesNothing},
    Check{"TuneFlags", "starting-t0-is-a-number",
          "Calibration_t0ToUseToStartLookingforA_usec is where t0 is sought and what the result is "
          "judged by: text that reads as a number.",
          StartingT0IsANumber},
};

}  // namespace

std::span<const Check> TuneFlagsChecks() {
  return kChecks;
}

}  // namespace tof::conformance
