#include "hosts/com/calibrator/windows_host.h"

#include "hosts/com/automation/dispatch_object.h"
#include "hosts/com/automation/error_info.h"
#include "hosts/com/automation/text_stream.h"

namespace tof::com {

void WindowsHost::Sleep(std::int32_t milliseconds) {
  ::Sleep(milliseconds > 0 ? static_cast<DWORD>(milliseconds) : 0);
}

void WindowsHost::ProcessPendingMessages() {
  MSG message{};
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

DateTime WindowsHost::Now() {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
}

std::string WindowsHost::DateTimeText(const DateTime& moment) {
  SYSTEMTIME time{};
  time.wYear = static_cast<WORD>(moment.year);
  time.wMonth = static_cast<WORD>(moment.month);
  time.wDay = static_cast<WORD>(moment.day);
  time.wHour = static_cast<WORD>(moment.hour);
  time.wMinute = static_cast<WORD>(moment.minute);
  time.wSecond = static_cast<WORD>(moment.second);
  DATE date = 0.0;
  if (SystemTimeToVariantTime(&time, &date) == FALSE) Raise(RunTimeError::kInvalidCall);
  Bstr text;
  Check(VarBstrFromDate(date, LOCALE_USER_DEFAULT, 0, text.Out()));
  return text.Text();
}

std::uint32_t WindowsHost::RandomSeed() {
  LARGE_INTEGER ticks{};
  QueryPerformanceCounter(&ticks);
  // Two calls within one tick still differ.
  return static_cast<std::uint32_t>(ticks.LowPart) + ++seeds_given_;
}

void WindowsHost::ShowMessageBox(const std::string& text) {
  MessageBoxW(nullptr, Wide(text).c_str(), L"vorntofcaliblib", MB_OK);
}

std::shared_ptr<FileSystem> WindowsHost::CreateFileSystem() {
  return std::make_shared<ScriptingFileSystem>();
}

std::shared_ptr<LateBoundObject> WindowsHost::CreateObject(const std::string& prog_id) {
  return std::make_shared<AutomationLateBoundObject>(CreateDispatchObject(prog_id));
}

}  // namespace tof::com
