#include "hosts/com/server/registration.h"

#include <string>

#include "hosts/com/automation/error_info.h"
#include "hosts/com/automation/text.h"
#include "hosts/com/server/module.h"

namespace tof::com {
namespace {

std::wstring GuidText(REFGUID guid) {
  return Wide(TextOf(guid));
}

void SetText(const std::wstring& key, const wchar_t* name, const std::wstring& text) {
  const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
  const LSTATUS status =
      RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), name, REG_SZ, text.c_str(), bytes);
  if (status != ERROR_SUCCESS) throw ErrorOf(HRESULT_FROM_WIN32(static_cast<DWORD>(status)));
}

std::wstring DefaultText(const std::wstring& key) {
  wchar_t text[64] = {};
  DWORD bytes = sizeof(text);
  const LSTATUS status =
      RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, text, &bytes);
  return status == ERROR_SUCCESS ? std::wstring(text) : std::wstring();
}

HRESULT DeleteTree(const std::wstring& key) {
  const LSTATUS status = RegDeleteTreeW(HKEY_CLASSES_ROOT, key.c_str());
  if (status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND) return S_OK;
  return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

std::wstring ProgId(const RegisteredClass& described) {
  return Wide(described.prog_id);
}
std::wstring VersionProgId(const RegisteredClass& described) {
  return ProgId(described) + L".1";
}

void WriteClass(const RegisteredClass& described) {
  const std::wstring class_id = GuidText(described.class_id);
  const std::wstring description = Wide(described.description);
  const std::wstring key = L"CLSID\\" + class_id;
  SetText(key, nullptr, description);
  SetText(key + L"\\InprocServer32", nullptr, ModulePath());
  SetText(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  SetText(key + L"\\ProgID", nullptr, VersionProgId(described));
  SetText(key + L"\\VersionIndependentProgID", nullptr, ProgId(described));
  SetText(key + L"\\TypeLib", nullptr, GuidText(described.type_library_id));
  SetText(key + L"\\Programmable", nullptr, L"");
  for (const std::wstring& prog_id : {ProgId(described), VersionProgId(described)}) {
    SetText(prog_id, nullptr, description);
    SetText(prog_id + L"\\CLSID", nullptr, class_id);
  }
  SetText(ProgId(described) + L"\\CurVer", nullptr, VersionProgId(described));
}

HRESULT RemoveClass(const RegisteredClass& described) {
  const std::wstring class_id = GuidText(described.class_id);
  HRESULT result = DeleteTree(L"CLSID\\" + class_id);
  for (const std::wstring& prog_id : {ProgId(described), VersionProgId(described)}) {
    const std::wstring owner = DefaultText(prog_id + L"\\CLSID");
    if (!owner.empty() && owner != class_id) continue;
    const HRESULT deleted = DeleteTree(prog_id);
    if (FAILED(deleted)) result = deleted;
  }
  return result;
}

void RegisterTypeLibraries() {
  for (int number = 1;; ++number) {
    const ComPtr<ITypeLib> library = EmbeddedTypeLibrary(number);
    if (!library) return;
    std::wstring name = EmbeddedTypeLibraryName(number);
    Check(RegisterTypeLib(library.get(), name.data(), nullptr));
  }
}

// Nothing to do for one that is not registered.
HRESULT Unregister(const TLIBATTR& library) {
  Bstr path;
  if (FAILED(QueryPathOfRegTypeLib(library.guid, library.wMajorVerNum, library.wMinorVerNum,
                                   library.lcid, path.Out()))) {
    return S_OK;
  }
  return UnRegisterTypeLib(library.guid, library.wMajorVerNum, library.wMinorVerNum, library.lcid,
                           library.syskind);
}

HRESULT UnregisterTypeLibraries() {
  HRESULT result = S_OK;
  for (int number = 1;; ++number) {
    const ComPtr<ITypeLib> library = EmbeddedTypeLibrary(number);
    if (!library) return result;
    TLIBATTR* attributes = nullptr;
    if (FAILED(library->GetLibAttr(&attributes))) continue;
    const HRESULT removed = Unregister(*attributes);
    library->ReleaseTLibAttr(attributes);
    if (FAILED(removed)) result = removed;
  }
}

}  // namespace

HRESULT RegisterModule(const std::vector<RegisteredClass>& classes) {
  const HRESULT result = AtBoundary(GUID_NULL, "registration", [&] {
    for (const RegisteredClass& described : classes) WriteClass(described);
    RegisterTypeLibraries();
  });
  if (FAILED(result)) UnregisterModule(classes);
  return result;
}

HRESULT UnregisterModule(const std::vector<RegisteredClass>& classes) {
  HRESULT result = S_OK;
  const HRESULT libraries = AtBoundary(GUID_NULL, "registration", [&] {
    for (const RegisteredClass& described : classes) {
      const HRESULT removed = RemoveClass(described);
      if (FAILED(removed)) result = removed;
    }
    const HRESULT removed = UnregisterTypeLibraries();
    if (FAILED(removed)) result = removed;
  });
  return FAILED(libraries) ? libraries : result;
}

}  // namespace tof::com
