// Runs a routine again and again, each time with another one of its calls failing.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "tests/support/journal.h"

namespace tof::fakes {

// `arrange` makes a fresh start, `run` runs the routine (and takes what it raises), `check(call)`
// is told which call failed.
template <class Arrange, class Run, class Check>
void FailEachCall(Journal& journal, Arrange arrange, Run run, Check check) {
  arrange();
  journal.Clear();
  run();
  const std::vector<std::string> calls = journal.entries();
  ASSERT_FALSE(calls.empty()) << "nothing that could fail";
  for (std::size_t n = 0; n < calls.size(); ++n) {
    SCOPED_TRACE("call " + std::to_string(n) + " fails: " + calls[n]);
    arrange();
    journal.Clear();
    journal.fail_from = n;
    run();
    journal.fail_from = Journal::kNever;
    check(calls[n]);
  }
}

}  // namespace tof::fakes
