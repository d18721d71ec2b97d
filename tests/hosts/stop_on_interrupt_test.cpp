#include "hosts/cli/stop_on_interrupt.h"

#include <gtest/gtest.h>

#include <csignal>

namespace tof::cli {
namespace {

class StopOnInterruptBy : public ::testing::TestWithParam<int> {};

TEST_P(StopOnInterruptBy, StopsAtTheNextCheck) {
  const StopOnInterrupt interrupt;
  EXPECT_NO_THROW(interrupt.Check());
  std::raise(GetParam());
  try {
    interrupt.Check();
    FAIL() << "went on";
  } catch (const Interrupted& stop) {
    EXPECT_STREQ(stop.what(), "interrupted; nothing was written");
  }
  EXPECT_THROW(interrupt.Check(), Interrupted);
}

TEST_P(StopOnInterruptBy, ForgetsTheSignalOfTheWorkBefore) {
  {
    const StopOnInterrupt before;
    std::raise(GetParam());
  }
  EXPECT_NO_THROW(StopOnInterrupt().Check());
}

TEST_P(StopOnInterruptBy, LeavesASecondSignalToTheSystem) {
  EXPECT_EXIT(
      {
        const StopOnInterrupt interrupt;
        std::raise(GetParam());
        std::raise(GetParam());
      },
      ::testing::KilledBySignal(GetParam()), "");
}

TEST_P(StopOnInterruptBy, LeavesSignalsToTheSystemBehindTheWork) {
  EXPECT_EXIT(
      {
        { const StopOnInterrupt interrupt; }
        std::raise(GetParam());
      },
      ::testing::KilledBySignal(GetParam()), "");
}

INSTANTIATE_TEST_SUITE_P(Signals, StopOnInterruptBy, ::testing::Values(SIGINT, SIGTERM));

}  // namespace
}  // namespace tof::cli
