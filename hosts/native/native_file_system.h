// Text files on the machine that the program runs on.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "component/calibrator/host_services.h"
#include "hosts/native/file_journal.h"

namespace tof::native {

// The path of this machine for one of the calibrator's (UTF-8, separators '\' or '/').
std::filesystem::path NativePath(const std::string& path);

class NativeFileSystem : public FileSystem {
 public:
  explicit NativeFileSystem(std::shared_ptr<FileJournal> journal) : journal_(std::move(journal)) {}

  bool FileExists(const std::string& path) override;  // a folder is not a file
  std::shared_ptr<TextStream> OpenForAppending(const std::string& path) override;
  std::shared_ptr<TextStream> CreateTextFile(const std::string& path) override;

 private:
  std::shared_ptr<FileJournal> journal_;
};

}  // namespace tof::native
