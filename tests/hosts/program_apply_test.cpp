// The program applying a calibration.
#include <nlohmann/json.hpp>

#include "tests/hosts/apply/sample_mzml.h"
#include "tests/hosts/program_test_fixture.h"

namespace tof::testing {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;

class ApplyProgram : public ProgramTest {
 protected:
  // Calibrates the sample first.
  ApplyProgram() {
    const ProgramResult run = Calibrate({"--json", folder_ / "result.json"});
    if (run.exit_code != 0) throw std::runtime_error("the sample does not calibrate: " + run.err);
  }

  ProgramResult Apply(const std::string& coefficients, const std::string& spectrum,
                      const std::string& output, std::vector<std::string> more = {}) const {
    std::vector<std::string> arguments{"apply",         "--coefficients",   folder_ / coefficients,
                                       "--spectrum",    folder_ / spectrum, "--output",
                                       folder_ / output};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunTofcal(arguments);
  }

  std::string LogName() const {
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path() / "Logfiles")) {
      const std::string name = entry.path().filename().string();
      if (name.starts_with("CalibrationLog_")) return "Logfiles/" + name;
    }
    throw std::runtime_error("no calibration log");
  }
};

// m/z of the highest bin in the neighbourhood of `mass`.
double HighestNear(double mass, const std::string& spectrum) {
  std::istringstream lines(spectrum);
  double highest = 0.0;
  double found = 0.0;
  for (std::string line; std::getline(lines, line);) {
    double mz = 0.0;
    double intensity = 0.0;
    if (std::sscanf(line.c_str(), "%lf %lf", &mz, &intensity) != 2) continue;
    if (std::abs(mz - mass) > 0.2 || intensity < highest) continue;
    highest = intensity;
    found = mz;
  }
  return found;
}

TEST_F(ApplyProgram, PutsThePeaksOfTheCalibrantsWhereTheyBelong) {
  const ProgramResult run = Apply("result.json", "spectrum.txt", "masses.txt");
  ASSERT_EQ(run.exit_code, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("1 spectra, 32000 bins"));
  const std::string spectrum = BytesOf(folder_ / "masses.txt");
  for (const double mass : kSampleMasses) {
    // To a bin of 0.5 ns.
    EXPECT_NEAR(HighestNear(mass, spectrum), mass, 2.0 * std::sqrt(mass) * kSampleA * 0.5);
  }
  EXPECT_THAT(spectrum, HasSubstr("# calibration file: " + (folder_ / "result.json")));
}

TEST_F(ApplyProgram, TakesTheCoefficientsOfTheLog) {
  ASSERT_EQ(Apply("result.json", "spectrum.txt", "by_result.txt").exit_code, 0);
  const ProgramResult run = Apply(LogName(), "spectrum.txt", "by_log.txt", {"--run", "1"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("fit 1 of the 1 in a calibration log"));
  const double by_result = HighestNear(360.4, BytesOf(folder_ / "by_result.txt"));
  EXPECT_NEAR(HighestNear(360.4, BytesOf(folder_ / "by_log.txt")), by_result, 1e-7);
}

TEST_F(ApplyProgram, AppliesTheResultOfAFit) {
  std::string pairs;
  for (const double mass : kSampleMasses) {
    pairs += fmt::format("{} {}\n", mass, kSampleT0Ns + std::sqrt(mass) / kSampleA);
  }
  WriteBytes(folder_ / "pairs.txt", pairs);
  ASSERT_EQ(RunTofcal({"fit", folder_ / "pairs.txt", "--json", folder_ / "fit.json"}).exit_code, 0);
  const ProgramResult run = Apply("fit.json", "spectrum.txt", "masses.txt");
  ASSERT_EQ(run.exit_code, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("the result of a fit"));
  // The fit's window ends at its last calibrant.
  EXPECT_THAT(run.out, HasSubstr("bins lie outside the window"));
}

TEST_F(ApplyProgram, TellsMachinesWhatItApplied) {
  WriteBytes(folder_ / "spectrum.mzML", IndexedSample());
  const ProgramResult run = Apply("result.json", "spectrum.mzML", "out.mzML", {"--json", "-"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  const json result = json::parse(run.out);
  EXPECT_EQ(result["spectra"], 3);
  EXPECT_EQ(result["bins"], 8);
  const json calibration = json::parse(BytesOf(folder_ / "result.json"));
  EXPECT_EQ(result["provenance"]["formula"], calibration["formula"]);
  EXPECT_EQ(result["provenance"]["calibration date"], calibration["date"]);
}

TEST_F(ApplyProgram, LeavesNothingBehindWhenItFails) {
  WriteBytes(folder_ / "late_error.txt", SpectrumText(kSampleMasses) + "nonsense 1\n");
  std::string document = IndexedSample();
  WriteBytes(folder_ / "truncated.mzML", document.substr(0, document.size() / 2));
  WriteBytes(folder_ / "old.txt", "precious\n");
  json other = json::parse(BytesOf(folder_ / "result.json"));
  other["formula"] = "another one";
  WriteBytes(folder_ / "other.json", other.dump());
  const auto before = Contents();
  struct Row {
    std::string coefficients, spectrum, output, message;
  };
  for (const Row& row : std::vector<Row>{
           {"result.json", "late_error.txt", "old.txt",
            "late_error.txt:32002:1: found \"nonsense\""},
           {"result.json", "truncated.mzML", "new.mzML", "found malformed XML"},
           {"result.json", "spectrum.txt", "spectrum.txt", "found a file that is also read"},
           {"result.json", "spectrum.txt", "result.json", "found a file that is also read"},
           {"result.json", "spectrum.txt", "new.mzML", "expected the format of the input"},
           {"result.json", "none.txt", "new.txt", "none.txt: found No such file"},
           {"other.json", "spectrum.txt", "new.txt", "coefficients of the formula \"another one\""},
           {"spectrum.txt", "spectrum.txt", "new.txt", "expected the JSON result"}}) {
    const ProgramResult run = Apply(row.coefficients, row.spectrum, row.output);
    EXPECT_EQ(run.exit_code, 2) << row.message;
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr(row.message));
  }
  EXPECT_TRUE(Contents() == before) << "a file was written";
}

TEST_F(ApplyProgram, AsksForWhatItNeeds) {
  const ProgramResult run = RunTofcal({"apply", "--spectrum", folder_ / "spectrum.txt"});
  EXPECT_EQ(run.exit_code, 2);
  EXPECT_THAT(run.err, HasSubstr("needs --coefficients, --spectrum and --output"));
  EXPECT_THAT(Apply("result.json", "spectrum.txt", "new.txt", {"--window", "5,4"}).err,
              HasSubstr("--window: found \"5,4\", expected START,END in ns"));
}

}  // namespace
}  // namespace tof::testing
