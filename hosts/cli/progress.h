// One line that says how far a calibration is, for a person who waits at a terminal.
#pragma once

#include <cstdint>
#include <ostream>

namespace tof::cli {

class Progress {
 public:
  // Says nothing at all unless `out` is a terminal.
  Progress(std::ostream& out, bool is_terminal) : out_(out), is_terminal_(is_terminal) {}
  ~Progress() { Finish(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void ShowSpectra(std::int64_t spectra, double instrument_seconds);
  // Clears the line; whatever is written next begins at its start.
  void Finish();

 private:
  std::ostream& out_;
  bool is_terminal_;
  bool line_shown_ = false;
};

}  // namespace tof::cli
