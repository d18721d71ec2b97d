// The readers of log files, on the approved logs of the component and on every damage of them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <sstream>

#include "hosts/report/html_page.h"
#include "hosts/report/logs/log_page.h"
#include "tests/hosts/temporary_folder.h"

namespace tof::report {
namespace {

using testing::BytesOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using testing::TemporaryFolder;
using testing::WriteBytes;

std::string Golden(const std::string& name) {
  return BytesOf(std::filesystem::path(TOF_SOURCE_DIR) / "tests/golden" / name);
}

class LogReaders : public ::testing::Test {
 protected:
  LogSource Source(const std::string& name, const std::string& text) {
    bytes_.str(text);
    return {bytes_, name};
  }
  std::string Complaint(std::size_t index = 0) const {
    if (index >= problems_.size()) return "";
    return problems_[index].file + ":" + std::to_string(problems_[index].line) + ": " +
           problems_[index].what;
  }

  std::istringstream bytes_;
  std::vector<Problem> problems_;
};

TEST_F(LogReaders, ReadACalibrationLog) {
  const auto parts = ReadCalibrationLog(
      Source("log.txt", Golden("traditional_run/calibration_log.txt")), problems_);
  EXPECT_THAT(problems_, IsEmpty());
  ASSERT_THAT(parts, SizeIs(1));
  EXPECT_EQ(parts[0].began, "20240229 at 13:05:09");
  ASSERT_THAT(parts[0].dumps, SizeIs(3));
  EXPECT_EQ(parts[0].dumps[2].time, "20240229 13:05:09");
  EXPECT_EQ(parts[0].dumps[2].coefficients[1], 299.97916667);
  EXPECT_EQ(parts[0].dumps[2].coefficients[6], -0.5);
  EXPECT_EQ(parts[0].dumps[2].terms, 0x1F);

  const auto passes = PassesOf(parts[0].dumps);
  ASSERT_THAT(passes, SizeIs(1));
  EXPECT_EQ(passes[0].start.coefficients[1], 300.0);
  ASSERT_TRUE(passes[0].fitted);
  EXPECT_EQ(passes[0].fitted->coefficients[1], 299.97916667);
}

TEST_F(LogReaders, TellTwoPassesFromTheDumps) {
  const auto parts =
      ReadCalibrationLog(Source("log.txt", Golden("two_bad_fits/calibration_log.txt")), problems_);
  const auto passes = PassesOf(parts.at(0).dumps);
  ASSERT_THAT(passes, SizeIs(2));
  EXPECT_EQ(passes[0].fitted->coefficients[0], 9.75e-4);
  EXPECT_TRUE(passes[1].fitted);
}

CoefficientDump DumpOf(double t0) {
  return {"20240229 13:05:09", {6.5e-4, t0}, 0};
}

TEST_F(LogReaders, TellPassesThatBrokeOff) {
  EXPECT_THAT(PassesOf({}), IsEmpty());
  const auto before_the_fit = PassesOf({DumpOf(300.0)});
  ASSERT_THAT(before_the_fit, SizeIs(1));
  EXPECT_FALSE(before_the_fit[0].fitted);
  EXPECT_THAT(PassesOf({DumpOf(300.0), DumpOf(300.0)}), SizeIs(1));
  // One that broke off, then one that went through from the same coefficients.
  const auto two = PassesOf({DumpOf(300.0), DumpOf(300.0), DumpOf(300.0), DumpOf(301.0)});
  ASSERT_THAT(two, SizeIs(2));
  EXPECT_FALSE(two[0].fitted);
  EXPECT_EQ(two[1].fitted->coefficients[1], 301.0);
}

TEST_F(LogReaders, SkipADamagedDumpAndSayWhere) {
  std::string log = Golden("traditional_run/calibration_log.txt");
  const std::size_t second = log.find("D, -2.5", log.find("D, -2.5") + 1);
  log.replace(second, 7, "D; -2.5");
  const auto parts = ReadCalibrationLog(Source("log.txt", log), problems_);
  EXPECT_THAT(parts.at(0).dumps, SizeIs(2));
  EXPECT_THAT(Complaint(), HasSubstr("log.txt:23: found \"D; -2.5000000000E-07\", expected"));
  EXPECT_THAT(Complaint(1), HasSubstr("log.txt:17: the coefficients that begin here"));
}

TEST_F(LogReaders, ReadAnAicLog) {
  const AicLogContent log =
      ReadAicLog(Source("a.TXT", Golden("aic_ramp_by_mass/aic_log.txt")), problems_);
  EXPECT_THAT(problems_, IsEmpty());
  EXPECT_EQ(log.began, "20240229 at 13:05:09");
  EXPECT_EQ(log.threshold, 200000.0);
  EXPECT_THAT(log.scalars, ElementsAre(1.0, 1.0, 1.0, 1.0));
  ASSERT_THAT(log.survey, SizeIs(7));
  EXPECT_EQ(log.survey[1].voltage, 62.5);
  ASSERT_THAT(log.survey[1].masses, SizeIs(4));
  EXPECT_EQ(log.survey[1].masses[2].time_ns, 38670.1391798994);
  EXPECT_EQ(log.survey[1].masses[2].abundance, 125000.0);
  ASSERT_THAT(log.outside, SizeIs(1));
  EXPECT_EQ(log.outside[0].mass, 3U);
  EXPECT_EQ(log.outside[0].remark, "below the band");
  EXPECT_THAT(log.voltages, ElementsAre(75.0, 72.5, 67.5, 60.0));
  EXPECT_THAT(log.times_ns[3], ElementsAre(47014.9786905462, 47014.7286905462));
  EXPECT_THAT(log.abundances[3], ElementsAre(40000.25, 40000.25));
  EXPECT_TRUE(log.averaged);
}

TEST_F(LogReaders, ReadAnAicLogCollectedByMeasurement) {
  const AicLogContent log =
      ReadAicLog(Source("a.TXT", Golden("aic_ramp_by_measurement/aic_log.txt")), problems_);
  EXPECT_THAT(problems_, IsEmpty());
  EXPECT_THAT(log.survey, SizeIs(7));
  EXPECT_EQ(log.survey[0].voltage, 67.5);  // in the order it was visited
  EXPECT_THAT(log.abundances,
              ElementsAre(ElementsAre(156250.0, 156250.0), ElementsAre(180000.0, 180000.0),
                          ElementsAre(175000.0, 175000.0), ElementsAre(40000.25, 40000.25)));
}

TEST_F(LogReaders, ReadAnAicLogOfASearchPerMass) {
  const AicLogContent log =
      ReadAicLog(Source("a.TXT", Golden("aic_firmware_search/aic_log.txt")), problems_);
  EXPECT_THAT(problems_, IsEmpty());
  EXPECT_THAT(log.survey, IsEmpty());
  ASSERT_THAT(log.searches, SizeIs(3));
  ASSERT_THAT(log.searches[0], SizeIs(3));
  EXPECT_EQ(log.searches[0][0].voltage, 82.125);
  EXPECT_EQ(log.searches[0][2].voltage, 81.925);
  EXPECT_EQ(log.searches[0][2].abundance, 199531.0);
}

TEST_F(LogReaders, DoNotTakeALaterRunsAveragesForThoseOfAFailedRun) {
  const std::string whole = Golden("aic_ramp_by_mass/aic_log.txt");
  const std::string failed = whole.substr(0, whole.find("\r\nCollecting tofs"));
  const AicLogContent log = ReadAicLog(
      Source("a.TXT", failed +
                          "Averages (and times used for averaging) [MassIdx, Average, TOFs]\r\n"
                          "0, 17018.267568699, 17018.392568699, 17018.142568699\r\n"),
      problems_);
  EXPECT_FALSE(log.averaged);
  EXPECT_THAT(Complaint(), HasSubstr("ends before the flight times were collected"));
}

TEST_F(LogReaders, TakeAMissingPeakForNoTime) {
  const AicLogContent log = ReadAicLog(
      Source("a.TXT", "===AIC now===\r\nSurvey: Voltage, [Time, Abundance]s \r\n20, [NaN, 0]\r\n"),
      problems_);
  ASSERT_THAT(log.survey, SizeIs(1));
  EXPECT_FALSE(log.survey[0].masses[0].time_ns);
}

TEST_F(LogReaders, ReadACalibrationDataLog) {
  const auto data = ReadCalibrationData(
      Source("d.TXT", Golden("traditional_run/calibration_data.txt")), problems_);
  EXPECT_THAT(problems_, IsEmpty());
  EXPECT_EQ(data.ended, "20240229 at 13:05:09");
  ASSERT_THAT(data.times_ns, SizeIs(6));
  EXPECT_THAT(data.times_ns[5], ElementsAre(60319.2836769094, 60318.9086769094, 60319.2211769094));
  EXPECT_THAT(data.masses[0], ElementsAre(118.088360164061, 118.083062635642, 118.087477234405));
  EXPECT_EQ(data.errors_ppm[0][1], -27.4152408714122);
}

TEST_F(LogReaders, ReadATuneReport) {
  const auto report =
      ReadTuneReport(Source("t.txt", Golden("traditional_run/tune_report.txt")), problems_);
  EXPECT_THAT(problems_, IsEmpty());
  ASSERT_TRUE(report);
  EXPECT_EQ(report->times_ns[0], 17018.0592353657);
  EXPECT_EQ(report->errors_before[5], 3.17145306382326);
}

TEST_F(LogReaders, ReadADataSetRunByRun) {
  const std::string rows = Golden("aic_ramp_by_mass/data_set.csv");
  const std::string again = rows.substr(rows.find("\r\n") + 2);
  std::vector<DataSetRun> runs;
  ReadDataSet(Source("s.csv", rows + again), problems_,
              [&](DataSetRun run) { runs.push_back(std::move(run)); });
  EXPECT_THAT(problems_, IsEmpty());
  ASSERT_THAT(runs, SizeIs(2));  // although of the same second
  EXPECT_EQ(runs[1].time, "130545");
  EXPECT_THAT(runs[1].times_ns[1], ElementsAre(27908.5796522768, 27909.0171522768));
  EXPECT_THAT(runs[1].abundances[3], ElementsAre(40000.25, 40000.25));
}

TEST_F(LogReaders, LeaveBadRowsOfADataSetOut) {
  std::string rows = Golden("aic_ramp_by_mass/data_set.csv");
  rows.replace(rows.find("27909.0171522768"), 5, "27x09");
  std::vector<DataSetRun> runs;
  ReadDataSet(Source("s.csv", rows), problems_,
              [&](DataSetRun run) { runs.push_back(std::move(run)); });
  EXPECT_THAT(Complaint(), HasSubstr("s.csv:5: found"));
  ASSERT_FALSE(runs.empty());
  EXPECT_THAT(runs[0].times_ns[1], ElementsAre(27908.5796522768));
}

TEST_F(LogReaders, DoNotListEveryLineOfAFileThatIsDamagedAllOver) {
  std::string text = "===CALIBRATION now===\r\n";
  for (int i = 0; i < 1000; ++i) text += "rubbish\r\n";
  ReadCalibrationLog(Source("log.txt", text), problems_);
  EXPECT_LT(problems_.size(), 20U);
  EXPECT_THAT(problems_.back().what, HasSubstr("more such lines"));
}

// A log that is damaged at any place. One that is cut says so, unless it is cut at the end of a
// line, where a file may as well have ended by itself.
struct CutFile {
  const char* name;
  const char* golden;
  void (*read)(const LogSource& source, std::vector<Problem>& problems);
};

class CutLog : public ::testing::TestWithParam<CutFile> {
 protected:
  void FillFolder() {
    const std::filesystem::path golden =
        (std::filesystem::path(TOF_SOURCE_DIR) / "tests/golden" / GetParam().golden).parent_path();
    for (const auto& [file, name] :
         {std::pair{"aic_log.txt", "AIC_20240229_130509.TXT"},
          std::pair{"calibration_data.txt", "CalibrationData_20240229_130509.TXT"},
          std::pair{"calibration_log.txt", "CalibrationLog_20240229_130509.txt"},
          std::pair{"tune_report.txt", "TuneReportCalibData.txt"},
          std::pair{"data_set.csv", "AbImmunecalib_SpotFireDataSetLog.csv"}}) {
      if (std::filesystem::exists(golden / file))
        WriteBytes(folder_ / name, BytesOf(golden / file));
    }
  }

