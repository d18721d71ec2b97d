// Which files belong to one run.
#include "hosts/report/logs/log_folder_runs.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hosts/report/logs/log_page.h"
#include "tests/hosts/temporary_folder.h"

namespace tof::report {
namespace {

using testing::BytesOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using testing::TemporaryFolder;
using testing::WriteBytes;

constexpr double kA = 6.5e-4;

std::string Dump(const std::string& time, double t0_ns) {
  return fmt::format(
      "Time: {}\r\nMass coefficients are in nsecs\r\ncoefficient, coefficient value\r\n"
      "A, 6.5000000000E-04\r\nB, {:.10E}\r\nC, 0.0000000000E+00\r\nD, 0.0000000000E+00\r\n"
      "E, 0.0000000000E+00\r\nF, 0.0000000000E+00\r\nG, 0.0000000000E+00\r\nH, 0.0000000000E+00\r\n"
      "PolyTermsFlags = 0x00000\r\nTradWeighting = 0x000000\r\nPolyWeighting = 0x000000\r\n",
      time, t0_ns);
}

// The three dumps of a pass that starts from t0 = 290 ns.
std::string Pass(const std::string& time, double fitted_t0_ns) {
  return Dump(time, 290.0) + Dump(time, 290.0) + Dump(time, fitted_t0_ns);
}

constexpr const char* kLogHeader = "===CALIBRATION today===\r\nGainChannel[1]\r\n";

// Of one mass and one spectrum, as coefficients with that t0 give it.
std::string Data(double time_ns, double t0_ns) {
  const double root = kA * (time_ns - t0_ns);
  const auto section = [](const char* name, double value) {
    return fmt::format(
        "SpectrumIdx, {} for MassIdx 0\r\n0, {:.15g}\r\nAverages, 0\r\nStdDevs, 0\r\n\r\n", name,
        value);
  };
  return "===CALIBRATION DATA today===\r\nGainChannel[1]\r\nGainChannelSelect = 1\r\n" +
         section("Measured Flight Times", time_ns) + section("Calculated Mass", root * root) +
         section("Mass Errors", 0.0);
}

std::string AicLog(double time_ns) {
  return fmt::format(
      "===AIC today===\r\nGainChannel = 1\r\nAbundance Threshold = 200000\r\n\r\n"
      "Collecting tofs for Averaging...\r\nTOFs [MassIdx, OctRF voltage, tofs]\r\n0, 75, "
      "{:.15g}\r\n"
      "\r\nAbundances [MassIdx, OctRF voltage, Abundances]\r\n0, 75, 150000\r\n\r\n"
      "Averages (and times used for averaging) [MassIdx, Average, TOFs]\r\n0, {:.15g}, {:.15g}\r\n",
      time_ns, time_ns, time_ns);
}

class LogFolder : public ::testing::Test {
 protected:
  void Write(const std::string& name, const std::string& bytes) {
    WriteBytes(folder_ / name, bytes);
  }
  LoggedRuns Read() const { return RunsInFolder(folder_.path()); }

