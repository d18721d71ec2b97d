#include "hosts/native/native_file_system.h"

#include <algorithm>
#include <system_error>

#include "hosts/native/text_file.h"
#include "instruments/spectra/utf8_path.h"

namespace tof::native {

std::filesystem::path NativePath(const std::string& path) {
  std::string translated = path;
  std::replace(translated.begin(), translated.end(), '\\', '/');
  return spectra::PathOfUtf8(translated);
}

bool NativeFileSystem::FileExists(const std::string& path) {
  std::error_code unreadable_is_absent;
  const auto status = std::filesystem::status(NativePath(path), unreadable_is_absent);
  return std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

std::shared_ptr<TextStream> NativeFileSystem::OpenForAppending(const std::string& path) {
  return std::make_shared<TextFile>(NativePath(path), OpenMode::kAppend, journal_);
}

std::shared_ptr<TextStream> NativeFileSystem::CreateTextFile(const std::string& path) {
  return std::make_shared<TextFile>(NativePath(path), OpenMode::kReplace, journal_);
}

}  // namespace tof::native