  // What the reader of this log says of `text`.
  static std::vector<Problem> ProblemsOf(const std::string& text) {
    std::istringstream bytes(text);
    const LogSource source{bytes, GetParam().name};
    std::vector<Problem> problems;
    GetParam().read(source, problems);
    return problems;
  }

  TemporaryFolder folder_;
};

TEST_P(CutLog, SaysThatItsLastLineIsCut) {
  const std::string whole = Golden(GetParam().golden);
  ASSERT_THAT(ProblemsOf(whole), IsEmpty());
  for (std::size_t bytes = 1; bytes < whole.size(); ++bytes) {
    const std::string cut = whole.substr(0, bytes);
    if (cut.ends_with("\r\n")) continue;
    ASSERT_THAT(ProblemsOf(cut), Not(IsEmpty())) << bytes << " bytes";
  }
}

TEST_P(CutLog, WithAByteChangedIsReadAllTheSame) {
  const std::string whole = Golden(GetParam().golden);
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const char spoilt : {'\xB5', '\0', '\n', ',', '9', '-'}) {
      std::string text = whole;
      text[at] = spoilt;
      ProblemsOf(text);
    }
  }
}

// The page of what is left of the folder, for each of its runs.
TEST_P(CutLog, LeavesTheRestOfThePage) {
  FillFolder();
  const std::string whole = Golden(GetParam().golden);
  for (std::size_t at = 0; at < whole.size(); at = whole.find("\r\n", at) + 2) {
    const std::string without_line = whole.substr(0, at) + whole.substr(whole.find("\r\n", at) + 2);
    for (const std::string& text : {whole.substr(0, at), whole.substr(0, at + 1), without_line}) {
      WriteBytes(folder_ / GetParam().name, text);
      const LoggedRuns logged = RunsInFolder(folder_.path());
      for (std::size_t run = 0; run < logged.runs.size(); ++run) {
        ASSERT_THAT(HtmlOf(LogPageOf(logged, run)), HasSubstr("</html>"));
      }
    }
  }
}

