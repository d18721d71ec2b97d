// A result file that is either whole or not there.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace tof::cli {

// Made before the work begins, so that a folder that can't be written costs no calibration. What
// was there before stays untouched until Commit().
class OutputFile {
 public:
  // Opens `path` with ".part" behind it, or a device itself. Raises an InputError when that is not
  // possible.
  explicit OutputFile(std::filesystem::path path);
  ~OutputFile();  // removes what was not committed
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // Writes `content` and gives the file its name. Raises an InputError, e.g. when the disk is full.
  void Commit(const std::string& content);

 private:
  [[noreturn]] void Fail() const;

  std::filesystem::path path_;
  std::filesystem::path part_;
  std::ofstream file_;
  bool committed_ = false;
};

}  // namespace tof::cli
