// The frame of every routine: it announces itself to the trace, and what becomes of an error is
// said once, on its first line.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "component/automation/error.h"
#include "component/trace/trace.h"

namespace tof {

enum class OnError {
  kRaise,          // no handler of its own: raised to the caller, no trace line
  kTraceAndRaise,  // one trace line, then passed on
  kSwallow,        // one trace line, then the routine answers as newly made: Empty, False, nothing
};

// The forms of the trace line that a routine writes for an error.
enum class ErrorLine {
  kStandard,     // "error[5] in Routine(): description"
  kNameFirst,    // "Routine.Error[5]"
  kNumberOnly,   // "Error[5] = description"
  kCapitalized,  // "Error[5] in Routine(): description"
};

struct Routine {
  std::string_view name;  // as announced
  OnError on_error;
  ErrorLine error_line = ErrorLine::kStandard;
  std::int32_t level = 9;
  std::string_view name_in_error_line = {};  // where it is spelled otherwise
};

std::string ErrorLineText(const Routine& routine, const AutomationError& error);

// Runs `body(trace)` as the routine. When it fails, and the policy has a handler: one trace line,
// then `on_failure(error, trace)`, then the policy. Errors inside the handler are ignored.
template <class Body, class OnFailure>
auto Guarded(const Routine& routine, Body&& body, OnFailure&& on_failure)
    -> std::invoke_result_t<Body, TraceObj&> {
  using Result = std::invoke_result_t<Body, TraceObj&>;
  TraceObj trace;
  try {
    trace.TraceEntry(routine.level, routine.name);
    return body(trace);
  } catch (...) {
    if (routine.on_error == OnError::kRaise) throw;
    const AutomationError error = CurrentError();
    try {
      trace.TracePrint(ErrorLineText(routine, error));
    } catch (...) {
      // A failing trace must not hide the error that is being handled.
    }
    try {
      on_failure(error, trace);
    } catch (...) {
      // As above.
    }
    if (routine.on_error == OnError::kTraceAndRaise) throw error;
  }
  if constexpr (!std::is_void_v<Result>) return Result{};
}

template <class Body>
auto Guarded(const Routine& routine, Body&& body) -> std::invoke_result_t<Body, TraceObj&> {
  return Guarded(routine, std::forward<Body>(body), [](const AutomationError&, TraceObj&) {});
}

// Runs `step` and ignores its error: for the steps of a failure path, each on its own.
template <class Step>
void IgnoringErrors(Step&& step) {
  try {
    step();
  } catch (...) {
    // The error that started the failure path is the one to report.
  }
}

}  // namespace tof
