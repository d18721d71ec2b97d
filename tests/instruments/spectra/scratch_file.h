// A file that lives as long as a test.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace tof::spectra {

class ScratchFile {
 public:
  // `suffix` is the end of the file's name, for readers that look at it.
  explicit ScratchFile(std::string_view content, const std::string& suffix = ".txt")
      : path_(
            std::filesystem::path(testing::TempDir()) /
            (std::string(testing::UnitTest::GetInstance()->current_test_info()->test_suite_name()) +
             "_" + testing::UnitTest::GetInstance()->current_test_info()->name() + suffix)) {
    std::ofstream(path_, std::ios::binary) << content;
  }
  ~ScratchFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace tof::spectra
