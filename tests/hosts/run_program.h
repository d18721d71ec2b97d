// Runs the built program as a user does.
#pragma once

#include <string>
#include <vector>

namespace tof::testing {

struct ProgramResult {
  int exit_code = -1;  // -1: it did not exit by itself
  std::string out;
  std::string err;
};

// `arguments` go to the program as they are; its standard output and error are no terminals.
ProgramResult RunTofcal(const std::vector<std::string>& arguments);

}  // namespace tof::testing
