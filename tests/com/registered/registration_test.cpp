// What vorninstrument.dll writes into the registry, and takes out again.

#include <string>
#include <vector>

#include "tests/com/registered/registered_world.h"

namespace tof::com {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;

// A registry branch that this process takes for the classes, so that the tests beside it keep
// theirs.
class OwnClasses {
 public:
  OwnClasses() : path_(L"Software\\tof_registration_" + std::to_wstring(GetCurrentProcessId())) {
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                              nullptr, &root_, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(RegOverridePredefKey(HKEY_CLASSES_ROOT, root_), ERROR_SUCCESS);
  }
  ~OwnClasses() {
    RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
    RegCloseKey(root_);
    RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
  }
  OwnClasses(const OwnClasses&) = delete;
  OwnClasses& operator=(const OwnClasses&) = delete;

  // Every key but those that any server may have made.
  std::vector<std::string> Keys() const {
    std::vector<std::string> keys;
    Collect(root_, "", keys);
    return keys;
  }
  std::string Value(const std::wstring& key) const {
    wchar_t text[512] = {};
    DWORD bytes = sizeof(text);
    RegGetValueW(root_, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, text, &bytes);
    return Utf8(text);
  }

 private:
  static void Collect(HKEY parent, const std::string& path, std::vector<std::string>& keys) {
    for (DWORD i = 0;; ++i) {
      wchar_t name[512];
      DWORD length = 512;
      if (RegEnumKeyExW(parent, i, name, &length, nullptr, nullptr, nullptr, nullptr) !=
          ERROR_SUCCESS) {
        return;
      }
      const std::string below = path + Utf8(name);
      if (below != "CLSID" && below != "Typelib" && below != "Interface") keys.push_back(below);
      HKEY key = nullptr;
      if (RegOpenKeyExW(parent, name, 0, KEY_READ, &key) != ERROR_SUCCESS) continue;
      Collect(key, below + "\\", keys);
      RegCloseKey(key);
    }
  }

  std::wstring path_;
  HKEY root_ = nullptr;
};

HRESULT CallExport(HMODULE module, const char* name) {
  return reinterpret_cast<HRESULT(WINAPI*)()>(
      reinterpret_cast<void*>(GetProcAddress(module, name)))();
}

TEST(InstrumentRegistration, NamesEveryClassAndTypeLibraryAndLeavesNothingBehind) {
  const HMODULE module = LoadLibraryW(L"vorninstrument.dll");
  ASSERT_NE(module, nullptr);
  {
    const OwnClasses classes;
    ASSERT_THAT(classes.Keys(), IsEmpty());
    ASSERT_EQ(CallExport(module, "DllRegisterServer"), S_OK);
    const std::vector<std::string> keys = classes.Keys();
    for (const char* prog_id :
         {"vorninstrument.DataDictionary", "vorninstrument.AcqController",
          "vorninstrument.SpecParser", "vorninstrument.CalibLogFiles", "vorninstrument.TuneFlags",
          "vorninstrument.CalibSettings", "vorninstrument.InstrumentPaths",
          "vorninstrument.InstrumentControl", "vornmasstime.MassCalCoefficients",
          "vornmasstime.PeakList"}) {
      EXPECT_THAT(keys, Contains(prog_id));
      EXPECT_THAT(keys, Contains(prog_id + std::string(".1")));
      const std::wstring class_id = Wide(classes.Value(Wide(prog_id) + L"\\CLSID"));
      EXPECT_THAT(classes.Value(L"CLSID\\" + class_id + L"\\InprocServer32"),
                  ::testing::EndsWith("vorninstrument.dll"));
    }
    for (const wchar_t* library :
         {L"{ab32bf91-a9fd-498a-b5fe-9805f9033fc8}", L"{e7ac4bb6-0dec-4e7f-bf28-0060d8f4b250}",
          L"{3780d9cf-8bb5-4d53-9b3c-851724b2ef30}"}) {
      EXPECT_NE(classes.Value(std::wstring(L"TypeLib\\") + library + L"\\1.0"), "");
    }
    EXPECT_EQ(CallExport(module, "DllUnregisterServer"), S_OK);
    EXPECT_THAT(classes.Keys(), IsEmpty());
    EXPECT_EQ(CallExport(module, "DllUnregisterServer"), S_OK) << "with nothing there";
  }
  FreeLibrary(module);
}

}  // namespace
}  // namespace tof::com
