// The message box of the likely-A search: shown, and waiting for somebody.

#include <array>
#include <thread>

#include "tests/com/com_world.h"

namespace tof::com {
namespace {

constexpr LONG kNoLikelyA = -822;
constexpr const wchar_t* kBoxClass = L"#32770";
constexpr const wchar_t* kBoxTitle = L"vorntofcaliblib";

std::string TextOfBox(HWND box) {
  std::array<wchar_t, 256> text{};
  const HWND label = FindWindowExW(box, nullptr, L"Static", nullptr);
  // The icon of a box would be a first label without a text.
  for (HWND at = label; at != nullptr; at = FindWindowExW(box, at, L"Static", nullptr)) {
    if (GetWindowTextW(at, text.data(), static_cast<int>(text.size())) > 0) break;
  }
  return Utf8(text.data());
}

// Somebody who reads the box and presses its button, in a thread of his own.
class Reader {
 public:
  Reader() : thread_([this] { Wait(); }) {}
  ~Reader() { Finish(); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  // The text of the box; empty when none came in time.
  std::string Finish() {
    if (thread_.joinable()) thread_.join();
    return text_;
  }

 private:
  void Wait() {
    constexpr ULONGLONG kMostMilliseconds = 30'000;
    const ULONGLONG end = GetTickCount64() + kMostMilliseconds;
    HWND box = nullptr;
    while (box == nullptr && GetTickCount64() < end) {
      box = FindWindowW(kBoxClass, kBoxTitle);
      SwitchToThread();
    }
    if (box == nullptr) return;
    // The box is there before its label is.
    while (text_.empty() && GetTickCount64() < end) text_ = TextOfBox(box);
    while (IsWindow(box) != FALSE && GetTickCount64() < end) {
      SendMessageW(box, WM_COMMAND, IDOK, 0);
    }
  }

  std::string text_;
  std::thread thread_;
};

class MessageBoxOfLikelyA : public ComWorld {};

TEST_F(MessageBoxOfLikelyA, IsShownAndTheCalibrationFailsWhenItIsDismissed) {
  RegisterInstrument();
  const auto calibrator = Created();
  const auto sink = Connect(*calibrator.get());
  journal.fail_operation = "AcqController.GetCurrentA";
  Reader reader;
  ComPtr<IMassCalCoefficients> coefficients;
  EXPECT_EQ(Calibrate(*calibrator.get(), coefficients), S_OK);
  EXPECT_EQ(reader.Finish(), "Error");
  EXPECT_FALSE(coefficients);
  ASSERT_EQ(sink->events.size(), 1U);
  EXPECT_EQ(sink->events[0].first, kNoLikelyA);
  Disconnect(*calibrator.get());
}

}  // namespace
}  // namespace tof::com
