#include <fcntl.h>
#include <io.h>
#include <windows.h>
// After windows.h.
#include <shellapi.h>

#include <cstdio>
#include <memory>
#include <string_view>

#include "hosts/cli/console.h"

namespace tof::cli {
namespace {

std::string Utf8Of(std::wstring_view wide) {
  const int length = static_cast<int>(wide.size());
  const int bytes =
      WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
  std::string text(static_cast<std::size_t>(bytes), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, text.data(), bytes, nullptr, nullptr);
  return text;
}

class ConsoleInUtf8 {
 public:
  ConsoleInUtf8() : code_page_before_(GetConsoleOutputCP()) {
    if (code_page_before_ != 0) SetConsoleOutputCP(CP_UTF8);
  }
  ~ConsoleInUtf8() {
    if (code_page_before_ != 0) SetConsoleOutputCP(code_page_before_);
  }
  ConsoleInUtf8(const ConsoleInUtf8&) = delete;
  ConsoleInUtf8& operator=(const ConsoleInUtf8&) = delete;

 private:
  UINT code_page_before_;  // 0: there is no console
};

struct LocalFreer {
  void operator()(void* memory) const { LocalFree(memory); }
};

}  // namespace

// The arguments of main() lack the characters that the system's code page lacks.
std::vector<std::string> ArgumentsInUtf8(int argc, const char* const* argv) {
  int count = 0;
  const std::unique_ptr<LPWSTR, LocalFreer> wide(CommandLineToArgvW(GetCommandLineW(), &count));
  if (!wide) return {argv, argv + argc};
  std::vector<std::string> arguments;
  for (int i = 0; i < count; ++i) arguments.push_back(Utf8Of(wide.get()[i]));
  return arguments;
}

void PrepareStandardStreams() {
  static const ConsoleInUtf8 until_the_end;
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
}

// A console from before Windows 10 shows escape sequences as they are.
bool StandardErrorIsTerminal() {
  const HANDLE handle = GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode = 0;
  return GetConsoleMode(handle, &mode) != FALSE &&
         SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != FALSE;
}

}  // namespace tof::cli
