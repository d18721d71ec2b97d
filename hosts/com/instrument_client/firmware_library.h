// The firmware communication library; its functions stand in vorntof_direct_fw_comm.h.
#pragma once

#include "component/calibrator/collaborators.h"
#include "hosts/com/automation/windows_headers.h"

namespace tof::com {

// vorntofDirectFWComm.dll, loaded for the life of the object: from this module's own folder, else
// where Windows searches. Error 53 when it is not there, 453 when it lacks the function.
class LoadedFirmwareLibrary : public FirmwareLibrary {
 public:
  LoadedFirmwareLibrary();
  ~LoadedFirmwareLibrary() override;
  LoadedFirmwareLibrary(const LoadedFirmwareLibrary&) = delete;
  LoadedFirmwareLibrary& operator=(const LoadedFirmwareLibrary&) = delete;

  float BinarySearchForTargetAb(std::int32_t argument1, float target_min_abundance,
                                float target_max_abundance, float speed_up_factor, float argument5,
                                float argument6, float argument7, std::int32_t argument8,
                                float window_start_ns, float window_end_ns) override;

 private:
  using Search = float(WINAPI*)(int, float, float, float, float, float, float, int, float, float);

  HMODULE library_ = nullptr;
  Search search_ = nullptr;
};

}  // namespace tof::com
