// The command line of the program.
#pragma once

#include <stdexcept>
#include <string>
#include <variant>

#include "hosts/cli/options.h"

namespace tof::cli {

// A text that was asked for: help or the version.
struct TextRequest {
  std::string text;
};

using Command = std::variant<TextRequest, CalibrateOptions, ReplayOptions, CheckOptions, FitOptions,
                             ApplyOptions, DriftOptions, ReportOptions>;

// A command line that can't be followed; the text says what and, where it is not obvious, what
// would do.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads the arguments and checks what can be checked without opening a file. Raises a UsageError
// or, for the value of an option, an InputError.
Command ParseCommandLine(int argc, const char* const* argv);

}  // namespace tof::cli
