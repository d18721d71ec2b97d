// What a host without windows offers, apart from time and chance.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <string>

#include "component/calibrator/host_services.h"
#include "hosts/native/file_journal.h"

namespace tof::native {

class PortableHost : public HostServices {
 public:
  using ObjectCreator = std::function<std::shared_ptr<LateBoundObject>()>;

  // Message boxes become lines on `messages`, which outlives the host.
  explicit PortableHost(std::ostream& messages);

  // From now on CreateObject(prog_id) answers with what `creator` makes.
  void RegisterObject(const std::string& prog_id, ObjectCreator creator);

  // The files written through CreateFileSystem().
  const FileJournal& Files() const { return *files_; }

  // How often Sleep was asked for exactly that time.
  std::int64_t SleepsOf(std::int32_t milliseconds) const;

  void Sleep(std::int32_t milliseconds) final;  // not at all for 0 or less
  void ProcessPendingMessages() override;       // there are none
  std::string DateTimeText(const DateTime& moment) override;
  void ShowMessageBox(const std::string& text) override;  // nobody waits for an answer
  std::shared_ptr<FileSystem> CreateFileSystem() override;
  std::shared_ptr<LateBoundObject> CreateObject(const std::string& prog_id) override;

 private:
  virtual void Wait(std::int32_t milliseconds) = 0;  // 1 or more

  std::ostream& messages_;
  std::map<std::int32_t, std::int64_t> sleeps_;
  std::shared_ptr<FileJournal> files_;
  std::map<std::string, ObjectCreator> creators_;
};

}  // namespace tof::native
