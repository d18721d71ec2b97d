// A tape that answers from a recording.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "hosts/recording/difference.h"
#include "hosts/recording/recording.h"
#include "hosts/recording/tape.h"
#include "instruments/spectra/input_error.h"

namespace tof::recording {

// What agreed.
struct ReplayCounts {
  std::int64_t calls = 0;        // all of them
  std::int64_t trace_lines = 0;  // of these: calls of the trace object's methods
  std::int64_t log_lines = 0;    // lines of text files
};

// Answers each call as the recording does, as long as it is the call that stands there. Behind the
// first difference, or where the recording ends, every call raises error 440, which ends whatever
// the calibrator does.
class Replayer : public Tape {
 public:
  // The recording outlives the replayer.
  explicit Replayer(const Recording& recording) : recording_(recording) {}

  Json Exchange(Call call, const RealCall& real) override;
  Json Invoke(const std::string& method, const Json& arguments,
              const std::function<Json()>& run) override;
  AutomationError Refused(const MalformedValue& why) override;

  // The next call from outside; none at the end or when the replay has stopped. Raises an
  // InputError when something else stands there.
  const Entry* NextBegin() const;

  bool HasStopped() const { return stopped_; }
  const std::optional<Difference>& difference() const { return difference_; }
  const ReplayCounts& counts() const { return counts_; }
  // Set when an answer was refused.
  const std::optional<spectra::InputError>& refused() const { return refused_; }

 private:
  [[noreturn]] void Stop();
  [[noreturn]] void Differ(const Entry& entry, const std::string& came,
                           const std::string& first_part);
  const Entry& NextOrStop();
  void RequireSameCall(const Entry& entry, const Call& call);
  void RequireSameEnd(const std::string& method, const Answer& came);
  std::string DescriptionOfEntry(const Entry& entry) const;
  void Follow(const Entry& entry);

  const Recording& recording_;
  std::size_t position_ = 0;
  std::int64_t last_call_ = 0;
  bool stopped_ = false;
  std::vector<std::string> routines_;  // that run, innermost last
  FileNames files_;
  ReplayCounts counts_;
  std::optional<Difference> difference_;
  std::optional<spectra::InputError> refused_;
};

}  // namespace tof::recording
