#include "hosts/cli/stop_on_interrupt.h"

#include <csignal>

namespace tof::cli {
namespace {

// A signal handler reaches nothing but globals.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
volatile std::sig_atomic_t stop_requested = 0;

void RequestStop(int signal) {
  stop_requested = 1;
  std::signal(signal, SIG_DFL);
}

}  // namespace

StopOnInterrupt::StopOnInterrupt() {
  stop_requested = 0;
  std::signal(SIGINT, RequestStop);
  std::signal(SIGTERM, RequestStop);
}

StopOnInterrupt::~StopOnInterrupt() {
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
}

void StopOnInterrupt::Check() const {
  if (stop_requested != 0) throw Interrupted();
}

}  // namespace tof::cli
