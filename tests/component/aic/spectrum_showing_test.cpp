#include "component/aic/spectrum_showing.h"

#include "tests/component/error_number_of.h"
#include "tests/support/aic_fixture.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::InOrder;
using fakes::Repeated;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

const Calls kThreeSeconds = Repeated(6, {"Host.Sleep(500)", "Host.ProcessPendingMessages"});

class ShowingTheSpectrum : public fakes::AicFixture {
 protected:
  ShowingTheSpectrum() { instrument.display_live = false; }
  void Show() { ShowSpectrum(parts, host, Rf(), log); }
  void Count(std::int32_t& counter) { ShowSpectrumPeriodically(parts, host, Rf(), log, counter); }
};

TEST_F(ShowingTheSpectrum, RefreshesThenShowsForThreeSecondsAndFreezesAgain) {
  instrument.setpoints[84] = 81.25;
  Show();
  EXPECT_THAT(
      CallsMade(),
      ElementsAreArray(InOrder(
          {fakes::SetpointAccess("GetCurrentValue(84)"), fakes::RfWritten("81.25"), kThreeSeconds,
           Calls{"DataDictionary.GetConfigObject"}, Calls{"SpectrumDisplay.SetDisplayUpdate(True)"},
           Logged(), kThreeSeconds, Calls{"DataDictionary.GetConfigObject"},
           Calls{"SpectrumDisplay.SetDisplayUpdate(False)"}, Logged()})));
  EXPECT_EQ(Log(), "Unfreeze\r\nFreeze\r\n");
  EXPECT_EQ(host.slept_ms, 6000);
  EXPECT_FALSE(instrument.display_live);
  EXPECT_EQ(RfValue(), 81.25);
}

TEST_F(ShowingTheSpectrum, AnnouncesItself) {
  Show();
  EXPECT_EQ(host.trace->lines.front(), "Entry ShowSpectrum 9");
  EXPECT_EQ(host.trace->lines.back(), "Exit ShowSpectrum 9");
}

TEST_F(ShowingTheSpectrum, EndsAtADisplayThatIsNotThere) {
  instrument.has_display = false;
  Show();
  EXPECT_EQ(LastTrace(),
            "error[91] in ShowSpectrum(): Object variable or With block variable not set");
  EXPECT_EQ(host.slept_ms, 3000);
  EXPECT_EQ(Log(), "");
}

TEST_F(ShowingTheSpectrum, TracesAndSwallowsEveryFailure) {
  host.trace->on = false;
  fakes::FailEachCall(
      journal, [] {}, [&] { EXPECT_NO_THROW(Show()); },
      [&](const std::string& failed) {
        if (failed.rfind("Trace.", 0) == 0) return;
        EXPECT_EQ(LastTrace(), "error[4711] in ShowSpectrum(): Injected fault");
      });
}

TEST_F(ShowingTheSpectrum, HappensAtEveryFifthCount) {
  instrument.flags["ObfuscateCalibAlg"] = "2";
  std::int32_t counter = 0;
  for (int i = 1; i <= 15; ++i) {
    Count(counter);
    EXPECT_EQ(counter, i);
    EXPECT_EQ(NumberOf("SpectrumDisplay.SetDisplayUpdate(True)"), static_cast<std::size_t>(i / 5));
  }
}

TEST_F(ShowingTheSpectrum, IsNotEvenCountedUnlessTheFlagIsExactly2) {
  std::int32_t counter = 4;
  for (const char* other : {"", "1", "Yes", "2 ", "2.0", "02"}) {
    instrument.flags["ObfuscateCalibAlg"] = other;
    journal.Clear();
    Count(counter);
    EXPECT_EQ(counter, 4) << other;
    EXPECT_THAT(CallsMade(), ElementsAreArray({"TuneFlags.GetFlag(ObfuscateCalibAlg,-1)"}));
  }
  EXPECT_THAT(host.trace->lines, IsEmpty());
}

TEST_F(ShowingTheSpectrum, RaisesAFailingFlagButNotAFailingDisplay) {
  instrument.flags["ObfuscateCalibAlg"] = "2";
  std::int32_t counter = 4;
  journal.fail_operation = "TuneFlags.GetFlag(ObfuscateCalibAlg";
  EXPECT_EQ(ErrorNumberOf([&] { Count(counter); }), fakes::kInjectedNumber);
  EXPECT_EQ(counter, 4);
  journal.fail_operation = "SpectrumDisplay.";
  EXPECT_NO_THROW(Count(counter));
  EXPECT_EQ(counter, 5);
}

}  // namespace
}  // namespace tof
