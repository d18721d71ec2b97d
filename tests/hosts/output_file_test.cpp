#include "hosts/cli/output_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "instruments/spectra/input_error.h"
#include "tests/hosts/temporary_folder.h"

namespace tof::cli {
namespace {

using spectra::InputError;
using tof::testing::BytesOf;
using tof::testing::TemporaryFolder;
using tof::testing::WriteBytes;

std::size_t FilesIn(const TemporaryFolder& folder) {
  return static_cast<std::size_t>(
      std::distance(std::filesystem::directory_iterator(folder.path()), {}));
}

TEST(OutputFile, ReplacesTheOldFileWhenItIsCommitted) {
  const TemporaryFolder folder;
  WriteBytes(folder / "a.json", "old");
  OutputFile file(folder / "a.json");
  EXPECT_EQ(BytesOf(folder / "a.json"), "old");
  file.Commit("new");
  EXPECT_EQ(BytesOf(folder / "a.json"), "new");
  EXPECT_EQ(FilesIn(folder), 1u);
}

TEST(OutputFile, LeavesNothingBehindWhenItIsNotCommitted) {
  const TemporaryFolder folder;
  WriteBytes(folder / "a.json", "old");
  { const OutputFile file(folder / "a.json"); }
  EXPECT_EQ(BytesOf(folder / "a.json"), "old");
  EXPECT_EQ(FilesIn(folder), 1u);
}

TEST(OutputFile, RefusesAMissingFolderAndAFolderAtOnce) {
  const TemporaryFolder folder;
  EXPECT_THROW(OutputFile(folder / "none/a.json"), InputError);
  try {
    const OutputFile file(folder.path());
    FAIL() << "took a folder for a file";
  } catch (const InputError& error) {
    EXPECT_EQ(error.what(),
              folder.path().string() + ": found a folder, expected a file that can be written");
  }
}

TEST(OutputFile, SaysThatTheDiskIsFull) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "this machine has no /dev/full";
  OutputFile file("/dev/full");
  try {
    file.Commit("new");
    FAIL() << "a full disk took the result";
  } catch (const InputError& error) {
    EXPECT_STREQ(error.what(),
                 "/dev/full: found No space left on device, expected a file that can be written");
  }
}

TEST(OutputFile, DoesNotReplaceADeviceByAFile) {
  { OutputFile("/dev/null").Commit("gone"); }
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
  EXPECT_FALSE(std::filesystem::exists("/dev/null.part"));
}

}  // namespace
}  // namespace tof::cli
