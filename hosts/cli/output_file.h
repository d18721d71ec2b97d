// Result files that are either whole or not there, and replace nothing that is needed.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace tof::cli {

// Raises an InputError when `output` is one of `inputs`, whose content it would replace.
void RequireNotAnInput(const std::filesystem::path& output,
                       const std::vector<std::filesystem::path>& inputs);

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

  // Writes a part of the content. Raises an InputError, e.g. when the disk is full.
  void Write(std::string_view part);
  // Gives the file its name. Raises an InputError.
  void Commit();
  // Both at once.
  void Commit(const std::string& content);

 private:
  [[noreturn]] void Fail(const std::string& reason) const;

  std::filesystem::path path_;
  std::filesystem::path part_;
  std::ofstream file_;
  bool committed_ = false;
};

}  // namespace tof::cli
