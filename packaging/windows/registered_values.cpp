// What registering a DLL writes into the registry, without writing it there: one line for each
// value below HKEY_CLASSES_ROOT, "key<TAB>name<TAB>text" in UTF-8; the name of a key's default
// value is empty. The installer's tables are made from it. usage: registered_values FILE.dll
#include <windows.h>

#include <cstdio>
#include <stdexcept>
#include <string>

#include "hosts/com/automation/text.h"

namespace tof::com {
namespace {

constexpr const wchar_t* kScratchKey = L"Software\\TofCalibratorRegisteredValues";

void Require(bool condition, const std::string& what) {
  if (!condition) throw std::runtime_error(what + ": error " + std::to_string(GetLastError()));
}

// While it lives, this process's HKEY_CLASSES_ROOT is an empty key.
class RedirectedClasses {
 public:
  RedirectedClasses() {
    RegDeleteTreeW(HKEY_CURRENT_USER, kScratchKey);
    Require(RegCreateKeyW(HKEY_CURRENT_USER, kScratchKey, &key_) == ERROR_SUCCESS, "registry");
    Require(RegOverridePredefKey(HKEY_CLASSES_ROOT, key_) == ERROR_SUCCESS, "registry");
  }
  ~RedirectedClasses() {
    RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
    RegCloseKey(key_);
    RegDeleteTreeW(HKEY_CURRENT_USER, kScratchKey);
  }
  RedirectedClasses(const RedirectedClasses&) = delete;
  RedirectedClasses& operator=(const RedirectedClasses&) = delete;

  HKEY key() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

void Call(HMODULE module, const char* name) {
  auto* const function =
      reinterpret_cast<HRESULT(WINAPI*)()>(reinterpret_cast<void*>(GetProcAddress(module, name)));
  Require(function != nullptr && SUCCEEDED(function()), name);
}

void PrintValues(HKEY key, const std::wstring& path) {
  for (DWORD i = 0;; ++i) {
    wchar_t name[256] = {};
    wchar_t text[1024] = {};
    DWORD name_length = 256;
    DWORD bytes = sizeof(text);
    DWORD type = 0;
    const LSTATUS status = RegEnumValueW(key, i, name, &name_length, nullptr, &type,
                                         reinterpret_cast<BYTE*>(text), &bytes);
    if (status == ERROR_NO_MORE_ITEMS) break;
    Require(status == ERROR_SUCCESS && type == REG_SZ, "value of " + Utf8(path));
    std::printf("%s\t%s\t%s\n", Utf8(path).c_str(), Utf8(name).c_str(), Utf8(text).c_str());
  }
  for (DWORD i = 0;; ++i) {
    wchar_t name[256] = {};
    DWORD length = 256;
    const LSTATUS status = RegEnumKeyExW(key, i, name, &length, nullptr, nullptr, nullptr, nullptr);
    if (status == ERROR_NO_MORE_ITEMS) break;
    Require(status == ERROR_SUCCESS, "keys of " + Utf8(path));
    HKEY below = nullptr;
    Require(RegOpenKeyExW(key, name, 0, KEY_READ, &below) == ERROR_SUCCESS, "key " + Utf8(name));
    PrintValues(below, path.empty() ? name : path + L"\\" + name);
    RegCloseKey(below);
  }
}

}  // namespace
}  // namespace tof::com

int wmain(int argc, wchar_t** argv) {
  if (argc != 2) {
    std::fputs("usage: registered_values FILE.dll\n", stderr);
    return 2;
  }
  try {
    const tof::com::RedirectedClasses classes;
    const HMODULE module = LoadLibraryW(argv[1]);
    tof::com::Require(module != nullptr, "load " + tof::com::Utf8(argv[1]));
    tof::com::Call(module, "DllRegisterServer");
    tof::com::PrintValues(classes.key(), {});
    // What registering a type library enters for 32-bit programs goes past the redirection.
    tof::com::Call(module, "DllUnregisterServer");
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "registered_values: %s\n", error.what());
    return 1;
  }
}
