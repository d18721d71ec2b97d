// The program fitting.
#include <nlohmann/json.hpp>

#include "tests/hosts/program_test_fixture.h"

namespace tof::testing {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;

class FitProgram : public ProgramTest {
 protected:
  // Pairs of the sample's law, to the given decimals of a ns, with `bend_ns` more in the middle.
  std::string WritePairs(double bend_ns = 0.0) const {
    std::string text = "# mass time_ns\n";
    for (const double mass : kSampleMasses) {
      const double x = (mass - 360.0) / 160.0;
      const double time_ns = kSampleT0Ns + std::sqrt(mass) / kSampleA + bend_ns * (1.0 - x * x);
      text += fmt::format("{} {:.4f}\n", mass, time_ns);
    }
    WriteBytes(folder_ / "pairs.txt", text);
    return folder_ / "pairs.txt";
  }
  std::vector<std::string> SpectrumArguments() const {
    return {"fit",
            "--spectrum",
            folder_ / "spectrum.txt",
            "--masses",
            "200.1,250.2,310.3,360.4,410.5,470.6,520.7",
            "--A",
            "0.0006501",
            "--t0",
            "301",
            "--peak-window",
            "0.1"};
  }
};

TEST_F(FitProgram, RecoversTheLawOfExactPairs) {
  const ProgramResult run = RunTofcal({"fit", WritePairs(), "--json", "-"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  const json result = json::parse(run.out);
  EXPECT_NEAR(result["coefficients"]["A"].get<double>(), kSampleA, kSampleA * 1e-8);
  EXPECT_NEAR(result["coefficients"]["t0"].get<double>(), kSampleT0Ns, 1e-3);
  EXPECT_EQ(result["terms"], json::array({"A", "t0"}));
  EXPECT_LT(result["rms_ppm"].get<double>(), 0.01);
  EXPECT_EQ(result["masses"].size(), kSampleMasses.size());
}

TEST_F(FitProgram, ChoosesMoreTermsForABentLawAndSaysWhy) {
  const ProgramResult run = RunTofcal({"fit", WritePairs(1.0), "--terms", "auto"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("leave-one-out ppm"));
  EXPECT_THAT(run.out, HasSubstr("leverage"));
  EXPECT_THAT(run.out, HasSubstr("A t0 C  "));
  EXPECT_THAT(run.out, HasSubstr("taken: leave-one-out "));
}

TEST_F(FitProgram, FitsTheTermsThatAreAskedFor) {
  const ProgramResult run = RunTofcal({"fit", WritePairs(), "--terms", "2", "--json", "-"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  const json result = json::parse(run.out);
  EXPECT_EQ(result["terms"], json::array({"A", "t0", "C", "D"}));
  EXPECT_TRUE(result["candidates"].empty());
}

TEST_F(FitProgram, TakesThePeaksOfASpectrum) {
  auto arguments = SpectrumArguments();
  arguments.insert(arguments.end(), {"--json", "-"});
  const ProgramResult run = RunTofcal(arguments);
  ASSERT_EQ(run.exit_code, 0) << run.err;
  const json result = json::parse(run.out);
  EXPECT_NEAR(result["coefficients"]["A"].get<double>(), kSampleA, kSampleA * 2e-6);
  EXPECT_TRUE(result["masses_without_peak"].empty());
  // The window is what the spectrum covers.
  EXPECT_EQ(result["window_ns"], json::array({20'000.0, 35'999.5}));
}

TEST_F(FitProgram, ReportsAMassWithoutAPeak) {
  auto arguments = SpectrumArguments();
  arguments[4] = "200.1,250.2,290,310.3,360.4,410.5,470.6,520.7";
  const ProgramResult run = RunTofcal(arguments);
  ASSERT_EQ(run.exit_code, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("290.00000              - not used: the spectrum shows no peak"));
}

TEST_F(FitProgram, FailsOnTooFewPairs) {
  WriteBytes(folder_ / "pairs.txt", "200 20000\n");
  const ProgramResult run = RunTofcal({"fit", folder_ / "pairs.txt"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.err, ::testing::StartsWith("fit failed: "));
}

TEST_F(FitProgram, RefusesInputThatCannotBeReadAndWritesNothing) {
  WriteBytes(folder_ / "pairs.txt", "200 20000\n300 x\n");
  WriteBytes(folder_ / "result.json", "{}\n");
  const auto before = Contents();
  for (const auto& [arguments, message] :
       std::vector<std::pair<std::vector<std::string>, std::string>>{
           {{"fit", folder_ / "none.txt"}, "none.txt: found No such file or directory"},
           {{"fit", folder_ / "pairs.txt"}, "pairs.txt:2:5: found \"x\""},
           {{"fit", "--spectrum", folder_ / "instrument.xml", "--masses", "1", "--A", "1", "--t0",
             "0"},
            "instrument.xml:1:1: found \"<instrument\""},
           {{"fit"}, "either a file"}}) {
    auto with_result = arguments;
    with_result.insert(with_result.end(), {"--json", folder_ / "result.json"});
    const ProgramResult run = RunTofcal(with_result);
    EXPECT_EQ(run.exit_code, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr(message));
  }
  EXPECT_TRUE(Contents() == before) << "a file was written";
}

TEST(Program, SaysWhatItIs) {
  EXPECT_EQ(RunTofcal({"--help"}).exit_code, 0);
  const ProgramResult version = RunTofcal({"--version"});
  EXPECT_EQ(version.exit_code, 0);
  EXPECT_THAT(version.out, ::testing::StartsWith("tofcal "));
  EXPECT_EQ(RunTofcal({}).exit_code, 2);
  EXPECT_EQ(RunTofcal({"measure"}).exit_code, 2);
}

}  // namespace
}  // namespace tof::testing
