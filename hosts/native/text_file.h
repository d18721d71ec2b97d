// A text file of the host's file system.
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "component/calibrator/host_services.h"
#include "hosts/native/file_journal.h"

namespace tof::native {

enum class OpenMode { kAppend, kReplace };

// UTF-8 in, ISO 8859-1 on the disk, CR LF behind each line. A line that WriteLine returned from was
// taken by the operating system: a full disk is an error of the line that did not fit. Writing
// after Close is error 91. Errors of the operating system are translated by ErrorOfErrno and noted
// in the journal.
class TextFile : public TextStream {
 public:
  TextFile(const std::filesystem::path& path, OpenMode mode, std::shared_ptr<FileJournal> journal);

  void WriteLine(std::string_view text) override;
  void Close() override;

 private:
  struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  [[noreturn]] void Fail();

  std::string path_;
  std::shared_ptr<FileJournal> journal_;
  std::unique_ptr<std::FILE, FileCloser> file_;
};

}  // namespace tof::native
