// The program calibrating: results, files, exit codes.
#include <nlohmann/json.hpp>

#include "tests/hosts/program_test_fixture.h"

namespace tof::testing {
namespace {

using nlohmann::json;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

constexpr double kPpm = 1e-6;

using CalibrateProgram = ProgramTest;

TEST_F(CalibrateProgram, CalibratesTheBuiltInInstrument) {
  const ProgramResult run = CalibrateVirtual();
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(run.out, HasSubstr("1790.66223"));
  EXPECT_THAT(run.out, HasSubstr("true errors"));
  EXPECT_THAT(run.out, HasSubstr("log file: " + (folder_ / "Logfiles/CalibrationLog_20240321_")));
  EXPECT_THAT(run.out, HasSubstr("log file: " + (folder_ / "Logfiles/AIC_20240321_")));
}

TEST_F(CalibrateProgram, RampsTheVoltageOfTheBuiltInInstrument) {
  const ProgramResult run = CalibrateVirtual({"--json", "-"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  const json result = json::parse(run.out);
  EXPECT_EQ(result["aic"], true);
  for (const auto& mass : result["masses"]) {
    EXPECT_GE(mass["voltage"], 20.0);
    EXPECT_LE(mass["voltage"], 160.0);
    EXPECT_GT(mass["abundance"], 90'000.0);
    EXPECT_LT(mass["abundance"], 220'000.0);
  }
  // 71 steps, surveyed and walked, then ten spectra of each of ten masses.
  const json counts = result["counts"];
  EXPECT_EQ(counts["spectra"], 242);
  EXPECT_EQ(counts["settle_calls"], 242);
  EXPECT_EQ(counts["settle_slices"], 3 * 242);
  EXPECT_NEAR(result["instrument_seconds"].get<double>(),
              242 * 1.0 + 3 * 242 * 0.4 + counts["setpoint_writes"].get<int>() * 0.02, 1e-6);
}

TEST_F(CalibrateProgram, SearchesMassByMassOnSetpoint83) {
  for (const char* fast : {"AIC_RunFastVersion=No", "AIC_RunFastVersion=Yes"}) {
    const ProgramResult run = CalibrateVirtual(
        {"--set", "Calibration/AIC_SetpointToUse=83", "--flag", fast, "--json", "-"});
    ASSERT_EQ(run.exit_code, 0) << run.err;
    const json result = json::parse(run.out);
    EXPECT_EQ(result["aic"], true);
    for (const auto& mass : result["masses"]) {
      EXPECT_GT(mass["abundance"], 90'000.0) << fast << mass;
      EXPECT_LT(mass["abundance"], 240'000.0) << fast << mass;
    }
  }
}

TEST_F(CalibrateProgram, WaitsForAnInstrumentThatIsNotReadyYet) {
  std::string text = BytesOf(std::filesystem::path(TOF_SOURCE_DIR) / "examples/virtual.xml");
  const std::string status = R"(<status nrdystate="0" runstate="2"/>)";
  text.replace(text.find(status), status.size(), R"(<status><not_ready to_sec="4.2"/></status>)");
  std::ofstream(folder_ / "late.xml") << text;
  const auto seconds = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--suppress-aic", "--json", "-"});
    const ProgramResult run = CalibrateVirtual(std::move(arguments));
    EXPECT_EQ(run.exit_code, 0) << run.err;
    return json::parse(run.out)["instrument_seconds"].get<double>();
  };
  const double waited = seconds({"--instrument", folder_ / "late.xml"}) - seconds({});
  EXPECT_GE(waited, 4.0);
  EXPECT_LE(waited, 6.0);
}

TEST_F(CalibrateProgram, MarksTheMassesThatItCouldNotBringIntoTheBand) {
  const ProgramResult run = CalibrateVirtual({"--set", "Calibration/AIC_RF_HighValue=60"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  EXPECT_THAT(run.out, ContainsRegex("90\\.97664 [^\n]*  above the band"));
  EXPECT_THAT(run.out, ContainsRegex("1790\\.66223 [^\n]*  below the band"));
  EXPECT_THAT(run.out, Not(ContainsRegex("498\\.90119 [^\n]*  (above|below) the band")));
}

TEST_F(CalibrateProgram, FindsTheCoefficientsOfARecordedSpectrum) {
  const ProgramResult run = Calibrate({"--json", "-"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  EXPECT_EQ(run.err, "");
  const json result = json::parse(run.out);
  EXPECT_EQ(result["ok"], true);
  EXPECT_EQ(result["skipped"], false);
  EXPECT_EQ(result["aic"], false);
  EXPECT_EQ(result["status"]["number"], 0);
  EXPECT_NEAR(result["coefficients"]["A"].get<double>(), kSampleA, kSampleA * 2 * kPpm);
  EXPECT_NEAR(result["coefficients"]["t0"].get<double>(), kSampleT0Ns, 0.05);
  EXPECT_LT(result["rms_ppm"].get<double>(), 2.0);
  EXPECT_EQ(result["terms"], json::array({"A", "t0"}));
  EXPECT_FALSE(result.contains("truth"));
  ASSERT_EQ(result["masses"].size(), kSampleMasses.size());
  EXPECT_GT(result["masses"][0]["abundance"].get<double>(), 0.0);
  EXPECT_TRUE(result["masses"][0]["voltage"].is_null());
  // The one that is not stored, then two averaged ones.
  EXPECT_EQ(result["counts"]["spectra"], 3);
  EXPECT_EQ(result["counts"]["settle_slices"], 0);
  for (const auto& file : result["files"]) {
    EXPECT_TRUE(std::filesystem::exists(file.get<std::string>())) << file;
  }
}

TEST_F(CalibrateProgram, TellsTheTruthOfTheVirtualInstrument) {
  const ProgramResult run = CalibrateVirtual({"--json", "-"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  const json truth = json::parse(run.out)["truth"];
  for (const char* lambda : {"at_calibration", "in_band", "weak"}) {
    const double common = truth[lambda]["common_ppm"];
    const double mass_dependent = truth[lambda]["mass_dependent_ppm"];
    EXPECT_NEAR(truth[lambda]["rms_ppm"].get<double>(), std::hypot(common, mass_dependent), 1e-9);
  }
  EXPECT_EQ(truth["rms_ppm"], truth["in_band"]["rms_ppm"]);
  EXPECT_LT(truth["in_band"]["rms_ppm"].get<double>(), 0.5);
  EXPECT_GT(truth["limit_ppm"].get<double>(), 0.08);
  EXPECT_LT(truth["limit_ppm"].get<double>(), 0.16);
  // What the calibrants' dead time has moved is in the coefficients; a weak peak is not moved.
  EXPECT_NEAR(truth["weak"]["common_ppm"].get<double>(), 0.4, 0.4);
}

TEST_F(CalibrateProgram, TellsTheTruthOfATraditionalCalibrationToo) {
  const ProgramResult run = CalibrateVirtual({"--suppress-aic", "--json", "-"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  const json result = json::parse(run.out);
  EXPECT_EQ(result["aic"], false);
  EXPECT_TRUE(result["masses"][0]["voltage"].is_null());
  // Strong peaks read early; a calibration on them reads weak ones heavy.
  EXPECT_GT(result["truth"]["weak"]["common_ppm"].get<double>(), 5.0);
  EXPECT_GT(result["truth"]["in_band"]["rms_ppm"].get<double>(), 5.0);
}

TEST_F(CalibrateProgram, WritesJsonAndTraceIntoFiles) {
  const ProgramResult run =
      Calibrate({"--json", folder_ / "result.json", "--trace", folder_ / "trace.txt"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("rms "));
  EXPECT_EQ(json::parse(BytesOf(folder_ / "result.json"))["ok"], true);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "result.json.part"));
  EXPECT_THAT(BytesOf(folder_ / "trace.txt"),
              HasSubstr("vorntofcaliblib\tEntry\t4\tcalibrateTOFMassAxis\r\n"));
}

TEST_F(CalibrateProgram, GivesTheSameBytesForTheSameSeed) {
  const TemporaryFolder other;
  const auto logs_of = [](const TemporaryFolder& base, const std::string& seed) {
    const ProgramResult run =
        RunTofcal({"calibrate", "--base-folder", base.path().string(), "--seed", seed, "--trace",
                   base / "trace.txt", "--json", base / "result.json"});
    EXPECT_EQ(run.exit_code, 0) << run.err;
    json result = json::parse(BytesOf(base / "result.json"));
    result.erase("wall_seconds");
    result.erase("date");
    result.erase("files");
    std::string bytes = result.dump() + BytesOf(base / "trace.txt");
    for (const auto& file : std::filesystem::directory_iterator(base.path() / "Logfiles")) {
      bytes += file.path().filename().string() + BytesOf(file.path());
    }
    return bytes;
  };
  const TemporaryFolder first;
  const TemporaryFolder second;
  const TemporaryFolder third;
  const std::string bytes = logs_of(first, "5");
  EXPECT_TRUE(bytes == logs_of(second, "5"));
  EXPECT_FALSE(bytes == logs_of(third, "6"));
}

TEST_F(CalibrateProgram, OverridesSettingsFlagsSpectraAndMasses) {
  const ProgramResult run = Calibrate({"--set", "Calibration/UseThisPowerFlag=1", "--spectra", "4",
                                       "--masses", "200.1,250.2,360.4,410.5,520.7", "--json", "-"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  const json result = json::parse(run.out);
  EXPECT_EQ(result["masses"].size(), 5u);
  EXPECT_EQ(result["counts"]["spectra"], 5);
}

TEST_F(CalibrateProgram, GoesOnWithoutALikelyAThatIsGiven) {
  const ProgramResult run =
      Calibrate({"--masses", "200.1,360.4,520.7", "--flag", "SkipCalcLikelyABeforeCalibration=Yes",
                 "--flag", "SkipCalcLikelyABeforeCalibration_LikelyA=0.6501", "--flag",
                 "SkipCalcLikelyABeforeCalibration_t0=0.3"});
  EXPECT_EQ(run.exit_code, 0) << run.err;
}

TEST_F(CalibrateProgram, SkipsWhenTheInstrumentSaysSo) {
  const std::vector<std::string> skip{"--flag", "SkipTOFCalibrationDuringAutotunes=Yes", "--json",
                                      "-"};
  const ProgramResult run = Calibrate(skip);
  EXPECT_EQ(run.exit_code, 0) << run.err;
  const json result = json::parse(run.out);
  EXPECT_EQ(result["ok"], false);
  EXPECT_EQ(result["skipped"], true);
  EXPECT_EQ(result["status"]["number"], 0);
}

TEST_F(CalibrateProgram, AbortsWhenTheUserAsksForIt) {
  const ProgramResult run = Calibrate({"--abort-after", "0.5", "--json", "-"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.err, HasSubstr("calibration failed: [1] User aborted\n"));
  const json result = json::parse(run.out);
  EXPECT_EQ(result["ok"], false);
  EXPECT_EQ(result["status"]["number"], 1);
  EXPECT_EQ(result["status"]["message"], "User aborted");
}

TEST_F(CalibrateProgram, FailsWhereAFaultIsAskedFor) {
  const ProgramResult run = Calibrate({"--fail", "AcqController.SetCalibCoefficients:1"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.err, StartsWith("calibration failed: [440] "));
  EXPECT_THAT(run.err, HasSubstr("AcqController.SetCalibCoefficients"));
}

// The event only tells that there were no flight times.
TEST_F(CalibrateProgram, SaysWhereAnErrorBegan) {
  const ProgramResult run =
      Calibrate({"--fail", "SpecParser.GetCalibrantPeakAttributes:3", "--suppress-aic"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.err, HasSubstr("calibration failed: [13] Type mismatch\n"
                                 "it began with: error[440] in GetAveragedTimesForCalibration(): "
                                 "Planned failure of SpecParser.GetCalibrantPeakAttributes"));
}

TEST_F(CalibrateProgram, FailsWhenTheObjectCannotBeMade) {
  const ProgramResult run = Calibrate({"--fail", "DataDictionary.Initialize:1"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.err, StartsWith("calibration failed: [440] "));
}

TEST_F(CalibrateProgram, ShowsAMessageBoxAsALine) {
  const ProgramResult run = Calibrate({"--fail", "SetpointTable.GetSetpoint:5"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.err, HasSubstr("message box: Error\n"));
}

TEST_F(CalibrateProgram, ShowsNoProgressWhereNobodyWatches) {
  EXPECT_THAT(CalibrateVirtual().err, Not(HasSubstr("calibrating")));
}

}  // namespace
}  // namespace tof::testing
