// The trace's part of a journal, for tests of where a line stands between the calls.
#pragma once

#include <algorithm>
#include <string>

#include "tests/support/expected_calls.h"

namespace tof::fakes {

inline Calls Entered(const std::string& routine) {
  return {"Trace.Entry(" + routine + ",9)"};
}

inline Calls Left(const std::string& routine) {
  return {"Trace.Exit(" + routine + ",9)"};
}

inline Calls Traced(const std::string& routine, const std::string& text) {
  return {"Trace.TracePrint(" + text + "," + routine + ",9)"};
}

// The calls from the first `begin` up to and with the next `end` behind it; all the rest where one
// of them is not there.
inline Calls Between(const Calls& calls, const std::string& begin, const std::string& end) {
  const auto first = std::find(calls.begin(), calls.end(), begin);
  const auto last = std::find(first, calls.end(), end);
  return {first, last == calls.end() ? last : last + 1};
}

}  // namespace tof::fakes
