#include <atomic>
#include <csignal>

#include "hosts/cli/interrupt.h"

namespace tof::cli {
namespace {

// A signal handler reaches nothing but globals.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
std::atomic<standin::StandInInstrument*> instrument_to_abort = nullptr;

void RequestAbort(int) {
  if (standin::StandInInstrument* const instrument = instrument_to_abort.load()) {
    instrument->RequestAbort();
  }
  std::signal(SIGINT, SIG_DFL);
}

}  // namespace

AbortOnInterrupt::AbortOnInterrupt(standin::StandInInstrument& instrument) {
  instrument_to_abort = &instrument;
  std::signal(SIGINT, RequestAbort);
}

AbortOnInterrupt::~AbortOnInterrupt() {
  std::signal(SIGINT, SIG_DFL);
  instrument_to_abort = nullptr;
}

}  // namespace tof::cli
