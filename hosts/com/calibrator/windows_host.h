// The host process as Windows offers it.
#pragma once

#include "component/calibrator/host_services.h"

namespace tof::com {

class WindowsHost : public HostServices {
 public:
  void Sleep(std::int32_t milliseconds) override;
  // Every message that waits for this thread is dispatched. A request to quit stays for the host's
  // own loop.
  void ProcessPendingMessages() override;
  DateTime Now() override;
  // As automation writes a date for the user.
  std::string DateTimeText(const DateTime& moment) override;
  std::uint32_t RandomSeed() override;
  void ShowMessageBox(const std::string& text) override;
  std::shared_ptr<FileSystem> CreateFileSystem() override;
  std::shared_ptr<LateBoundObject> CreateObject(const std::string& prog_id) override;

 private:
  std::uint32_t seeds_given_ = 0;
};

}  // namespace tof::com
