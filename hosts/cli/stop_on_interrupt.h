// Ctrl-C as the wish to stop work on files.
#pragma once

#include <stdexcept>

namespace tof::cli {

class Interrupted : public std::runtime_error {
 public:
  Interrupted() : std::runtime_error("interrupted; nothing was written") {}
};

// While it lives, SIGINT and SIGTERM are kept for Check(), so that what is half done is removed as
// after any error. A second one ends the program as usual. One at a time.
class StopOnInterrupt {
 public:
  StopOnInterrupt();
  ~StopOnInterrupt();
  StopOnInterrupt(const StopOnInterrupt&) = delete;
  StopOnInterrupt& operator=(const StopOnInterrupt&) = delete;

  // Raises Interrupted once a signal has come.
  void Check() const;
};

}  // namespace tof::cli
