// Calls of a collaborator that may fail, and what a check does about it.
#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "component/automation/error.h"
#include "instruments/conformance/check.h"

namespace tof::conformance {

struct RaisedError {
  std::int32_t number = 0;  // 0: an exception that is no AutomationError
  std::string text;
};

// The error that `operation` raises; none when it returns.
template <class Operation>
std::optional<RaisedError> ErrorRaisedBy(Operation&& operation) {
  try {
    operation();
  } catch (const AutomationError& error) {
    return RaisedError{error.number(), error.description()};
  } catch (const std::exception& error) {
    return RaisedError{0, error.what()};
  } catch (...) {
    return RaisedError{0, "an exception without a text"};
  }
  return std::nullopt;
}

// What the checks rely on that call this.
inline constexpr std::string_view kErrorsReachTheUser =
    "The number and the text of an error are all that the user is told of a calibration that "
    "failed: every error is an AutomationError that has both.";

// Raises Unmet for an error without number or text; NotApplicable when there is no error.
void RequireNumberAndText(const std::optional<RaisedError>& error);

// What `preparation` answers. Where it fails another check says so, and the one that needs it does
// not apply.
template <class Preparation>
auto Given(const std::string& id_of_other_check, Preparation&& preparation) {
  try {
    return preparation();
  } catch (const NotApplicable&) {
    throw;
  } catch (...) {
    throw NotApplicable(id_of_other_check + " has to pass first");
  }
}

// Whatever becomes of `work`, what it changed is put back. A failure to do so fails the check,
// unless the work has failed already.
template <class Work, class PutBack>
void ThenPutBack(Work&& work, PutBack&& put_back) {
  try {
    work();
  } catch (...) {
    ErrorRaisedBy(put_back);
    throw;
  }
  put_back();
}

}  // namespace tof::conformance
