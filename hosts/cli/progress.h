// One line that says how far a run is, for a person who waits at a terminal.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

#include "hosts/cli/spectra_plan.h"

namespace tof::cli {

struct SpectraDone {
  std::string stage;  // "collecting flight times"
  std::int64_t spectra = 0;
  std::optional<SpectraPlan> plan;  // none: nobody can say
  double instrument_seconds = 0.0;  // what these spectra took
};

// "collecting flight times: 150 of 242 spectra, about 3 min of instrument time left". The time left
// is as long as the spectra have taken on average; there is none before the first.
std::string ProgressText(const SpectraDone& done);

class Progress {
 public:
  // Says nothing at all unless `out` is a terminal.
  Progress(std::ostream& out, bool is_terminal) : out_(out), is_terminal_(is_terminal) {}
  ~Progress() { Finish(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  bool IsShown() const { return is_terminal_; }
  // In place of what the line said before.
  void Show(const std::string& text);
  // Clears the line; whatever is written next begins at its start.
  void Finish();

 private:
  std::ostream& out_;
  bool is_terminal_;
  std::string shown_;
};

}  // namespace tof::cli
