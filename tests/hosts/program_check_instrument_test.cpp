// The program checking an instrument.
#include <nlohmann/json.hpp>

#include "tests/hosts/program_test_fixture.h"

namespace tof::testing {
namespace {

using nlohmann::json;
using ::testing::EndsWith;
using ::testing::HasSubstr;

class CheckInstrumentProgram : public ProgramTest {
 protected:
  ProgramResult Check(std::vector<std::string> arguments = {}) const {
    arguments.insert(arguments.begin(),
                     {"check-instrument", "--base-folder", folder_.path().string()});
    return RunTofcal(arguments);
  }
};

TEST_F(CheckInstrumentProgram, PassesTheBuiltInInstrument) {
  const ProgramResult run = Check();
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(run.out, HasSubstr("\npass  SetpointTable.rf-voltage-is-read-back\n"));
  EXPECT_THAT(run.out, HasSubstr(" passed, 0 failed, "));
}

TEST_F(CheckInstrumentProgram, PassesARecordedInstrument) {
  const ProgramResult run =
      Check({"--instrument", folder_ / "instrument.xml", "--data", folder_.path().string()});
  EXPECT_EQ(run.exit_code, 0) << run.out;
  EXPECT_THAT(run.out, HasSubstr("n/a   SetpointTable.rf-voltage-is-read-back: without the "
                                 "setting Calibration/AIC_SetpointToUse"));
}

TEST_F(CheckInstrumentProgram, SaysWhatFailsAndWhy) {
  const ProgramResult run = Check({"--fail", "StatusReader.Read:2"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.out, HasSubstr("FAIL  StatusReader.reads-the-run-state\n"
                                 "      The same wait goes on until"));
  EXPECT_THAT(run.out, HasSubstr("      expected: no error\n"
                                 "      found:    error 440: Planned failure of"));
  EXPECT_THAT(run.out, HasSubstr(" passed, 1 failed, "));
  EXPECT_THAT(run.err, ::testing::StartsWith("instrument check failed: 1 of "));
}

TEST_F(CheckInstrumentProgram, WritesEveryCheckAsJson) {
  const ProgramResult run =
      Check({"--set", "Calibration/AIC_RF_Step=0", "--json", folder_ / "result.json"});
  EXPECT_EQ(run.exit_code, 1);
  const json result = json::parse(BytesOf(folder_ / "result.json"));
  EXPECT_EQ(result["ok"], false);
  EXPECT_EQ(result["failed"], 1);
  EXPECT_EQ(result["checks"].size(),
            result["passed"].get<std::size_t>() + 1 + result["not_applicable"].get<std::size_t>());
  for (const json& check : result["checks"]) {
    EXPECT_FALSE(check["relied_on"].get<std::string>().empty());
    if (check["result"] == "not applicable") {
      EXPECT_FALSE(check["why"].get<std::string>().empty());
    } else if (check["result"] == "fail") {
      EXPECT_EQ(check["id"], "CalibSettings.rf-range-can-be-walked");
      EXPECT_EQ(check["collaborator"], "CalibSettings");
      EXPECT_THAT(check["expected"].get<std::string>(), HasSubstr("AIC_RF_Step above 0"));
      EXPECT_THAT(check["found"].get<std::string>(), EndsWith(" and 0"));
    } else {
      EXPECT_EQ(check["result"], "pass");
    }
  }
}

TEST_F(CheckInstrumentProgram, PutsJsonAloneOnStandardOutput) {
  const ProgramResult run = Check({"--json", "-"});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(json::parse(run.out)["ok"], true);
}

TEST_F(CheckInstrumentProgram, RefusesWhatItCannotUse) {
  const auto before = Contents();
  for (const auto& [arguments, message] :
       std::vector<std::pair<std::vector<std::string>, std::string>>{
           {{"--instrument", folder_ / "none.xml"}, "none.xml"},
           {{"--set", "AIC_RF_Step=0"}, "AIC_RF_Step"},
           {{"--fail", "SpecParser.Nothing:1"}, "\"SpecParser.Nothing\""},
           {{"--instrument", folder_ / "instrument.xml", "--data", folder_.path().string(),
             "--json", folder_ / "instrument.xml"},
            "a file that is also read"},
           {{"--spectra", "3"}, "--spectra"}}) {
    const ProgramResult run = Check(arguments);
    EXPECT_EQ(run.exit_code, 2) << message;
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr(message));
  }
  EXPECT_TRUE(Contents() == before) << "a file was written";
}

}  // namespace
}  // namespace tof::testing
