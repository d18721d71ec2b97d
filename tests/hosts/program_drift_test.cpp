// The program looking at many calibrations.
#include <nlohmann/json.hpp>

#include "tests/hosts/program_test_fixture.h"

namespace tof::testing {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::Not;

// Twenty calibrations, a day each; from the twelfth on the flight times are 40 ppm longer.
std::string DataSet() {
  std::string text = "Acq Date, Acq Time, MassIdx, MeasurementIdx, TOF, Abundance\r\n";
  for (int day = 1; day <= 20; ++day) {
    for (int mass = 0; mass < 2; ++mass) {
      for (int k = 0; k < 3; ++k) {
        const double time_ns = 20'000.0 * (mass + 1) * (day < 12 ? 1.0 : 1.00004);
        text += fmt::format("202401{:02}, 120000, {}, {}, {}, 5000\r\n", day, mass, k, time_ns);
      }
    }
  }
  return text;
}

class DriftProgram : public ::testing::Test {
 protected:
  DriftProgram() { WriteBytes(folder_ / "data.csv", DataSet()); }
  TemporaryFolder folder_;
};

TEST_F(DriftProgram, ShowsDatesAndJumps) {
  const ProgramResult run = RunTofcal({"drift", folder_ / "data.csv"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("data.csv: 120 rows\n"));
  EXPECT_THAT(run.out, HasSubstr("20 runs, 2024-01-01 12:00:00 to 2024-01-20 12:00:00"));
  EXPECT_THAT(run.out, HasSubstr("2024-01-12 12:00:00     1        1      40001.6000          5000 "
                                 "    +40.00  jump x1"));
  EXPECT_THAT(run.out, HasSubstr("1 jumps:\n  2024-01-11 12:00:00 to 2024-01-12 12:00:00: 2 "
                                 "masses, flight time +40.00 to +40.00 ppm"));
}

TEST_F(DriftProgram, TellsMachinesTheSame) {
  const ProgramResult run =
      RunTofcal({"drift", folder_ / "data.csv", "--by", "month", "--json", "-"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  const json result = json::parse(run.out);
  const json& instrument = result["instruments"][0];
  EXPECT_EQ(instrument["runs"], 20);
  EXPECT_EQ(instrument["period"], "month");
  EXPECT_EQ(instrument["jump_count"], 2);
  EXPECT_EQ(instrument["masses"][1]["periods"].size(), 1u);
  EXPECT_NEAR(instrument["masses"][1]["drift_ppm"].get<double>(), 40.0, 1e-6);
}

TEST_F(DriftProgram, MakesAPageThatNeedsNothingElse) {
  const ProgramResult run =
      RunTofcal({"drift", folder_ / "data.csv", "--report", folder_ / "page.html"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  const std::string page = BytesOf(folder_ / "page.html");
  EXPECT_THAT(page, HasSubstr("Instruments: 1; runs: 20; jumps: 1."));
  EXPECT_THAT(page, HasSubstr("default-src 'none'"));
  EXPECT_THAT(page, HasSubstr(R"({"id":"chart-drift-0","kind":"history")"));
  const ProgramResult refused =
      RunTofcal({"drift", folder_ / "data.csv", "--report", folder_ / "data.csv"});
  EXPECT_EQ(refused.exit_code, 2);
  EXPECT_EQ(BytesOf(folder_ / "data.csv"), DataSet());
}

TEST_F(DriftProgram, CountsBadRowsWithTheirLines) {
  WriteBytes(folder_ / "data.csv", DataSet() + "20240121, 120000, 0, 0, 2000");
  const ProgramResult run = RunTofcal({"drift", folder_ / "data.csv"});
  EXPECT_EQ(run.exit_code, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("120 rows, 1 bad rows\n  line 122: fewer than 6 columns"));
}

TEST_F(DriftProgram, TellsInstrumentsApartByLabelOrPath) {
  std::filesystem::copy(folder_ / "data.csv", folder_ / "other.csv");
  const ProgramResult run =
      RunTofcal({"drift", "lab 1=" + folder_ / "data.csv", folder_ / "other.csv",
                 "lab 1=" + folder_ / "other.csv", "--json", "-"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  const json result = json::parse(run.out);
  ASSERT_EQ(result["instruments"].size(), 2u);
  EXPECT_EQ(result["instruments"][0]["label"], "lab 1");
  EXPECT_EQ(result["instruments"][0]["runs"], 40);
  EXPECT_EQ(result["instruments"][1]["label"], folder_ / "other.csv");
}

TEST_F(DriftProgram, ReadsWhatTheProgramItselfLeaves) {
  for (const char* seed : {"1", "2"}) {
    ASSERT_EQ(RunTofcal({"calibrate", "--base-folder", folder_.path().string(), "--seed", seed})
                  .exit_code,
              0);
  }
  const ProgramResult run =
      RunTofcal({"drift", folder_ / "Logfiles/AbImmunecalib_SpotFireDataSetLog.csv"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr(": 2 runs"));
  EXPECT_THAT(run.out, Not(HasSubstr("bad rows")));
}

TEST_F(DriftProgram, RefusesWhatItCannotRead) {
  EXPECT_THAT(RunTofcal({"drift"}).err, HasSubstr("drift: needs a data-set file"));
  const ProgramResult none = RunTofcal({"drift", folder_ / "none.csv"});
  EXPECT_EQ(none.exit_code, 2);
  EXPECT_THAT(none.err, HasSubstr("none.csv: found No such file or directory"));
  const ProgramResult onto_itself =
      RunTofcal({"drift", folder_ / "data.csv", "--json", folder_ / "data.csv"});
  EXPECT_EQ(onto_itself.exit_code, 2);
  EXPECT_EQ(BytesOf(folder_ / "data.csv"), DataSet());
}

}  // namespace
}  // namespace tof::testing
