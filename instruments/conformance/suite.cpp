#include "instruments/conformance/suite.h"

#include <array>

#include "component/automation/error.h"
#include "instruments/conformance/checks.h"

namespace tof::conformance {
namespace {

constexpr std::array kGroups{
    InstrumentFactoryChecks, DataDictionaryChecks,  SpectrumDisplayChecks,     StatusReaderChecks,
    SetpointTableChecks,     AcqControllerChecks,   MassCalCoefficientsChecks, PeakListChecks,
    SpecParserChecks,        TuneFlagsChecks,       CalibSettingsChecks,       CalibLogFilesChecks,
    InstrumentPathsChecks,   FirmwareLibraryChecks,
};

// The factory's own checks say which collaborators are missing; the others need them all.
void RunOnWhatThereIs(const Check& check, Subject& subject) {
  if (check.collaborator != "InstrumentFactory" && !HasEveryCollaborator(subject)) {
    throw NotApplicable("InstrumentFactory.creates-every-collaborator has to pass first");
  }
  check.run(subject);
}

CheckResult ResultOf(const Check& check, Subject& subject) {
  CheckResult result{.id = IdOf(check),
                     .collaborator = std::string(check.collaborator),
                     .relied_on = std::string(check.relied_on)};
  try {
    RunOnWhatThereIs(check, subject);
  } catch (const NotApplicable& reason) {
    result.outcome = Outcome::kNotApplicable;
    result.why_not_applicable = reason.why;
  } catch (const Unmet& difference) {
    result.outcome = Outcome::kFail;
    result.expected = difference.expected;
    result.found = difference.found;
  } catch (...) {
    const AutomationError error = CurrentError();
    result.outcome = Outcome::kFail;
    result.expected = "no error";
    result.found = "error " + std::to_string(error.number()) + ": " + error.description();
  }
  return result;
}

}  // namespace

std::vector<Check> AllChecks() {
  std::vector<Check> all;
  for (const auto group : kGroups) {
    const std::span<const Check> checks = group();
    all.insert(all.end(), checks.begin(), checks.end());
  }
  return all;
}

std::vector<CheckResult> RunChecks(const Supplied& supplied) {
  Subject subject = MakeSubject(supplied);
  std::vector<CheckResult> results;
  for (const Check& check : AllChecks()) results.push_back(ResultOf(check, subject));
  return results;
}

}  // namespace tof::conformance