void ReadDataSetRuns(const LogSource& source, std::vector<Problem>& problems) {
  ReadDataSet(source, problems, [](const DataSetRun&) {});
}

template <auto kReader>
void Read(const LogSource& source, std::vector<Problem>& problems) {
  kReader(source, problems);
}

INSTANTIATE_TEST_SUITE_P(
    Each, CutLog,
    ::testing::Values(
        CutFile{"CalibrationLog_20240229_130509.txt", "traditional_run/calibration_log.txt",
                Read<ReadCalibrationLog>},
        CutFile{"CalibrationData_20240229_130509.TXT", "traditional_run/calibration_data.txt",
                Read<ReadCalibrationData>},
        CutFile{"TuneReportCalibData.txt", "traditional_run/tune_report.txt", Read<ReadTuneReport>},
        CutFile{"AIC_20240229_130509.TXT", "aic_ramp_by_mass/aic_log.txt", Read<ReadAicLog>},
        CutFile{"AIC_20240229_130509.TXT", "aic_ramp_by_measurement/aic_log.txt", Read<ReadAicLog>},
        CutFile{"AIC_20240229_130509.TXT", "aic_firmware_search/aic_log.txt", Read<ReadAicLog>},
        CutFile{"AbImmunecalib_SpotFireDataSetLog.csv", "aic_ramp_by_mass/data_set.csv",
                ReadDataSetRuns}),
    [](const auto& row) {
      std::string name = row.param.golden;
      std::replace_if(
          name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
      return name;
    });

}  // namespace
}  // namespace tof::report
