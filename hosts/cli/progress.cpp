#include "hosts/cli/progress.h"

#include <fmt/format.h>

namespace tof::cli {
namespace {

constexpr const char* kToStartOfClearedLine = "\r\033[K";

}  // namespace

void Progress::ShowSpectra(std::int64_t spectra, double instrument_seconds) {
  if (!is_terminal_) return;
  out_ << kToStartOfClearedLine
       << fmt::format("calibrating: {} spectra, {:.0f} s of instrument time", spectra,
                      instrument_seconds)
       << std::flush;
  line_shown_ = true;
}

void Progress::Finish() {
  if (!line_shown_) return;
  out_ << kToStartOfClearedLine << std::flush;
  line_shown_ = false;
}

}  // namespace tof::cli
