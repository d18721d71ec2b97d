// The edges of the calibration data log: few or many columns, no statistics, masses of zero.
#include "component/calibration/logging_info.h"

#include "tests/component/error_number_of.h"
#include "tests/support/calibration_fixture.h"

namespace tof {
namespace {

using ::testing::HasSubstr;

constexpr const char* kLog = "D:\\Data\\Logfiles\\CalibrationData_1.TXT";
constexpr const char* kReport = "D:\\Data\\Logfiles\\TuneReportCalibData.txt";
const std::string kTen = " for MassIdx 0, 1, 2, 3, 4, 5, 6, 7, 8, 9\r\n";

// Coefficients and times that are exact in binary: m = (t / 1024)^2.
class DataLogEdges : public fakes::CalibrationFixture {
 protected:
  DataLogEdges() { coefficients->record = {1.0 / 1024.0, 0.0}; }
  std::int32_t Write() {
    Instrument parts = Collaborators();
    return ErrorNumberOf(
        [&] { WriteCalibrationLoggingInfo(parts, host, coefficients, expected, times); });
  }

  std::shared_ptr<fakes::FakeCoefficients> coefficients =
      std::make_shared<fakes::FakeCoefficients>(journal);
  Variant expected = Variant::DoubleArray({4.0, 8.0});
  MeasuredTimes times{{0, 0}, {0, 1}};
};

TEST_F(DataLogEdges, OneSpectrumHasStatisticsInEverySection) {
  times(0, 0) = 2048.0;
  times(0, 1) = 3072.0;
  EXPECT_EQ(Write(), 0);
  const std::string& bytes = host.files.at(kLog).bytes;
  EXPECT_THAT(bytes, HasSubstr("Times" + kTen +
                               "0, 2048, 3072\r\nAverages, 2048, 3072\r\n"
                               "StdDevs, 0, 0\r\n\r\n"));
  EXPECT_THAT(bytes,
              HasSubstr("Mass" + kTen + "0, 4, 9\r\nAverages, 4, 9\r\nStdDevs, 0, 0\r\n\r\n"));
  EXPECT_THAT(bytes, HasSubstr("Errors" + kTen +
                               "0, 0, 125000\r\nAverages, 0, 125000\r\n"
                               "StdDevs, 0, 0\r\n\r\n"));
}

TEST_F(DataLogEdges, TwelveCalibrantsStandUnderTenIndicesInEverySection) {
  times = MeasuredTimes({0, 0}, {0, 11});
  for (std::int32_t j = 0; j <= 11; ++j) times(0, j) = 2048.0;
  expected = Variant::DoubleArray(std::vector<double>(12, 4.0));
  EXPECT_EQ(Write(), 0);
  const std::string& bytes = host.files.at(kLog).bytes;
  const auto row = [](const std::string& value) {
    std::string text = "0";
    for (int j = 0; j <= 11; ++j) text += ", " + value;
    return text + "\r\n";
  };
  EXPECT_THAT(bytes, HasSubstr("Times" + kTen + row("2048")));
  EXPECT_THAT(bytes, HasSubstr("Mass" + kTen + row("4")));
  EXPECT_THAT(bytes, HasSubstr("Errors" + kTen + row("0")));
}

TEST_F(DataLogEdges, NoStatisticsLeaveEmptyListsAndEmptySummaryLines) {
  instrument.has_statistics = false;
  host.files[kReport].bytes = "before\r\n";
  times(0, 0) = 2048.0;
  times(0, 1) = 3072.0;
  EXPECT_EQ(Write(), 0);
  EXPECT_THAT(host.files.at(kLog).bytes, HasSubstr("0, 2048, 3072\r\nAverages\r\nStdDevs\r\n\r\n"));
  EXPECT_EQ(host.files.at(kReport).bytes, "before\r\n\r\n\r\n");
}

TEST_F(DataLogEdges, NoErrorCanBeReckonedOfAMassOfZeroThatIsExpected) {
  expected = Variant::DoubleArray({0.0, 8.0});
  times(0, 0) = 2048.0;
  EXPECT_EQ(Write(), 11) << "4 of 0";
  times(0, 0) = 0.0;
  EXPECT_EQ(Write(), 6) << "0 of 0";
}

TEST_F(DataLogEdges, ErrorsAreInPartsPerMillionOfTheExpectedMassWithTheirSign) {
  expected = Variant::DoubleArray({8.0, -4.0});
  times(0, 0) = 2048.0;
  times(0, 1) = 2048.0;
  EXPECT_EQ(Write(), 0);
  EXPECT_THAT(host.files.at(kLog).bytes, HasSubstr("Errors" + kTen + "0, -500000, -2000000\r\n"));
}

}  // namespace
}  // namespace tof
