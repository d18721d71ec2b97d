#include <windows.h>

#include <mutex>
#include <utility>

#include "hosts/cli/interrupt.h"

namespace tof::cli {
namespace {

struct Target {
  std::mutex mutex;  // Windows calls the handler in a thread of its own
  standin::StandInInstrument* instrument = nullptr;
};

Target& TheTarget() {
  static Target target;
  return target;
}

BOOL WINAPI OnControlEvent(DWORD event) {
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
  Target& target = TheTarget();
  const std::lock_guard lock(target.mutex);
  // Taken out, so that the second event is left to Windows, which ends the program.
  standin::StandInInstrument* const instrument = std::exchange(target.instrument, nullptr);
  if (instrument == nullptr) return FALSE;
  instrument->RequestAbort();
  return TRUE;
}

void SetTarget(standin::StandInInstrument* instrument) {
  Target& target = TheTarget();
  const std::lock_guard lock(target.mutex);
  target.instrument = instrument;
}

}  // namespace

AbortOnInterrupt::AbortOnInterrupt(standin::StandInInstrument& instrument) {
  SetTarget(&instrument);
  SetConsoleCtrlHandler(OnControlEvent, TRUE);
}

AbortOnInterrupt::~AbortOnInterrupt() {
  SetConsoleCtrlHandler(OnControlEvent, FALSE);
  SetTarget(nullptr);
}

}  // namespace tof::cli
