#include "tests/com/com_world.h"

namespace tof::com {
namespace {

constexpr const wchar_t* kProgId = L"vorntofcaliblib.TofCalibrator";

// Every key and value of the classes that names the text, by a search through all of them.
void Search(HKEY parent, const std::wstring& path, const std::vector<std::wstring>& texts,
            std::vector<std::string>& found) {
  const auto names = [&](const std::wstring& where) {
    for (const std::wstring& text : texts) {
      if (where.find(text) != std::wstring::npos) return true;
    }
    return false;
  };
  wchar_t name[512];
  wchar_t value[1024];
  for (DWORD i = 0;; ++i) {
    DWORD name_length = 512;
    DWORD bytes = sizeof(value) - sizeof(wchar_t);
    DWORD type = 0;
    const LSTATUS status = RegEnumValueW(parent, i, name, &name_length, nullptr, &type,
                                         reinterpret_cast<BYTE*>(value), &bytes);
    if (status == ERROR_MORE_DATA) continue;
    if (status != ERROR_SUCCESS) break;
    if (type == REG_SZ && names({value, bytes / sizeof(wchar_t)})) found.push_back(Utf8(path));
  }
  for (DWORD i = 0;; ++i) {
    DWORD length = 512;
    if (RegEnumKeyExW(parent, i, name, &length, nullptr, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS) {
      break;
    }
    const std::wstring below = path + L"\\" + name;
    if (names(name)) found.push_back(Utf8(below));
    HKEY key = nullptr;
    if (RegOpenKeyExW(parent, name, 0, KEY_READ, &key) != ERROR_SUCCESS) continue;
    Search(key, below, texts, found);
    RegCloseKey(key);
  }
}

std::vector<std::string> Traces() {
  std::vector<std::string> found;
  Search(HKEY_CLASSES_ROOT, L"",
         {L"vorntofcaliblib", Wide(TextOf(__uuidof(::TofCalibrator))),
          Wide(TextOf(__uuidof(_TofCalibrator)))},
         found);
  return found;
}

class Registration : public ComWorld {};

// One test for all, as they share the registry.
TEST_F(Registration, MakesTheClassCreatableAndLeavesNothingBehind) {
  dll.UnregisterServer();
  ASSERT_THAT(Traces(), ::testing::IsEmpty()) << "left by an earlier run";
  ASSERT_EQ(dll.RegisterServer(), S_OK);
  EXPECT_GE(Traces().size(), 8U);

  CLSID class_id{};
  EXPECT_EQ(CLSIDFromProgID(kProgId, &class_id), S_OK);
  EXPECT_EQ(class_id, __uuidof(::TofCalibrator));
  RegisterInstrument();
  void* object = nullptr;
  ASSERT_EQ(
      CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(_TofCalibrator), &object),
      S_OK);
  {
    const auto calibrator = ComPtr<_TofCalibrator>::Adopt(static_cast<_TofCalibrator*>(object));
    EXPECT_EQ(dll.CanUnloadNow(), S_FALSE);
    ComPtr<IMassCalCoefficients> coefficients;
    EXPECT_EQ(Calibrate(*calibrator.get(), coefficients), S_OK);
    EXPECT_TRUE(coefficients);
  }

  EXPECT_EQ(dll.UnregisterServer(), S_OK);
  EXPECT_THAT(Traces(), ::testing::IsEmpty());
  EXPECT_EQ(dll.UnregisterServer(), S_OK) << "with nothing there";
}

}  // namespace
}  // namespace tof::com
