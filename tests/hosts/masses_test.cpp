#include "hosts/cli/masses.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "instruments/spectra/input_error.h"
#include "tests/hosts/temporary_folder.h"

namespace tof::cli {
namespace {

using spectra::InputError;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using tof::testing::TemporaryFolder;
using tof::testing::WriteBytes;

std::string MessageOf(const std::function<void()>& body) {
  try {
    body();
  } catch (const InputError& error) {
    return error.what();
  }
  return "no error";
}

TEST(MassList, TakesNumbersBetweenCommas) {
  EXPECT_THAT(ParseMassList(" 90.97664,1e3 , 5", "--masses"), ElementsAre(90.97664, 1000.0, 5.0));
}

TEST(MassList, TakesTheMassesOfAFile) {
  const TemporaryFolder folder;
  WriteBytes(folder / "m.txt", "# m/z\n91.5 a comment of words is further columns\r\n\n 200\t1\n");
  EXPECT_THAT(MassesFromListOrFile(folder / "m.txt"), ElementsAre(91.5, 200.0));
  EXPECT_THAT(MassesFromListOrFile("91.5,200"), ElementsAre(91.5, 200.0));
}

TEST(MassList, SaysWhereAFileIsWrong) {
  const TemporaryFolder folder;
  const std::string path = folder / "m.txt";
  WriteBytes(path, "91.5\n  -3\n");
  EXPECT_EQ(MessageOf([&] { MassesFromListOrFile(path); }),
            path + ":2:3: found \"-3\", expected a finite, positive mass");
  WriteBytes(path, "# nothing\n");
  EXPECT_EQ(MessageOf([&] { MassesFromListOrFile(path); }),
            path + ": found no masses, expected at least one mass");
}

TEST(MassesAndTimesFile, TakesBlanksTabsAndCommas) {
  const TemporaryFolder folder;
  WriteBytes(folder / "p.txt", "# mass time\n1 10\r\n2,20\n3\t30 # three\n4, 40");
  const MassesAndTimes pairs = ReadMassesAndTimes(folder / "p.txt");
  EXPECT_THAT(pairs.masses, ElementsAre(1.0, 2.0, 3.0, 4.0));
  EXPECT_THAT(pairs.times_ns, ElementsAre(10.0, 20.0, 30.0, 40.0));
}

struct Refusal {
  const char* name;
  const char* content;
  const char* message;
};

void PrintTo(const Refusal& row, std::ostream* out) {
  *out << row.name;
}

class MassesAndTimesRefusal : public ::testing::TestWithParam<Refusal> {};

TEST_P(MassesAndTimesRefusal, SaysWhereWhatAndWhatWasExpected) {
  const TemporaryFolder folder;
  WriteBytes(folder / "p.txt", GetParam().content);
  EXPECT_EQ(MessageOf([&] { ReadMassesAndTimes(folder / "p.txt"); }),
            (folder / "p.txt") + GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, MassesAndTimesRefusal,
    ::testing::Values(
        Refusal{"Empty", "", ": found no data, expected lines of two columns: mass time_ns"},
        Refusal{"OneColumn", "1 10\n2\n",
                ":2:1: found 1 columns, expected two columns: mass time_ns"},
        Refusal{"ThreeColumns", "1 10 0\n",
                ":1:1: found 3 columns, expected two columns: mass time_ns"},
        Refusal{"Text", "1 10\n\nmass time\n",
                ":3:1: found \"mass\", expected a finite, positive mass"},
        Refusal{"TimeText", "1  ten\n", ":1:4: found \"ten\", expected a finite flight time in ns"},
        Refusal{"TimeNaN", "1 nan\n", ":1:3: found \"nan\", expected a finite flight time in ns"},
        Refusal{"MassNaN", "NaN 1\n", ":1:1: found \"NaN\", expected a finite, positive mass"},
        Refusal{"MassZero", "0 1\n", ":1:1: found \"0\", expected a finite, positive mass"},
        Refusal{"MassTwice", "1 10\n1.0 20\n",
                ":2:1: found \"1.0\" a second time, expected each value once"},
        Refusal{"TimeTwice", "1 10\n2 10\n",
                ":2:3: found \"10\" a second time, expected each value once"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(MassesAndTimesFile, SaysThatAFileIsMissing) {
  const TemporaryFolder folder;
  EXPECT_THAT(MessageOf([&] { ReadMassesAndTimes(folder / "none.txt"); }),
              HasSubstr("No such file or directory"));
}

}  // namespace
}  // namespace tof::cli
