#include "hosts/com/server/module.h"

#include <atomic>
#include <vector>

#include "hosts/com/automation/error_info.h"

namespace tof::com {
namespace {

// Of the module by its nature: COM asks the module, not an object.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
std::atomic<long> references{0};

}  // namespace

long ModuleReferences() {
  return references;
}

ModuleReference::ModuleReference() {
  ++references;
}
ModuleReference::~ModuleReference() {
  --references;
}

void LockModule(bool lock) {
  references += lock ? 1 : -1;
}

HMODULE ThisModule() {
  HMODULE module = nullptr;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      // Any address inside the module, which the function takes for a text.
      // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast)
      reinterpret_cast<const wchar_t*>(&ThisModule), &module);
  return module;
}

std::wstring ModulePath() {
  std::vector<wchar_t> path(MAX_PATH);
  for (;;) {
    const DWORD length =
        GetModuleFileNameW(ThisModule(), path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) return {path.data(), length};
    path.resize(2 * path.size());
  }
}

ComPtr<ITypeLib> EmbeddedTypeLibrary(int number) {
  ComPtr<ITypeLib> library;
  if (FAILED(LoadTypeLibEx(EmbeddedTypeLibraryName(number).c_str(), REGKIND_NONE, library.Out()))) {
    return {};
  }
  return library;
}

std::wstring EmbeddedTypeLibraryName(int number) {
  return ModulePath() + L"\\" + std::to_wstring(number);
}

ComPtr<ITypeInfo> EmbeddedTypeInfo(REFGUID guid) {
  for (int number = 1;; ++number) {
    const ComPtr<ITypeLib> library = EmbeddedTypeLibrary(number);
    if (!library) throw ErrorOf(TYPE_E_CANTLOADLIBRARY);
    ComPtr<ITypeInfo> info;
    if (SUCCEEDED(library->GetTypeInfoOfGuid(guid, info.Out()))) return info;
  }
}

}  // namespace tof::com
