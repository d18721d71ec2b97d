// Ctrl-C as the user's wish to abort a calibration.
#pragma once

#include "instruments/standin/instrument.h"

namespace tof::cli {

// While it lives, SIGINT (Windows: Ctrl-C and Ctrl-Break) asks `instrument` for an abort, so that
// the calibration puts its setpoints back; a second one ends the program as usual. One at a time.
class AbortOnInterrupt {
 public:
  explicit AbortOnInterrupt(standin::StandInInstrument& instrument);
  ~AbortOnInterrupt();
  AbortOnInterrupt(const AbortOnInterrupt&) = delete;
  AbortOnInterrupt& operator=(const AbortOnInterrupt&) = delete;
};

}  // namespace tof::cli
