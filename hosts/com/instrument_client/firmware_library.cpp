#include "hosts/com/instrument_client/firmware_library.h"

#include <string>

#include "component/automation/error.h"
#include "hosts/com/idl/vorntof_direct_fw_comm.h"
#include "hosts/com/server/module.h"

namespace tof::com {
namespace {

constexpr const wchar_t* kName = L"vorntofDirectFWComm.dll";
constexpr std::int32_t kNoEntryPoint = 453;

HMODULE Load() {
  std::wstring beside = ModulePath();
  beside.erase(beside.find_last_of(L'\\') + 1);
  beside += kName;
  HMODULE library = LoadLibraryExW(beside.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  return library != nullptr ? library : LoadLibraryW(kName);
}

}  // namespace

LoadedFirmwareLibrary::LoadedFirmwareLibrary() : library_(Load()) {
  if (library_ == nullptr) {
    throw AutomationError(static_cast<std::int32_t>(RunTimeError::kFileNotFound),
                          std::string(DescriptionOf(RunTimeError::kFileNotFound)) +
                              ": vorntofDirectFWComm.dll, the firmware communication library");
  }
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): what GetProcAddress is for
  search_ = reinterpret_cast<Search>(
      reinterpret_cast<void*>(GetProcAddress(library_, "BinarySearchForTargetAb")));
  static_assert(std::is_same_v<Search, decltype(&::BinarySearchForTargetAb)>);
  if (search_ == nullptr) {
    FreeLibrary(library_);
    throw AutomationError(kNoEntryPoint,
                          "Can't find DLL entry point BinarySearchForTargetAb in "
                          "vorntofDirectFWComm.dll");
  }
}

LoadedFirmwareLibrary::~LoadedFirmwareLibrary() {
  FreeLibrary(library_);
}

float LoadedFirmwareLibrary::BinarySearchForTargetAb(
    std::int32_t argument1, float target_min_abundance, float target_max_abundance,
    float speed_up_factor, float argument5, float argument6, float argument7,
    std::int32_t argument8, float window_start_ns, float window_end_ns) {
  return search_(argument1, target_min_abundance, target_max_abundance, speed_up_factor, argument5,
                 argument6, argument7, argument8, window_start_ns, window_end_ns);
}

}  // namespace tof::com
