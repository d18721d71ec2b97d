// Report pages as the program writes them: of a run that it watches, and of log files.
#include <nlohmann/json.hpp>

#include "tests/hosts/program_test_fixture.h"

namespace tof::testing {
namespace {

using nlohmann::json;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class ReportProgram : public ProgramTest {
 protected:
  // Without its end, which is long and the same on every page.
  std::string Page() const {
    const std::string html = BytesOf(folder_ / "page.html");
    return html.substr(0, html.find("<footer>"));
  }
  ProgramResult Report(std::vector<std::string> arguments = {}) const {
    arguments.insert(arguments.begin(),
                     {"report", folder_.path().string(), "--out", folder_ / "page.html"});
    return RunTofcal(arguments);
  }
  // The files of Logfiles by their names.
  std::map<std::string, std::string> Logs() const {
    std::map<std::string, std::string> logs;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path() / "Logfiles")) {
      logs[entry.path().filename().string()] = BytesOf(entry.path());
    }
    return logs;
  }
  std::filesystem::path LogNamed(const std::string& start) const {
    for (const auto& [name, bytes] : Logs()) {
      if (name.rfind(start, 0) == 0) return folder_.path() / "Logfiles" / name;
    }
    throw std::runtime_error("no log " + start);
  }
};

TEST_F(ReportProgram, WritesAPageOfTheRun) {
  const ProgramResult run = CalibrateVirtual({"--report", folder_ / "page.html"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  EXPECT_THAT(Page(), StartsWith("<!DOCTYPE html>"));
  EXPECT_THAT(BytesOf(folder_ / "page.html"), EndsWith("</html>\n"));
  EXPECT_THAT(Page(), HasSubstr("Calibrated: abundance-immune, in the first fitting pass"));
}

TEST_F(ReportProgram, WatchesWithoutChangingAnything) {
  json results[2];
  std::map<std::string, std::string> logs[2];
  for (int i = 0; i < 2; ++i) {
    const std::string trace = folder_ / ("trace" + std::to_string(i));
    std::vector<std::string> arguments{"--json", "-", "--trace", trace};
    if (i == 1) arguments.insert(arguments.end(), {"--report", folder_ / "page.html"});
    results[i] = json::parse(CalibrateVirtual(arguments).out);
    for (const char* const of_the_moment : {"wall_seconds", "date"})
      results[i].erase(of_the_moment);
    logs[i] = Logs();
    logs[i]["trace"] = BytesOf(trace);
    std::filesystem::remove_all(folder_.path() / "Logfiles");
  }
  EXPECT_EQ(results[0], results[1]);
  EXPECT_EQ(logs[0], logs[1]);
}

TEST_F(ReportProgram, WritesAPageOfAFailureToo) {
  const ProgramResult run =
      CalibrateVirtual({"--abort-after", "200", "--report", folder_ / "page.html"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(Page(), HasSubstr("Not calibrated: [1] User aborted"));
  EXPECT_THAT(Page(), HasSubstr("the instrument is not as it was: setpoint 83 is "));
}

TEST_F(ReportProgram, SaysWhyTheCoefficientsWereBad) {
  // An interval for t0 that no fit gets into: twice bad.
  const ProgramResult run =
      CalibrateVirtual({"--suppress-aic", "--set", "Calibration/Targett0PercentError=1E-6",
                        "--report", folder_ / "page.html"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(Page(), HasSubstr("Not calibrated: [-1] Calibration failed: bad coefficients "
                                "returned; traditional, not abundance-immune, in the second "
                                "fitting pass, as the first gave bad coefficients, while checking "
                                "the coefficients; every setpoint is as it was before; "));
}

TEST_F(ReportProgram, KnowsAnAbundanceImmuneRunThatDidNotGetFar) {
  const ProgramResult run = CalibrateVirtual(
      {"--set", "Calibration/TargetAPercentError=1E-9", "--report", folder_ / "page.html"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(Page(), HasSubstr("Not calibrated: [-822] Failed to find a Likely A and t0 value; "
                                "abundance-immune, in the first fitting pass, while estimating A"));
}

TEST_F(ReportProgram, ShowsARecordedInstrument) {
  ASSERT_EQ(Calibrate({"--report", folder_ / "page.html"}).exit_code, 0);
  EXPECT_THAT(Page(), HasSubstr("Calibrated: traditional"));
  EXPECT_THAT(Page(), HasSubstr("Not measured: a traditional calibration surveys no voltages."));
}

TEST_F(ReportProgram, StopsBeforeARunWhosePageCannotBeWritten) {
  const ProgramResult run = CalibrateVirtual({"--report", folder_ / "no_folder/page.html"});
  EXPECT_EQ(run.exit_code, 2);
  EXPECT_THAT(run.err, HasSubstr("no_folder/page.html"));
  EXPECT_FALSE(std::filesystem::exists(folder_.path() / "Logfiles"));
}

TEST_F(ReportProgram, KeepsItsInputs) {
  const ProgramResult run = Calibrate({"--report", folder_ / "instrument.xml"});
  EXPECT_EQ(run.exit_code, 2);
  EXPECT_THAT(run.err, HasSubstr("a file that is also read"));
}

TEST_F(ReportProgram, MakesThePageOfAPastRun) {
  ASSERT_EQ(CalibrateVirtual().exit_code, 0);
  const ProgramResult report = Report();
  EXPECT_EQ(report.exit_code, 0);
  EXPECT_EQ(report.err, "");
  EXPECT_THAT(report.out, HasSubstr("* run 1: 20240321 09:00:00, calibrated, AIC log\n"));
  EXPECT_THAT(report.out, HasSubstr("what was put back is not recorded"));
  EXPECT_THAT(Page(), HasSubstr("Calibrated: abundance-immune, in the first fitting pass; what "
                                "was put back is not recorded."));
  EXPECT_THAT(Page(), HasSubstr("Time per stage: not recorded."));
}

TEST_F(ReportProgram, ShowsTheNewestOfSeveralRunsOrTheOneAskedFor) {
  ASSERT_EQ(CalibrateVirtual().exit_code, 0);
  ASSERT_EQ(CalibrateVirtual({"--suppress-aic"}).exit_code, 0);
  ASSERT_EQ(CalibrateVirtual({"--abort-after", "200"}).exit_code, 1);
  EXPECT_THAT(Report().out, HasSubstr("* run 3: 20240321 09:00:00, not calibrated"));
  EXPECT_THAT(Page(), HasSubstr("Not calibrated: it broke off before new coefficients"));
  EXPECT_THAT(Report({"--run", "2"}).out, HasSubstr("* run 2: 20240321 09:00:00, calibrated\n"));
  EXPECT_THAT(Page(), HasSubstr("Calibrated: traditional"));
  EXPECT_THAT(Report({"--run", "1"}).out, HasSubstr("Calibrated: abundance-immune"));

  const ProgramResult beyond = Report({"--run", "4"});
  EXPECT_EQ(beyond.exit_code, 2);
  EXPECT_THAT(beyond.err, HasSubstr("--run: found 4, expected a run from 1 to 3"));
}

TEST_F(ReportProgram, KnowsAnAbundanceImmuneRunWithoutItsLog) {
  ASSERT_EQ(CalibrateVirtual({"--flag", "AICLoggingEnabled=0"}).exit_code, 0);
  EXPECT_THAT(Report().out, HasSubstr("abundance-immune without an AIC log"));
  EXPECT_THAT(Page(), HasSubstr("Not measured: there is no survey with flight times."));
}

TEST_F(ReportProgram, SaysWhatItCannotReadAndShowsTheRest) {
  ASSERT_EQ(CalibrateVirtual().exit_code, 0);
  const auto log = LogNamed("CalibrationLog_");
  WriteBytes(log, BytesOf(log).substr(0, 700));
  const ProgramResult report = Report();
  EXPECT_EQ(report.exit_code, 0);
  EXPECT_THAT(report.err, HasSubstr("ends in the middle of a line"));
  EXPECT_THAT(Page(), HasSubstr("What could not be read"));
  EXPECT_THAT(Page(), HasSubstr("Calibrated: abundance-immune"));
}

TEST_F(ReportProgram, NeedsAFolderOfLogs) {
  EXPECT_EQ(RunTofcal({"report"}).exit_code, 2);
  const ProgramResult none = RunTofcal({"report", folder_ / "nowhere"});
  EXPECT_EQ(none.exit_code, 2);
  EXPECT_THAT(none.err, HasSubstr("nowhere: found no folder, expected a folder of log files"));
  const ProgramResult empty = Report();
  EXPECT_EQ(empty.exit_code, 2);
  EXPECT_THAT(empty.err, HasSubstr("expected log files of a calibration"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "page.html"));
}

TEST_F(ReportProgram, DoesNotReplaceALog) {
  ASSERT_EQ(CalibrateVirtual().exit_code, 0);
  const std::string log = LogNamed("AIC_").string();
  const ProgramResult report = RunTofcal({"report", folder_.path().string(), "--out", log});
  EXPECT_EQ(report.exit_code, 2);
  EXPECT_THAT(report.err, HasSubstr("a file that is also read"));
}

}  // namespace
}  // namespace tof::testing
