#include "hosts/com/standin/standin_host.h"

#include <iostream>
#include <string>
#include <utility>

#include "hosts/com/automation/text_stream.h"
#include "hosts/native/native_host.h"
#include "hosts/native/real_time_clock.h"
#include "hosts/native/virtual_clock.h"
#include "hosts/native/virtual_time_host.h"

namespace tof::com {
namespace {

// The instrument asks its host for no random numbers.
constexpr std::uint32_t kHostSeed = 1;

class NotedFileSystem final : public ScriptingFileSystem {
 public:
  explicit NotedFileSystem(std::shared_ptr<native::FileJournal> journal)
      : journal_(std::move(journal)) {}

  std::shared_ptr<TextStream> OpenForAppending(const std::string& path) override {
    return Noted(path, ScriptingFileSystem::OpenForAppending(path));
  }
  std::shared_ptr<TextStream> CreateTextFile(const std::string& path) override {
    return Noted(path, ScriptingFileSystem::CreateTextFile(path));
  }

 private:
  std::shared_ptr<TextStream> Noted(const std::string& path, std::shared_ptr<TextStream> stream) {
    journal_->NoteOpened(path);
    return stream;
  }

  std::shared_ptr<native::FileJournal> journal_;
};

template <class Host>
class WithScriptingFiles final : public Host {
 public:
  template <class... Arguments>
  explicit WithScriptingFiles(std::shared_ptr<native::FileJournal> journal,
                              Arguments&&... arguments)
      : Host(std::forward<Arguments>(arguments)...), journal_(std::move(journal)) {}

  std::shared_ptr<FileSystem> CreateFileSystem() override {
    return std::make_shared<NotedFileSystem>(journal_);
  }

 private:
  std::shared_ptr<native::FileJournal> journal_;
};

}  // namespace

StandInHost MakeStandInHost(bool real_time) {
  StandInHost host;
  host.files = std::make_shared<native::FileJournal>();
  if (real_time) {
    host.clock = std::make_shared<native::RealTimeClock>();
    host.services = std::make_unique<WithScriptingFiles<native::NativeHost>>(host.files, std::clog);
  } else {
    host.clock = std::make_shared<native::VirtualClock>();
    host.services = std::make_unique<WithScriptingFiles<native::VirtualTimeHost>>(
        host.files, std::clog, host.clock, kHostSeed);
  }
  return host;
}

}  // namespace tof::com
