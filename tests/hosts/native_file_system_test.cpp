#include "hosts/native/native_file_system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>

#include "hosts/native/file_errors.h"
#include "tests/hosts/error_number.h"
#include "tests/hosts/temporary_folder.h"

namespace tof::native {
namespace {

using ::testing::ElementsAre;
using tof::testing::BytesOf;
using tof::testing::ErrorNumberOf;
using tof::testing::TemporaryFolder;
using tof::testing::WriteBytes;

// Permissions do not stop the super-user, so for its lifetime the process is nobody.
class AsNobody {
 public:
  AsNobody() { was_root_ = geteuid() == 0 && seteuid(65534) == 0; }
  ~AsNobody() {
    if (was_root_ && seteuid(0) != 0) std::abort();
  }
  AsNobody(const AsNobody&) = delete;
  AsNobody& operator=(const AsNobody&) = delete;

 private:
  bool was_root_ = false;
};

class NativeFileSystemTest : public ::testing::Test {
 protected:
  TemporaryFolder folder_;
  std::shared_ptr<FileJournal> journal_ = std::make_shared<FileJournal>();
  NativeFileSystem files_{journal_};
};

TEST_F(NativeFileSystemTest, WritesLinesEndingInCrLf) {
  const auto stream = files_.CreateTextFile(folder_ / "a.txt");
  stream->WriteLine("first");
  stream->WriteLine("");
  stream->WriteLine("  blanks stay  ");
  stream->Close();
  EXPECT_EQ(BytesOf(folder_ / "a.txt"), "first\r\n\r\n  blanks stay  \r\n");
}

TEST_F(NativeFileSystemTest, WritesSingleByteCharacters) {
  files_.CreateTextFile(folder_ / "a.txt")->WriteLine("12 \xC2\xB5s \xE2\x82\xAC");
  EXPECT_EQ(BytesOf(folder_ / "a.txt"), "12 \xB5s ?\r\n");
}

TEST_F(NativeFileSystemTest, ShowsALineInTheFileBeforeTheStreamIsClosed) {
  const auto stream = files_.CreateTextFile(folder_ / "a.txt");
  stream->WriteLine("line");
  EXPECT_EQ(BytesOf(folder_ / "a.txt"), "line\r\n");
}

TEST_F(NativeFileSystemTest, AppendsToWhatIsThere) {
  WriteBytes(folder_ / "a.txt", "old\r\n");
  files_.OpenForAppending(folder_ / "a.txt")->WriteLine("new");
  EXPECT_EQ(BytesOf(folder_ / "a.txt"), "old\r\nnew\r\n");
}

TEST_F(NativeFileSystemTest, AppendsToANewFile) {
  files_.OpenForAppending(folder_ / "a.txt")->WriteLine("new");
  EXPECT_EQ(BytesOf(folder_ / "a.txt"), "new\r\n");
}

TEST_F(NativeFileSystemTest, ReplacesWhatIsThere) {
  WriteBytes(folder_ / "a.txt", "old\r\n");
  files_.CreateTextFile(folder_ / "a.txt")->WriteLine("new");
  EXPECT_EQ(BytesOf(folder_ / "a.txt"), "new\r\n");
}

TEST_F(NativeFileSystemTest, TakesBackslashesAsSeparators) {
  std::filesystem::create_directory(folder_ / "Logfiles");
  const std::string path = folder_.path().string() + "\\Logfiles\\a.txt";
  files_.CreateTextFile(path)->WriteLine("x");
  EXPECT_TRUE(files_.FileExists(path));
  EXPECT_TRUE(std::filesystem::exists(folder_ / "Logfiles/a.txt"));
}

TEST_F(NativeFileSystemTest, TakesNamesInUtf8) {
  files_.CreateTextFile(folder_ / "Messger\xC3\xA4t.txt")->WriteLine("x");
  EXPECT_TRUE(std::filesystem::exists(folder_.path() / "Messger\xC3\xA4t.txt"));
}

TEST_F(NativeFileSystemTest, DoesNotTakeAFolderForAFile) {
  EXPECT_FALSE(files_.FileExists(folder_.path().string()));
  EXPECT_FALSE(files_.FileExists(folder_ / "none.txt"));
}

TEST_F(NativeFileSystemTest, RaisesPathNotFoundForAMissingFolder) {
  EXPECT_EQ(ErrorNumberOf([&] { files_.CreateTextFile(folder_ / "none/a.txt"); }), 76);
  EXPECT_EQ(ErrorNumberOf([&] { files_.OpenForAppending(folder_ / "none/a.txt"); }), 76);
  ASSERT_TRUE(journal_->last_failure);
  EXPECT_EQ(journal_->last_failure->path, folder_ / "none/a.txt");
  EXPECT_EQ(journal_->last_failure->reason, "No such file or directory");
}

TEST_F(NativeFileSystemTest, RaisesPathNotFoundWhenAFolderOfThePathIsAFile) {
  WriteBytes(folder_ / "file", "");
  EXPECT_EQ(ErrorNumberOf([&] { files_.CreateTextFile(folder_ / "file/a.txt"); }), 76);
}

TEST_F(NativeFileSystemTest, RaisesPermissionDeniedInAReadOnlyFolder) {
  WriteBytes(folder_ / "a.txt", "kept");
  std::filesystem::permissions(folder_.path(), std::filesystem::perms(0555));
  const AsNobody nobody;
  EXPECT_EQ(ErrorNumberOf([&] { files_.CreateTextFile(folder_ / "b.txt"); }), 70);
  EXPECT_EQ(ErrorNumberOf([&] { files_.CreateTextFile(folder_ / "a.txt"); }), 70);
  EXPECT_EQ(BytesOf(folder_ / "a.txt"), "kept");
}

TEST_F(NativeFileSystemTest, RaisesPermissionDeniedForAFolder) {
  EXPECT_EQ(ErrorNumberOf([&] { files_.OpenForAppending(folder_.path().string()); }), 70);
}

TEST_F(NativeFileSystemTest, RaisesDiskFullAtTheLineThatDoesNotFit) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "this machine has no /dev/full";
  const auto stream = files_.OpenForAppending("/dev/full");
  try {
    stream->WriteLine("x");
    FAIL() << "a full disk took a line";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 61);
    EXPECT_EQ(error.description(), "Disk full");
  }
  EXPECT_EQ(journal_->last_failure->path, "/dev/full");
  EXPECT_EQ(journal_->last_failure->reason, "No space left on device");
}

