#include <gtest/gtest.h>

#include "tests/instruments/standin/test_instrument.h"

namespace tof::standin {
namespace {

class CalibLogFilesTest : public testing::Test {
 protected:
  CalibLogFilesTest() : test_(WithBaseFolder()), logs_(test_.instrument.CreateCalibLogFiles()) {}

  static description::InstrumentDescription WithBaseFolder() {
    auto description = description::BuiltInDescription();
    description.base_folder = "C:\\Tof";
    return description;
  }

  TestInstrument test_;
  std::shared_ptr<CalibLogFiles> logs_;
};

TEST_F(CalibLogFilesTest, AreNamedAfterPrefixAndTimeAndBeginWithTheHeader) {
  logs_->OpenLogFile("AIC", "===AIC===", "TXT")->WriteLine("a line");
  ASSERT_EQ(test_.host.files.count("C:\\Tof\\Logfiles\\AIC_20240229_130509.TXT"), 1u);
  EXPECT_EQ(test_.host.files.at("C:\\Tof\\Logfiles\\AIC_20240229_130509.TXT").bytes,
            "===AIC===\r\na line\r\n");
}

TEST_F(CalibLogFilesTest, LeaveAFileOfTheSameSecondAlone) {
  logs_->OpenLogFile("AIC", "first", "TXT");
  logs_->OpenLogFile("AIC", "second", "TXT");
  logs_->OpenLogFile("AIC", "third", "TXT");
  EXPECT_EQ(test_.host.files.at("C:\\Tof\\Logfiles\\AIC_20240229_130509.TXT").bytes, "first\r\n");
  EXPECT_EQ(test_.host.files.at("C:\\Tof\\Logfiles\\AIC_20240229_130509_3.TXT").bytes, "third\r\n");
}

TEST_F(CalibLogFilesTest, JoinSixValues) {
  EXPECT_EQ(logs_->JoinAsCsvLine({Variant(1.5), Variant(std::int32_t{-2}), Variant("text"),
                                  Variant(true), Variant(1e-7), Variant()}),
            "1.5, -2, text, True, 1E-07, ");
}

}  // namespace
}  // namespace tof::standin
