// Where a replay leaves the recording, in words.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "hosts/recording/recording.h"

namespace tof::recording {

struct Difference {
  std::size_t line = 0;    // of the recording
  std::int64_t call = 0;   // number of the call; of the call before it where a method ends
  std::string routine;     // the calibrator's, that runs; empty outside of all
  std::string expected;    // what the recording has
  std::string came;        // what the calibrator did
  std::string first_part;  // the first part of the arguments or results that differs; may be empty
};

// The names of the text files that were opened, by the numbers of the calls that opened them.
using FileNames = std::map<std::int64_t, std::string>;

// A trace line, a line of a log file or a call, e.g. SetpointTable.SetSetpoint(84, 5, 75.0).
std::string DescriptionOf(const std::string& operation, ObjectNumber on, const Json& arguments,
                          const FileNames& files);

// How a method ended: what it gave, or its error.
std::string DescriptionOfEnd(const std::string& method, const Answer& answer);

// Where two values that are not the same first differ, e.g. "[2].values[7]: 75.0 against 77.0".
std::string FirstDifferingPart(const Json& expected, const Json& came);

// Whether two values stand the same in a recording, to the last digit and sign.
bool AreTheSame(const Json& a, const Json& b);

}  // namespace tof::recording
