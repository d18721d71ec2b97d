#include "hosts/native/portable_host.h"

#include <algorithm>
#include <utility>

#include "component/automation/error.h"
#include "hosts/native/date_time.h"
#include "hosts/native/native_file_system.h"

namespace tof::native {

PortableHost::PortableHost(std::ostream& messages)
    : messages_(messages), files_(std::make_shared<FileJournal>()) {}

void PortableHost::RegisterObject(const std::string& prog_id, ObjectCreator creator) {
  creators_[prog_id] = std::move(creator);
}

std::int64_t PortableHost::SleepsOf(std::int32_t milliseconds) const {
  const auto found = sleeps_.find(milliseconds);
  return found == sleeps_.end() ? 0 : found->second;
}

void PortableHost::Sleep(std::int32_t milliseconds) {
  ++sleeps_[milliseconds];
  if (milliseconds > 0) Wait(milliseconds);
}

void PortableHost::ProcessPendingMessages() {}

std::string PortableHost::DateTimeText(const DateTime& moment) {
  return UserDateTimeText(moment);
}

void PortableHost::ShowMessageBox(const std::string& text) {
  std::string line = text;
  std::replace_if(
      line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
  messages_ << "message box: " << line << std::endl;
}

std::shared_ptr<FileSystem> PortableHost::CreateFileSystem() {
  return std::make_shared<NativeFileSystem>(files_);
}

std::shared_ptr<LateBoundObject> PortableHost::CreateObject(const std::string& prog_id) {
  const auto found = creators_.find(prog_id);
  if (found == creators_.end()) Raise(RunTimeError::kCannotCreateObject);
  return found->second();
}

}  // namespace tof::native
