// Text files of the scripting file system, and streams like them.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "component/calibrator/host_services.h"
#include "hosts/com/automation/dispatch_object.h"

namespace tof::com {

// Anything with the methods WriteLine(text) and Close(). The file is closed with the stream.
class AutomationTextStream : public TextStream {
 public:
  explicit AutomationTextStream(DispatchObject object) : object_(std::move(object)) {}
  ~AutomationTextStream() override;
  AutomationTextStream(const AutomationTextStream&) = delete;
  AutomationTextStream& operator=(const AutomationTextStream&) = delete;

  void WriteLine(std::string_view text) override;
  void Close() override;

 private:
  DispatchObject object_;
  bool closed_ = false;
};

// "Scripting.FileSystemObject": files of single-byte characters in the system's code page.
class ScriptingFileSystem : public FileSystem {
 public:
  ScriptingFileSystem() : object_(CreateDispatchObject("Scripting.FileSystemObject")) {}

  bool FileExists(const std::string& path) override;
  std::shared_ptr<TextStream> OpenForAppending(const std::string& path) override;
  std::shared_ptr<TextStream> CreateTextFile(const std::string& path) override;

 private:
  DispatchObject object_;
};

}  // namespace tof::com
