#include "component/calibration/logging_info.h"

#include "tests/component/calibration/calibration_calls.h"
#include "tests/support/calibration_fixture.h"

namespace tof {
namespace {

using fakes::InOrder;
using fakes::LineWritten;
using fakes::Repeated;
using fakes::SetpointRead;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::Property;

const std::string kLog = "D:\\Data\\Logfiles\\CalibrationData_1.TXT";
const std::string kReport = "D:\\Data\\Logfiles\\TuneReportCalibData.txt";

// Coefficients and times that are exact in binary: m = (t / 1024)^2.
class DataLog : public fakes::CalibrationFixture {
 protected:
  DataLog() {
    coefficients->record = {1.0 / 1024.0, 0.0};
    times(0, 0) = 2048.0;
    times(1, 0) = 2056.0;
    times(0, 1) = 3072.0;
    times(1, 1) = 3072.0;
  }
  void Write() {
    Instrument parts = Collaborators();
    WriteCalibrationLoggingInfo(parts, host, coefficients, expected, times);
  }

  std::shared_ptr<fakes::FakeCoefficients> coefficients =
      std::make_shared<fakes::FakeCoefficients>(journal);
  Variant expected = Variant::DoubleArray({4.0, 8.0});
  MeasuredTimes times{{0, 1}, {0, 1}};
};

TEST_F(DataLog, HoldsTimesMassesAndErrorsWithTheirStatistics) {
  Write();
  EXPECT_EQ(host.files.at(kLog).bytes,
            "===CALIBRATION DATA 20240229 at 13:05:09===\r\n"
            "GainChannel[1]\r\n"
            "GainChannelSelect = 1\r\n"
            "SpectrumIdx, Measured Flight Times for MassIdx 0, 1, 2, 3, 4, 5, 6, 7, 8, 9\r\n"
            "0, 2048, 3072\r\n"
            "1, 2056, 3072\r\n"
            "Averages, 2052, 3072\r\n"
            "StdDevs, 5.65685424949238, 0\r\n"
            "\r\n"
            "SpectrumIdx, Calculated Mass for MassIdx 0, 1, 2, 3, 4, 5, 6, 7, 8, 9\r\n"
            "0, 4, 9\r\n"
            "1, 4.03131103515625, 9\r\n"
            "Averages, 4.01565551757812, 9\r\n"
            "StdDevs, 0.0221402452849548, 0\r\n"
            "\r\n"
            "SpectrumIdx, Mass Errors for MassIdx 0, 1, 2, 3, 4, 5, 6, 7, 8, 9\r\n"
            "0, 0, 125000\r\n"
            "1, 7827.7587890625, 125000\r\n"
            "Averages, 3913.87939453125, 125000\r\n"
            "StdDevs, 5535.06132123869, 0\r\n"
            "\r\n");
  EXPECT_EQ(host.files.at(kLog).open_streams, 0);
}

TEST_F(DataLog, IsWrittenInThisOrderOfCalls) {
  host.trace->on = false;
  host.files[kReport].bytes = "before\r\n";
  Write();
  EXPECT_THAT(journal.entries(),
              ElementsAreArray(InOrder({{"Host.Now"},
                                        SetpointRead(149),
                                        {"Host.DateTimeText"},
                                        {"CalibLogFiles.OpenLogFile(CalibrationData,TXT)"},
                                        SetpointRead(149),
                                        LineWritten("CalibrationData_1.TXT"),
                                        Repeated(4, {"MassCalCoefficients.TimeToMass"}),
                                        Repeated(3, {"AcqController.GetColumnStatistics"}),
                                        Repeated(3, LineWritten("CalibrationData_1.TXT")),
                                        {"TextStream.Close(CalibrationData_1.TXT)"},
                                        {"Create.InstrumentPaths"},
                                        {"InstrumentPaths.GetBaseFolder"},
                                        {"Host.CreateFileSystem"},
                                        {"FileSystem.FileExists(TuneReportCalibData.txt)"},
                                        {"FileSystem.OpenForAppending(TuneReportCalibData.txt)"},
                                        Repeated(2, LineWritten("TuneReportCalibData.txt")),
                                        {"TextStream.Close(TuneReportCalibData.txt)"}})));
}

TEST_F(DataLog, AppendsTwoLinesToATuneReportThatExists) {
  host.files[kReport].bytes = "before\r\n";
  Write();
  EXPECT_EQ(host.files.at(kReport).bytes,
            "before\r\n4.01565551757812, 9\r\n3913.87939453125, 125000\r\n");
  EXPECT_EQ(host.files.at(kReport).open_streams, 0);
}

TEST_F(DataLog, NeverCreatesATuneReport) {
  Write();
  EXPECT_EQ(host.files.count(kReport), 0U);
}

TEST_F(DataLog, TracesTheBoundsOnceASpectrum) {
  Write();
  const std::string bounds =
      "WriteCalibrationLoggingInfo 9: LBound(m_varRawMeasuredTimesForCalibration, 2)=0 To "
      "UBound(m_varRawMeasuredTimesForCalibration, 2) = 1";
  EXPECT_THAT(host.trace->lines,
              ::testing::ElementsAre("Entry WriteCalibrationLoggingInfo 9", bounds, bounds,
                                     "Exit WriteCalibrationLoggingInfo 9"));
}

TEST_F(DataLog, CarriesItsStatisticsForASingleSpectrum) {
  times = MeasuredTimes({0, 0}, {0, 1});
  times(0, 0) = 2048.0;
  times(0, 1) = 3072.0;
  Write();
  EXPECT_THAT(host.files.at(kLog).bytes, HasSubstr("0, 2048, 3072\r\n"
                                                   "Averages, 2048, 3072\r\n"
                                                   "StdDevs, 0, 0\r\n\r\n"));
}

TEST_F(DataLog, HeadsTenColumnsForMoreThanTenCalibrants) {
  times = MeasuredTimes({0, 0}, {0, 11});
  for (std::int32_t j = 0; j <= 11; ++j) times(0, j) = 2048.0;
  expected = Variant::DoubleArray(std::vector<double>(12, 4.0));
  Write();
  EXPECT_THAT(host.files.at(kLog).bytes,
              HasSubstr("for MassIdx 0, 1, 2, 3, 4, 5, 6, 7, 8, 9\r\n"
                        "0, 2048, 2048, 2048, 2048, 2048, 2048, 2048, 2048, 2048, 2048, 2048, "
                        "2048\r\n"));
}

TEST_F(DataLog, RaisesWhatFailsAndLetsItsStreamGo) {
  journal.fail_operation = "MassCalCoefficients.TimeToMass";
  EXPECT_THAT([&] { Write(); }, ::testing::Throws<AutomationError>(
                                    Property(&AutomationError::number, fakes::kInjectedNumber)));
  EXPECT_EQ(host.files.at(kLog).open_streams, 0);
  EXPECT_EQ(host.trace->lines.back(), "Exit WriteCalibrationLoggingInfo 9");
}

TEST_F(DataLog, RefusesMoreMeasuredThanExpectedMasses) {
  expected = Variant::DoubleArray({4.0});
  EXPECT_THAT([&] { Write(); },
              ::testing::Throws<AutomationError>(Property(&AutomationError::number, 9)));
}

TEST_F(DataLog, RefusesAnExpectedMassOfZero) {
  expected = Variant::DoubleArray({0.0, 9.0});
  EXPECT_THAT([&] { Write(); },
              ::testing::Throws<AutomationError>(Property(&AutomationError::number, 11)));
}

}  // namespace
}  // namespace tof
