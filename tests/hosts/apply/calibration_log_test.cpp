#include "hosts/apply/calibration_log.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "instruments/spectra/input_error.h"
#include "instruments/spectra/input_file.h"

namespace tof::apply {
namespace {

using ::testing::ElementsAre;

const std::string kHeader = "===CALIBRATION 20240229 at 13:05:09===\r\nGainChannel[1]\r\n";

std::string Block(const std::string& time, double t0_ns, const std::string& flags = "00001F") {
  std::string text = "Time: 20240229 " + time +
                     "\r\nMass coefficients are in nsecs\r\ncoefficient, coefficient value\r\n"
                     "A, 6.5000000000E-04\r\n" +
                     fmt::format("B, {:.10E}\r\n", t0_ns);
  for (const char name : {'C', 'D', 'E', 'F', 'G', 'H'}) {
    text += std::string(1, name) + ", -1.5000000000E-07\r\n";
  }
  return text + "PolyTermsFlags = 0x" + flags +
         "\r\nTradWeighting = 0x000000\r\nPolyWeighting = 0x000000\r\n";
}

// t0 of each result of a fit.
std::vector<double> ResultsOf(const std::string& blocks) {
  std::vector<double> t0s;
  for (const auto& dump : FitResults(ParseCalibrationLog(kHeader + blocks, "log"))) {
    t0s.push_back(dump.coefficients[1]);
  }
  return t0s;
}

TEST(CalibrationLog, ReadsABlockToItsLastField) {
  const auto dumps = ParseCalibrationLog(kHeader + Block("13:05:09", 300.5, "0001F"), "log");
  ASSERT_EQ(dumps.size(), 1u);
  EXPECT_EQ(dumps[0].time, "20240229 13:05:09");
  EXPECT_THAT(dumps[0].coefficients,
              ElementsAre(6.5e-4, 300.5, -1.5e-7, -1.5e-7, -1.5e-7, -1.5e-7, -1.5e-7, -1.5e-7));
  EXPECT_EQ(dumps[0].terms, 0x1F);
}

TEST(CalibrationLog, ReadsTheLogOfACalibration) {
  const auto dumps = ParseCalibrationLog(
      spectra::ReadWholeFile(TOF_SOURCE_DIR "/tests/golden/traditional_run/calibration_log.txt"),
      "log");
  EXPECT_EQ(dumps.size(), 3u);
  const auto fits = FitResults(dumps);
  ASSERT_EQ(fits.size(), 1u);
  EXPECT_EQ(fits[0].coefficients[1], 299.97916667);
}

TEST(CalibrationLog, TakesTheThirdBlockOfEachFit) {
  EXPECT_THAT(ResultsOf(Block("13:00:00", 300) + Block("13:02:00", 300) + Block("13:02:00", 301) +
                        Block("14:00:00", 301) + Block("14:02:00", 301) + Block("14:02:01", 302)),
              ElementsAre(301, 302));
}

TEST(CalibrationLog, PassesOverARunThatWasAborted) {
  EXPECT_THAT(ResultsOf(Block("13:00:00", 300) + Block("13:10:00", 300) + Block("13:12:00", 300) +
                        Block("13:12:00", 301)),
              ElementsAre(301));
}

TEST(CalibrationLog, PassesOverAFitThatFailed) {
  EXPECT_THAT(ResultsOf(Block("13:00:00", 300) + Block("13:02:00", 300) + Block("13:20:00", 310)),
              ElementsAre());
}

TEST(CalibrationLog, TakesAMinuteForTheLongestFit) {
  const std::string before = Block("13:00:00", 300) + Block("13:02:00", 300);
  EXPECT_THAT(ResultsOf(before + Block("13:03:00", 301)), ElementsAre(301));
  EXPECT_THAT(ResultsOf(before + Block("13:03:01", 301)), ElementsAre());
  EXPECT_THAT(ResultsOf(before + Block("13:01:59", 301)), ElementsAre());
}

TEST(CalibrationLog, TakesNoFitWhoseTimeCannotBeTold) {
  for (const char* time : {"13:02", "xx:02:00", "13:xx:00", "13:02:xx", "13:02:000"}) {
    EXPECT_THAT(ResultsOf(Block("13:02:00", 300) + Block("13:02:00", 300) + Block(time, 301)),
                ElementsAre())
        << time;
    EXPECT_THAT(ResultsOf(Block("13:02:00", 300) + Block(time, 300) + Block("13:02:00", 301)),
                ElementsAre())
        << time;
  }
}

TEST(CalibrationLog, KnowsAFitAroundMidnight) {
  const std::string before = Block("23:59:00", 300) + Block("23:59:59", 300);
  std::string after = Block("00:00:01", 301);
  after.replace(after.find("20240229"), 8, "20240301");
  EXPECT_THAT(ResultsOf(before + after), ElementsAre(301));
}

TEST(CalibrationLog, LeavesOutABlockThatIsNotWhole) {
  const std::string whole = Block("13:00:00", 300) + Block("13:00:00", 300);
  const std::string last = Block("13:00:00", 301);
  for (std::size_t length = 0; length < last.size(); ++length) {
    EXPECT_THAT(ResultsOf(whole + last.substr(0, length)), ElementsAre()) << length;
  }
  EXPECT_THAT(ResultsOf(whole + last), ElementsAre(301));
}

TEST(CalibrationLog, RefusesAnotherFile) {
  EXPECT_THROW(ParseCalibrationLog("", "log"), spectra::InputError);
  EXPECT_THROW(ParseCalibrationLog("===CALIBRATION DATA 20240229 at 13:05:09===\r\n", "log"),
               spectra::InputError);
}

}  // namespace
}  // namespace tof::apply