  TemporaryFolder folder_;
};

TEST_F(LogFolder, HoldsNoRunWhenItIsEmpty) {
  EXPECT_THAT(Read().runs, IsEmpty());
}

TEST_F(LogFolder, MayBeTheBaseFolder) {
  std::filesystem::create_directory(folder_.path() / "Logfiles");
  Write("Logfiles/CalibrationData_20240321_090011.TXT", Data(15000.0, 300.0));
  const LoggedRuns logged = Read();
  EXPECT_EQ(logged.folder, folder_.path() / "Logfiles");
  EXPECT_THAT(logged.runs, SizeIs(1));
}

TEST_F(LogFolder, TellsLogsByTheirFirstLine) {
  Write("a log of whatever name.txt", Data(15000.0, 300.0));
  Write("notes.txt", "not a log\r\n");
  const LoggedRuns logged = Read();
  ASSERT_THAT(logged.runs, SizeIs(1));
  EXPECT_TRUE(logged.runs[0].data);
  EXPECT_THAT(logged.problems, IsEmpty());
}

TEST_F(LogFolder, BringsTheFilesOfARunTogetherByTheirFlightTimes) {
  // Two runs of one second, their files in an order that misleads.
  Write("CalibrationLog_20240321_090000.txt", std::string(kLogHeader) +
                                                  Pass("20240321 09:00:00", 301.0) +
                                                  Pass("20240321 09:00:00", 302.0));
  Write("CalibrationData_20240321_090000.TXT", Data(15002.0, 302.0));
  Write("CalibrationData_20240321_090000_2.TXT", Data(15001.0, 301.0));
  Write("AIC_20240321_090000.TXT", AicLog(15002.0));
  Write("AbImmunecalib_SpotFireDataSetLog.csv",
        "Acq Date, Acq Time, MassIdx, MeasurementIdx, TOF, Abundance\r\n"
        "20240321, 090000, 0, 0, 15002, 150000\r\n");
  Write("TuneReportCalibData.txt", "15001\r\n1\r\n2\r\n");
  const LoggedRuns logged = Read();
  EXPECT_THAT(logged.problems, IsEmpty());
  ASSERT_THAT(logged.runs, SizeIs(2));
  const LoggedRun& first = logged.runs[0];
  EXPECT_EQ(first.passes.at(0).fitted->coefficients[1], 301.0);
  EXPECT_EQ(first.data->file, "CalibrationData_20240321_090000_2.TXT");
  EXPECT_FALSE(first.aic_log);
  EXPECT_FALSE(first.data_set);
  EXPECT_TRUE(first.tune_report);
  const LoggedRun& second = logged.runs[1];
  EXPECT_EQ(second.passes.at(0).fitted->coefficients[1], 302.0);
  EXPECT_TRUE(second.aic_log);
  EXPECT_TRUE(second.data_set);
  EXPECT_FALSE(second.tune_report);
}

TEST_F(LogFolder, CountsABadFirstFitToTheRunThatSucceeded) {
  Write("CalibrationLog_20240321_090000.txt", std::string(kLogHeader) +
                                                  Pass("20240321 09:00:00", 500.0) +
                                                  Pass("20240321 09:00:10", 301.0));
  Write("CalibrationData_20240321_090012.TXT", Data(15001.0, 301.0));
  const LoggedRuns logged = Read();
  ASSERT_THAT(logged.runs, SizeIs(1));
  EXPECT_THAT(logged.runs[0].passes, SizeIs(2));
  EXPECT_THAT(VerdictSentence(LogPageOf(logged, 0)), HasSubstr("in the second fitting pass"));
}

TEST_F(LogFolder, TellsTwoBadFitsFromARunThatBrokeOff) {
  Write("CalibrationLog_20240321_090000.txt",
        std::string(kLogHeader) + Pass("20240321 09:00:00", 500.0) +
            Pass("20240321 09:00:10", 501.0) + Dump("20240321 10:00:00", 290.0));
  const LoggedRuns logged = Read();
  ASSERT_THAT(logged.runs, SizeIs(2));
  EXPECT_THAT(VerdictSentence(LogPageOf(logged, 0)), HasSubstr("bad twice"));
  EXPECT_THAT(VerdictSentence(LogPageOf(logged, 1)),
              HasSubstr("broke off before new coefficients"));
}

TEST_F(LogFolder, GivesAnUnfinishedAicLogToTheRunThatBrokeOff) {
  Write("CalibrationLog_20240321_090000.txt",
        std::string(kLogHeader) + Dump("20240321 09:00:30", 290.0));
  Write("AIC_20240321_090000.TXT", "===AIC today===\r\nAbundance Threshold = 200000\r\n");
  const LoggedRuns logged = Read();
  ASSERT_THAT(logged.runs, SizeIs(1));
  EXPECT_TRUE(logged.runs[0].aic_log);
  EXPECT_THAT(logged.runs[0].passes, SizeIs(1));
  EXPECT_THAT(logged.problems, SizeIs(1));
}

TEST_F(LogFolder, KeepsPartsOfOneFileApart) {
  const std::string one = std::string(kLogHeader) + Pass("20240321 09:00:00", 301.0);
  const std::string other = std::string(kLogHeader) + Pass("20240321 09:00:00", 302.0);
  Write("CalibrationLog_20240321_090000.txt", one + other);
  Write("CalibrationData_20240321_090000.TXT", Data(15001.0, 301.0));
  Write("CalibrationData_20240321_090001.TXT", Data(15002.0, 302.0));
  const LoggedRuns logged = Read();
  ASSERT_THAT(logged.runs, SizeIs(2));
  EXPECT_THAT(logged.runs[0].passes, SizeIs(1));
  EXPECT_THAT(logged.runs[1].passes, SizeIs(1));
}

TEST_F(LogFolder, SaysThatATuneReportBelongsToNoLoggedRun) {
  Write("CalibrationData_20240321_090011.TXT", Data(15000.0, 300.0));
  Write("TuneReportCalibData.txt", "16000\r\n1\r\n2\r\n");
  const LoggedRuns logged = Read();
  ASSERT_THAT(logged.problems, SizeIs(1));
  EXPECT_THAT(logged.problems[0].what, HasSubstr("belongs to a run of which no flight times"));
}

TEST_F(LogFolder, ShowsADataSetAlone) {
  Write("AbImmunecalib_SpotFireDataSetLog.csv",
        "Acq Date, Acq Time, MassIdx, MeasurementIdx, TOF, Abundance\r\n"
        "20240321, 090000, 0, 0, 15002, 150000\r\n20240321, 090000, 0, 1, 15003, 150000\r\n"
        "20240322, 090000, 0, 0, 15004, 150000\r\n20240322, 090000, 0, 1, 15005, 150000\r\n");
  const LoggedRuns logged = Read();
  ASSERT_THAT(logged.runs, SizeIs(2));
  const ReportPage page = LogPageOf(logged, 1);
  EXPECT_EQ(page.moment, "Began 20240322 09:00:00");
  EXPECT_EQ(page.aic, true);
  EXPECT_EQ(page.outcome, Outcome::kUnknown);
  EXPECT_EQ(page.calibrants.at(0).time_ns, 15004.5);
}

TEST_F(LogFolder, RecoversTheExpectedMassesFromTheErrors) {
  const std::filesystem::path golden =
      std::filesystem::path(TOF_SOURCE_DIR) / "tests/golden/traditional_run/calibration_data.txt";
  Write("CalibrationData_1.TXT", BytesOf(golden));
  const ReportPage page = LogPageOf(Read(), 0);
  EXPECT_EQ(page.calibrants.at(0).expected, 118.0863);
  EXPECT_EQ(page.calibrants.at(5).expected, 1521.9715);
  EXPECT_EQ(page.outcome, Outcome::kCalibrated);
  EXPECT_EQ(page.aic, false);
  EXPECT_FALSE(page.setpoints);
  EXPECT_FALSE(page.stages);
}

}  // namespace
}  // namespace tof::report
