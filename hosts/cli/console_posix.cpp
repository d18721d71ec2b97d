#include <unistd.h>

#include "hosts/cli/console.h"

namespace tof::cli {

std::vector<std::string> ArgumentsInUtf8(int argc, const char* const* argv) {
  return {argv, argv + argc};
}

void PrepareStandardStreams() {}

bool StandardErrorIsTerminal() {
  return isatty(STDERR_FILENO) != 0;
}

}  // namespace tof::cli
