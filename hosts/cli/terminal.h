// Where the program speaks to its user.
#pragma once

#include <ostream>

namespace tof::cli {

struct Terminal {
  std::ostream& out;
  std::ostream& err;
  bool err_is_terminal = false;  // progress is shown there
};

}  // namespace tof::cli
