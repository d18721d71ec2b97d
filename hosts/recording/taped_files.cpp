#include "hosts/recording/taped_files.h"

namespace tof::recording {

void TapedTextStream::WriteLine(std::string_view text) {
  object_.Ask("TextStream.WriteLine", Arguments(text), [&] { inner_->WriteLine(text); });
}

void TapedTextStream::Close() {
  object_.Ask("TextStream.Close", Arguments(), [&] { inner_->Close(); });
}

bool TapedFileSystem::FileExists(const std::string& path) {
  return object_.Ask("FileSystem.FileExists", Arguments(path),
                     [&] { return inner_->FileExists(path); });
}

std::shared_ptr<TextStream> TapedFileSystem::OpenForAppending(const std::string& path) {
  return object_.AskObject<TapedTextStream>("FileSystem.OpenForAppending", Arguments(path),
                                            [&] { return inner_->OpenForAppending(path); });
}

std::shared_ptr<TextStream> TapedFileSystem::CreateTextFile(const std::string& path) {
  return object_.AskObject<TapedTextStream>("FileSystem.CreateTextFile", Arguments(path),
                                            [&] { return inner_->CreateTextFile(path); });
}

std::shared_ptr<TextStream> TapedCalibLogFiles::OpenLogFile(const std::string& prefix,
                                                            const std::string& header,
                                                            const std::string& extension) {
  return object_.AskObject<TapedTextStream>(
      "CalibLogFiles.OpenLogFile", Arguments(prefix, header, extension),
      [&] { return inner_->OpenLogFile(prefix, header, extension); });
}

std::string TapedCalibLogFiles::JoinAsCsvLine(const std::array<Variant, 6>& values) {
  return object_.Ask("CalibLogFiles.JoinAsCsvLine", Arguments(values),
                     [&] { return inner_->JoinAsCsvLine(values); });
}

}  // namespace tof::recording
