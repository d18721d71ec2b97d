// Ctrl-C at the program's console.
#include "hosts/cli/interrupt.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <memory>
#include <sstream>

#include "hosts/native/virtual_clock.h"
#include "hosts/native/virtual_time_host.h"
#include "instruments/description/description_reader.h"

namespace tof::cli {
namespace {

// Windows calls the handler in a thread of its own.
bool IsAskedToAbort(const standin::StandInInstrument& instrument) {
  constexpr ULONGLONG kMilliseconds = 10'000;
  const ULONGLONG end = GetTickCount64() + kMilliseconds;
  while (!instrument.State().abort_requested && GetTickCount64() < end) SwitchToThread();
  return instrument.State().abort_requested;
}

// Wine sends no Ctrl-Break.
class Interrupt : public ::testing::Test {
 protected:
  // A console of its own, for a program without one is sent nothing, and everybody at the same one
  // is sent everything.
  Interrupt() {
    FreeConsole();
    AllocConsole();
  }
  ~Interrupt() override { FreeConsole(); }

  std::ostringstream messages_;
  std::shared_ptr<native::VirtualClock> clock_ = std::make_shared<native::VirtualClock>();
  native::VirtualTimeHost host_{messages_, clock_, 1};
  standin::StandInInstrument instrument_{description::BuiltInDescription(), {}, host_, clock_};
};

TEST_F(Interrupt, AsksTheInstrumentForAnAbort) {
  const AbortOnInterrupt abort_on_interrupt(instrument_);
  ASSERT_FALSE(instrument_.State().abort_requested);
  ASSERT_TRUE(GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0)) << GetLastError();
  EXPECT_TRUE(IsAskedToAbort(instrument_));
}

}  // namespace
}  // namespace tof::cli
