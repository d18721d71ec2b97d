// The command line and the standard streams, which each system has in its own way.
#pragma once

#include <string>
#include <vector>

namespace tof::cli {

// The program's name and its arguments, in UTF-8.
std::vector<std::string> ArgumentsInUtf8(int argc, const char* const* argv);

// While it lives, standard output and error take UTF-8, and what is written to them keeps its line
// ends: the same bytes on every system. A console is put back as it was.
class Console {
 public:
  Console();
  ~Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

 private:
  unsigned code_page_before_ = 0;  // 0: nothing to put back
};

// Whether a person reads standard error as it is written, on something that can clear a line.
bool StandardErrorIsTerminal();

}  // namespace tof::cli
