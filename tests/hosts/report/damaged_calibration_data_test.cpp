// What is said of a calibration data log in which a row is damaged.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "hosts/report/logs/calibration_data_reader.h"
#include "tests/hosts/temporary_folder.h"

namespace tof::report {
namespace {

using ::testing::ElementsAre;

constexpr const char* kSecondRow =
    "1, 17017.830068699, 27908.5171522768, 38669.7641798994, 47014.5411905462, 54079.7225156771, "
    "60318.9086769094";

// "line: what" of each problem of the log with another second row of flight times, which is line 6.
std::vector<std::string> ProblemsWith(const std::string& row) {
  std::string text = testing::BytesOf(std::filesystem::path(TOF_SOURCE_DIR) /
                                      "tests/golden/traditional_run/calibration_data.txt");
  const std::string intact = kSecondRow;
  text.replace(text.find(intact), intact.size(), row);
  std::istringstream bytes(text);
  std::vector<Problem> problems;
  ReadCalibrationData({bytes, "d.TXT"}, problems);
  std::vector<std::string> told;
  for (const Problem& problem : problems) {
    told.push_back(std::to_string(problem.line) + ": " + problem.what);
  }
  return told;
}

TEST(DamagedCalibrationData, IsNotAnIntactOne) {
  EXPECT_THAT(ProblemsWith(kSecondRow), ElementsAre());
}

TEST(DamagedCalibrationData, NeedsANumberForEachMass) {
  EXPECT_EQ(ProblemsWith("1, 2.5, 3.5").front(), "6: found \"1, 2.5, 3.5\", expected 6 masses");
  EXPECT_EQ(ProblemsWith("1, 2, 3, 4, 5, 6, 7, 8").front(),
            "6: found \"1, 2, 3, 4, 5, 6, 7, 8\", expected 6 masses");
}

TEST(DamagedCalibrationData, NeedsItsSpectraInTheirOrder) {
  const std::string expected = ", expected spectrum 1 and a number for each mass";
  for (const std::string row : {"2, 1, 2, 3, 4, 5, 6", "1", "1, x, 2, 3, 4, 5, 6"}) {
    EXPECT_EQ(ProblemsWith(row).front(), "6: found \"" + row + "\"" + expected);
  }
}

}  // namespace
}  // namespace tof::report
