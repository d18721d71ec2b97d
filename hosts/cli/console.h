// The command line and the standard streams, which each system has in its own way.
#pragma once

#include <string>
#include <vector>

namespace tof::cli {

// The program's name and its arguments, in UTF-8.
std::vector<std::string> ArgumentsInUtf8(int argc, const char* const* argv);

// From here on standard output and error take UTF-8, and what is written to them keeps its line
// ends: the same bytes on every system. At its end the program leaves a console as it was.
void PrepareStandardStreams();

// Whether a person reads standard error as it is written, on something that can clear a line.
bool StandardErrorIsTerminal();

}  // namespace tof::cli
