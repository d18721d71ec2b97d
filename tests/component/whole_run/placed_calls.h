// The calls of a run in which nothing failed, each with the routines that were running.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/expected_calls.h"

namespace tof::fakes {

// A routine as it runs, from its entry to its exit.
struct RunningRoutine {
  std::string name;
  std::size_t entry = 0;  // the place of its entry
};

struct PlacedCall {
  std::string text;
  std::string subject;                  // the text, for a preparation that of its setpoint access
  std::vector<RunningRoutine> running;  // outermost first; an entry and an exit are their own
  bool is_trace = false;
  bool is_exit = false;

  const std::string& routine() const { return running.back().name; }
};

inline bool BeginsWith(const std::string& text, std::string_view begin) {
  return text.compare(0, begin.size(), begin) == 0;
}

inline std::string SubjectOf(const Calls& calls, std::size_t n) {
  const bool prepares = BeginsWith(calls[n], "AcqController.PrepareSetpoint") ||
                        calls[n] == "DataDictionary.GetSetpointTable";
  if (!prepares) return calls[n];
  while (!BeginsWith(calls[n], "SetpointTable.")) ++n;
  return calls[n];
}

// `calls` are those of a run with the trace on.
inline std::vector<PlacedCall> Placed(const Calls& calls) {
  std::vector<PlacedCall> placed;
  std::vector<RunningRoutine> running;
  for (std::size_t n = 0; n < calls.size(); ++n) {
    PlacedCall call{.text = calls[n], .subject = SubjectOf(calls, n), .running = {}};
    const std::string entry = "Trace.Entry(";
    if (BeginsWith(call.text, entry)) {
      running.push_back(
          {call.text.substr(entry.size(), call.text.find(',') - entry.size()), placed.size()});
    }
    call.running = running;
    call.is_trace = BeginsWith(call.text, "Trace.");
    call.is_exit = BeginsWith(call.text, "Trace.Exit(");
    if (call.is_exit) running.pop_back();
    placed.push_back(std::move(call));
  }
  return placed;
}

}  // namespace tof::fakes
