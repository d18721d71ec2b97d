#include "hosts/native/text_file.h"

#include <cerrno>
#include <cstring>

#include "hosts/native/file_errors.h"
#include "hosts/native/text_encoding.h"

namespace tof::native {
namespace {

std::FILE* Open(const std::filesystem::path& path, OpenMode mode) {
#ifdef _WIN32
  return _wfopen(path.c_str(), mode == OpenMode::kAppend ? L"ab" : L"wb");
#else
  return std::fopen(path.c_str(), mode == OpenMode::kAppend ? "ab" : "wb");
#endif
}

}  // namespace

TextFile::TextFile(const std::filesystem::path& path, OpenMode mode,
                   std::shared_ptr<FileJournal> journal)
    : path_(path.string()), journal_(std::move(journal)), file_(Open(path, mode)) {
  if (!file_) Fail();
  // Without a buffer a line is one write, and its failure is known at once.
  std::setvbuf(file_.get(), nullptr, _IONBF, 0);
  journal_->NoteOpened(path_);
}

void TextFile::WriteLine(std::string_view text) {
  if (!file_) Raise(RunTimeError::kObjectVariableNotSet);
  const std::string line = Latin1FromUtf8(text) + "\r\n";
  errno = 0;
  if (std::fwrite(line.data(), 1, line.size(), file_.get()) != line.size()) Fail();
}

void TextFile::Close() {
  if (!file_) return;
  // Released first: a stream is gone after fclose, whatever that says.
  if (std::fclose(file_.release()) != 0) Fail();
}

void TextFile::Fail() {
  const int error_code = errno;
  journal_->last_failure = FileFailure{path_, std::strerror(error_code)};
  throw ErrorOfErrno(error_code);
}

}  // namespace tof::native
