#include <array>

#include "component/automation/convert.h"
#include "instruments/conformance/attempt.h"
#include "instruments/conformance/checks.h"
#include "instruments/conformance/subject.h"

namespace tof::conformance {
namespace {

void RequireNumber(Subject& subject, const std::string& name) {
  const auto reader = subject.parts.data_dictionary->GetStatusReader();
  Require(reader != nullptr, "a status reader", "none");
  const Variant value = reader->Read(name, "VARIANT", 0);
  const auto error = ErrorRaisedBy([&] { ToDouble(value); });
  Require(!error && !value.IsEmpty(), "a number as the value of " + name,
          error ? error->text : std::string("an empty value"));
}

void ReadsTheReadyState(Subject& subject) {
  RequireNumber(subject, "ACTUAL.NDR[NRDYSTATE]");
}

void ReadsTheRunState(Subject& subject) {
  RequireNumber(subject, "REG[ACTUAL].OBJ[1].NDR[RUNSTATE]");
}

constexpr std::array kChecks{
    Check{"StatusReader", "reads-the-ready-state",
          "Before it looks for peaks the calibrator waits, without a limit, until "
          "ACTUAL.NDR[NRDYSTATE] is not negative: the name is known and its value a number.",
          ReadsTheReadyState},
    Check{"StatusReader", "reads-the-run-state",
          "The same wait goes on until REG[ACTUAL].OBJ[1].NDR[RUNSTATE] is 2, running: the name is "
          "known and its value a number.",
          ReadsTheRunState},
};

}  // namespace

std::span<const Check> StatusReaderChecks() {
  return kChecks;
}

}  // namespace tof::conformance
