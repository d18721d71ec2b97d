#include "instruments/spectra/input_file.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include "tests/instruments/spectra/expect_input_error.h"
#include "tests/instruments/spectra/scratch_file.h"

namespace tof::spectra {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

TEST(InputFile, IsReadByteByByte) {
  const ScratchFile file(std::string_view("a\r\n\0b", 5));
  EXPECT_EQ(ReadWholeFile(file.Path()), std::string("a\r\n\0b", 5));
}

TEST(InputFile, SaysThatAFileIsMissing) {
  EXPECT_EQ(InputErrorOf([] { ReadWholeFile("/no/such/file.txt"); }),
            "/no/such/file.txt: found No such file or directory, expected a readable file");
}

TEST(InputFile, SaysThatAFolderIsNotAFile) {
  EXPECT_THAT(InputErrorOf([] { ReadWholeFile(testing::TempDir()); }), HasSubstr("directory"));
}

TEST(InputFile, SaysThatAFileIsNotPermitted) {
  if (geteuid() == 0) GTEST_SKIP() << "root may read every file";
  const ScratchFile file("1 2\n");
  std::filesystem::permissions(file.Path(), std::filesystem::perms::none);
  EXPECT_THAT(InputErrorOf([&] { ReadWholeFile(file.Path()); }),
              EndsWith("found Permission denied, expected a readable file"));
}

TEST(Numbers, AreTheWholeText) {
  EXPECT_EQ(ParseDouble("-43.6"), -43.6);
  EXPECT_EQ(ParseDouble("+1e3"), 1000.0);
  EXPECT_EQ(ParseInt32("+7"), 7);
  for (const char* text :
       {"", " 1", "1 ", "1x", "1,5", "0x10", "+-1", "+", "nan", "inf", "1e400"}) {
    EXPECT_EQ(ParseDouble(text), std::nullopt) << text;
  }
  for (const char* text : {"", "1.0", "1e3", "2147483648", "x"}) {
    EXPECT_EQ(ParseInt32(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace tof::spectra
