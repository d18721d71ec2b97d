// Every call that the component makes to the world, in order, and the faults that a test plans.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "component/automation/error.h"

namespace tof::fakes {

inline constexpr std::int32_t kInjectedNumber = 4711;
inline constexpr const char* kInjectedDescription = "Injected fault";

class Journal {
 public:
  static constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();

  // Call numbers count from 0. From `fail_from` on, `fail_count` calls fail.
  std::size_t fail_from = kNever;
  std::size_t fail_count = 1;
  // An abort is asked for right before this call.
  std::size_t abort_before = kNever;
  // ... and before every call whose text begins with this; empty for none.
  std::string abort_operation;
  std::function<void()> request_abort = [] {};
  // Fails every call whose text begins with this; empty for none.
  std::string fail_operation;
  // Which calls are written down; a sweep over many runs needs the count alone.
  bool keep_entries = true;

  // Called first by every operation, e.g. "SetpointTable.GetSetpoint(149)". Raises a planned fault.
  void Enter(std::string call) {
    const std::size_t n = count_++;
    const auto is = [&](const std::string& begin) {
      return !begin.empty() && call.rfind(begin, 0) == 0;
    };
    if (n == abort_before || is(abort_operation)) request_abort();
    const bool planned = n >= fail_from && n - fail_from < fail_count;
    const bool named = is(fail_operation);
    if (keep_entries) entries_.push_back(std::move(call));
    if (planned || named) throw AutomationError(kInjectedNumber, kInjectedDescription);
  }

  std::size_t count() const { return count_; }
  const std::vector<std::string>& entries() const { return entries_; }
  void Clear() {
    entries_.clear();
    count_ = 0;
  }

  // The entries that begin with one of the prefixes, in order.
  std::vector<std::string> Only(const std::vector<std::string>& prefixes) const {
    std::vector<std::string> found;
    for (const std::string& entry : entries_) {
      for (const std::string& prefix : prefixes) {
        if (entry.rfind(prefix, 0) == 0) {
          found.push_back(entry);
          break;
        }
      }
    }
    return found;
  }

 private:
  std::vector<std::string> entries_;
  std::size_t count_ = 0;
};

}  // namespace tof::fakes
