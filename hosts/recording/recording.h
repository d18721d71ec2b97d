// A recording that was read.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "component/automation/error.h"
#include "hosts/recording/tape.h"

namespace tof::recording {

// The moves of a Json are declared noexcept; what they assert on the way does not throw.
// NOLINTBEGIN(bugprone-exception-escape)

// How a call ended.
struct Answer {
  Json gives;                             // what it gave
  std::optional<AutomationError> raises;  // or the error that it raised
};

enum class EntryKind {
  kBegin,  // of a call of the calibrator's own method
  kCall,   // of the calibrator to the outside
  kEnd,    // of the calibrator's own method
};

struct Entry {
  EntryKind kind = EntryKind::kCall;
  std::size_t line = 0;          // in the file, from 1
  std::int64_t number = 0;       // of a call to the outside, from 1
  std::string name;              // of the operation or the method
  ObjectNumber on;               // of a call to the outside
  Json arguments;                // of both calls
  std::optional<Answer> answer;  // none for a call in which the recording ends
};

// NOLINTEND(bugprone-exception-escape)

// Where a recording that was cut ends.
struct Cut {
  std::size_t line = 0;
  std::string found;  // what is there instead of the closing line
};

struct Recording {
  std::string source;   // the path, for messages
  std::string program;  // that made it
  std::vector<Entry> entries;
  std::optional<Cut> cut;
};

// Raises an InputError with file, line, what was found and what was expected: for a file that can't
// be read, is no recording or one of another version, and for lines that were changed, dropped,
// moved or added. A recording that ends early is no error; it says so in `cut`.
Recording ReadRecording(const std::filesystem::path& path);
Recording RecordingOf(const std::string& text, const std::string& source);

}  // namespace tof::recording
