#include "hosts/cli/progress.h"

#include <fmt/format.h>

namespace tof::cli {
namespace {

constexpr const char* kToStartOfClearedLine = "\r\033[K";
constexpr double kSecondsPerMinute = 60.0;

// No finer than it can be known: whole minutes from two minutes on.
std::string RoughTime(double seconds) {
  if (seconds < 2 * kSecondsPerMinute) return fmt::format("{:.0f} s", seconds);
  return fmt::format("{:.0f} min", seconds / kSecondsPerMinute);
}

}  // namespace

std::string ProgressText(const SpectraDone& done) {
  if (!done.plan) {
    if (done.spectra == 0) return done.stage;
    return fmt::format("{}: {} spectra, {} of instrument time", done.stage, done.spectra,
                       RoughTime(done.instrument_seconds));
  }
  const char* const at_least = done.plan->or_more ? "at least " : "";
  std::string spectra =
      fmt::format("{}: {} of {}{} spectra", done.stage, done.spectra, at_least, done.plan->spectra);
  const std::int64_t missing = done.plan->spectra - done.spectra;
  if (done.spectra == 0 || missing <= 0) return spectra;
  const double left =
      done.instrument_seconds / static_cast<double>(done.spectra) * static_cast<double>(missing);
  return fmt::format("{}, {}{} of instrument time left", spectra,
                     done.plan->or_more ? at_least : "about ", RoughTime(left));
}

void Progress::Show(const std::string& text) {
  if (!is_terminal_ || text == shown_) return;
  out_ << kToStartOfClearedLine << text << std::flush;
  shown_ = text;
}

void Progress::Finish() {
  if (shown_.empty()) return;
  out_ << kToStartOfClearedLine << std::flush;
  shown_.clear();
}

}  // namespace tof::cli