TEST_F(NativeFileSystemTest, ClosesTwiceWithoutComplaint) {
  const auto stream = files_.CreateTextFile(folder_ / "a.txt");
  stream->Close();
  EXPECT_EQ(ErrorNumberOf([&] { stream->Close(); }), 0);
  EXPECT_EQ(ErrorNumberOf([&] { stream->WriteLine("late"); }), 91);
}

TEST_F(NativeFileSystemTest, ListsEachFileOnceInTheOrderOfOpening) {
  files_.CreateTextFile(folder_ / "b.txt");
  files_.OpenForAppending(folder_ / "a.txt");
  files_.OpenForAppending(folder_ / "b.txt");
  EXPECT_THAT(journal_->written, ElementsAre(folder_ / "b.txt", folder_ / "a.txt"));
}

struct ErrnoCase {
  int code;
  std::int32_t number;
  const char* description;
};

class ErrorOfErrnoTable : public ::testing::TestWithParam<ErrnoCase> {};

TEST_P(ErrorOfErrnoTable, GivesTheUsualNumberAndText) {
  const AutomationError error = ErrorOfErrno(GetParam().code);
  EXPECT_EQ(error.number(), GetParam().number);
  EXPECT_EQ(error.description(), GetParam().description);
  EXPECT_EQ(error.source(), "");
}

INSTANTIATE_TEST_SUITE_P(Rows, ErrorOfErrnoTable,
                         ::testing::Values(ErrnoCase{ENOENT, 76, "Path not found"},
                                           ErrnoCase{EACCES, 70, "Permission denied"},
                                           ErrnoCase{EROFS, 70, "Permission denied"},
                                           ErrnoCase{ENOSPC, 61, "Disk full"},
                                           ErrnoCase{EDQUOT, 61, "Disk full"},
                                           ErrnoCase{EMFILE, 67, "Too many files"},
                                           ErrnoCase{ENAMETOOLONG, 52, "Bad file name or number"},
                                           ErrnoCase{EIO, 57, "Device I/O error"},
                                           ErrnoCase{0, 57, "Device I/O error"}));

}  // namespace
}  // namespace tof::native
