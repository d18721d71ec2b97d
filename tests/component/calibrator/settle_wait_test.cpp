#include <limits>

#include "tests/component/error_number_of.h"
#include "tests/support/calibration_fixture.h"
#include "tests/support/expected_calls.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::Calls;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

const Calls kSlice = {"Host.Sleep(400)", "Host.ProcessPendingMessages",
                      "AcqController.IsAbortRequested"};

class TheSettleWait : public fakes::CalibrationFixture {
 protected:
  void SetUp() override { host.trace->on = false; }
  Instrument parts = Collaborators();
};

TEST_F(TheSettleWait, TakesOneSliceOf400MsForEachWholeSecondOfTheSetting) {
  struct Row {
    double setting_sec;
    int slices;
  };
  for (const Row& row : {Row{0.0, 0}, Row{0.5, 0}, Row{0.51, 1}, Row{1.0, 1}, Row{1.5, 2},
                         Row{2.5, 2}, Row{3.0, 3}, Row{3.5, 4}, Row{-1.0, 0}, Row{-7.5, 0}}) {
    journal.Clear();
    WaitForSettlingAndCheckAbort(parts, host, row.setting_sec);
    EXPECT_THAT(journal.entries(), ElementsAreArray(fakes::Repeated(row.slices, kSlice)))
        << row.setting_sec << " s";
  }
}

TEST_F(TheSettleWait, ReallyLasts400MsForEachSecond) {
  WaitForSettlingAndCheckAbort(parts, host, 2.5);
  EXPECT_EQ(host.slept_ms, 800);
}

TEST_F(TheSettleWait, RefusesASettingThatIsNoWholeNumberOf32Bits) {
  for (const double setting_sec : {3e9, -3e9, std::numeric_limits<double>::quiet_NaN(),
                                   std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(ErrorNumberOf([&] { WaitForSettlingAndCheckAbort(parts, host, setting_sec); }), 6)
        << setting_sec;
  }
  EXPECT_THAT(journal.entries(), IsEmpty());
}

TEST_F(TheSettleWait, EndsAtTheSliceInWhichTheUserAsksForAnAbort) {
  int messages = 0;
  host.on_messages = [&] {
    if (++messages == 2) instrument.abort_requested = -1;
  };
  try {
    WaitForSettlingAndCheckAbort(parts, host, 5.0);
    FAIL() << "the abort was not seen";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 1);
    EXPECT_EQ(error.description(), "User aborted");
    EXPECT_EQ(error.source(), "");
  }
  EXPECT_THAT(journal.entries(), ElementsAreArray(fakes::Repeated(2, kSlice)));
}

TEST_F(TheSettleWait, TakesEveryValueButZeroForAnAbort) {
  for (const std::int16_t answer : {std::int16_t{1}, std::int16_t{-1}, std::int16_t{256}}) {
    instrument.abort_requested = answer;
    EXPECT_EQ(ErrorNumberOf([&] { WaitForSettlingAndCheckAbort(parts, host, 1.0); }), 1) << answer;
  }
}

TEST_F(TheSettleWait, DoesNotAskForAnAbortWhenThereIsNothingToWaitFor) {
  instrument.abort_requested = -1;
  EXPECT_NO_THROW(WaitForSettlingAndCheckAbort(parts, host, 0.0));
  EXPECT_THAT(journal.entries(), IsEmpty());
}

TEST_F(TheSettleWait, RaisesEveryFailureWithoutATraceLine) {
  std::int32_t raised = 0;
  fakes::FailEachCall(
      journal, [] {},
      [&] { raised = ErrorNumberOf([&] { WaitForSettlingAndCheckAbort(parts, host, 2.0); }); },
      [&](const std::string& failed) {
        EXPECT_EQ(raised, fakes::kInjectedNumber);
        EXPECT_EQ(journal.entries().back(), failed);
      });
}

}  // namespace
}  // namespace tof
