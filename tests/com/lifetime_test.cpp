#include <iostream>
#include <utility>

#include "tests/com/com_world.h"

// clang-format off: builds upon the headers above
#include <psapi.h>
// clang-format on

namespace tof::com {
namespace {

using ::testing::HasSubstr;

// A timer of the host's, whose message asks for an abort.
struct AbortTimer {
  static void CALLBACK RequestAbort(HWND, UINT, UINT_PTR id, DWORD) {
    KillTimer(nullptr, id);
    *requested = -1;
  }
  static inline std::int16_t* requested = nullptr;
};

class Lifetime : public ComWorld {
 protected:
  Lifetime() { RegisterInstrument(); }
};

TEST_F(Lifetime, AnObjectThatItsSinkReleasesFinishesItsCall) {
  auto calibrator = Created();
  auto sink = Connect(*calibrator.get());
  // Only the call itself still holds the object when the event comes.
  _TofCalibrator* raw = calibrator.get();
  sink->on_event = [&] {
    Disconnect(*raw);
    calibrator = {};
  };
  instrument.abort_requested = -1;
  ComPtr<IMassCalCoefficients> coefficients;
  EXPECT_EQ(Calibrate(*raw, coefficients), S_OK);
  EXPECT_EQ(sink->events.size(), 1U);
}

TEST_F(Lifetime, ASecondObjectWorksBesideTheFirst) {
  const auto first = Created();
  const auto second = Created();
  ComPtr<IMassCalCoefficients> coefficients;
  EXPECT_EQ(Calibrate(*first.get(), coefficients), S_OK);
  EXPECT_TRUE(coefficients);
  EXPECT_EQ(Calibrate(*second.get(), coefficients), S_OK);
  EXPECT_TRUE(coefficients);
}

TEST_F(Lifetime, ASecondObjectWorksWhileTheFirstRaisesItsEvent) {
  const auto first = Created();
  const auto sink = Connect(*first.get());
  bool calibrated = false;
  sink->on_event = [&] {
    instrument.abort_requested = 0;
    const auto second = Created();
    ComPtr<IMassCalCoefficients> coefficients;
    EXPECT_EQ(Calibrate(*second.get(), coefficients), S_OK);
    calibrated = static_cast<bool>(coefficients);
  };
  instrument.abort_requested = -1;
  ComPtr<IMassCalCoefficients> coefficients;
  EXPECT_EQ(Calibrate(*first.get(), coefficients), S_OK);
  EXPECT_TRUE(calibrated);
  Disconnect(*first.get());
}

TEST_F(Lifetime, ACallDuringACallIsRefusedAndHarmsNothing) {
  const auto calibrator = Created();
  ComPtr<IMassCalCoefficients> coefficients;
  EXPECT_EQ(Calibrate(*calibrator.get(), coefficients), S_OK);
  const auto undisturbed = std::exchange(instrument.spectra_taken, 0);
  HRESULT inner = S_OK;
  AutomationError refusal(0, "");
  instrument.on_spectrum = [&] {
    ComPtr<IMassCalCoefficients> refused;
    OwnedVariant outer_times = std::move(times);
    inner = Calibrate(*calibrator.get(), refused);
    refusal = ErrorLeftBy(inner);
    times = std::move(outer_times);
  };
  EXPECT_EQ(Calibrate(*calibrator.get(), coefficients), S_OK);
  EXPECT_TRUE(coefficients);
  EXPECT_EQ(instrument.spectra_taken, undisturbed);
  EXPECT_EQ(inner, ResultOf(17));
  EXPECT_THAT(refusal.description(), HasSubstr("calibrateTOFMassAxis was called while"));
  instrument.on_spectrum = [] {};
  EXPECT_EQ(calibrator->TestNewStuff(), S_OK);
}

TEST_F(Lifetime, MessagesThatWaitAreProcessedDuringSettling) {
  // One slice of the settle wait, which really waits here.
  instrument.settings["Calibration/AICSettlingTime_sec"] = 1.0;
  instrument.avoid_aic = false;
  instrument.flags[instrument.flag_key] = "No";
  const auto calibrator = Created();
  const auto sink = Connect(*calibrator.get());
  AbortTimer::requested = &instrument.abort_requested;
  instrument.settings["Calibration/AIC_RF_LowValue"] = 20.0;
  instrument.settings["Calibration/AIC_RF_HighValue"] = 60.0;
  instrument.settings["Calibration/AIC_RF_Step"] = 20.0;
  SetTimer(nullptr, 0, 1, &AbortTimer::RequestAbort);
  ComPtr<IMassCalCoefficients> coefficients;
  EXPECT_EQ(Calibrate(*calibrator.get(), coefficients), S_OK);
  ASSERT_EQ(sink->events.size(), 1U);
  EXPECT_EQ(sink->events[0].second, "User aborted");
  Disconnect(*calibrator.get());
}

TEST_F(Lifetime, AThousandRoundsKeepHandlesAndMemory) {
  const auto round = [&] {
    const auto calibrator = Created();
    ComPtr<IMassCalCoefficients> coefficients;
    EXPECT_EQ(Calibrate(*calibrator.get(), coefficients), S_OK);
    EXPECT_TRUE(coefficients);
    journal.Clear();
  };
  const auto handles = [] {
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
  };
  const auto bytes = [] {
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return counters.PagefileUsage;
  };
  // The fake instrument keeps the log files of the runs; those do not count.
  journal.keep_entries = false;
  for (int i = 0; i < 100; ++i) round();
  host.files.clear();
  const auto handles_before = handles();
  const auto bytes_before = bytes();
  for (int i = 0; i < 900; ++i) {
    round();
    host.files.clear();
  }
  EXPECT_LE(handles(), handles_before + 2);
  std::cout << "growth over 900 rounds: " << static_cast<double>(bytes() - bytes_before) / 1024.0
            << " KiB\n";
  // A kilobyte a round would be 900.
  EXPECT_LT(static_cast<double>(bytes()) - static_cast<double>(bytes_before), 512.0 * 1024.0);
}

}  // namespace
}  // namespace tof::com
