#include "hosts/apply/applied_calibration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "hosts/apply/provenance.h"
#include "instruments/spectra/input_error.h"
#include "tests/hosts/temporary_folder.h"

namespace tof::apply {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using tof::testing::TemporaryFolder;
using tof::testing::WriteBytes;

const char* const kLog = TOF_SOURCE_DIR "/tests/golden/traditional_run/calibration_log.txt";

json GoodResult() {
  json result{{"ok", true},
              {"date", "2026-11-21T17:05:09Z"},
              {"formula", masstime::kFormula},
              {"window_ns", {20000.0, 36000.0}},
              {"terms", {"A", "t0", "C"}}};
  for (const char* name : {"A", "t0", "C", "D", "E", "F", "G", "H"}) {
    result["coefficients"][name] = 0.0;
  }
  result["coefficients"]["A"] = 6.5e-4;
  result["coefficients"]["t0"] = 300.0;
  result["coefficients"]["C"] = 1e-3;
  return result;
}

AppliedCalibration Read(const std::string& text, CalibrationChoice choice = {}) {
  const TemporaryFolder folder;
  WriteBytes(folder / "result.json", text);
  choice.file = folder / "result.json";
  return ReadCalibration(choice);
}

template <class Call>
std::string RefusalOf(Call call) {
  try {
    call();
    return "none";
  } catch (const spectra::InputError& error) {
    return error.what();
  }
}

TEST(AppliedCalibration, IsReadFromAResult) {
  const AppliedCalibration calibration = Read(GoodResult().dump());
  EXPECT_EQ(calibration.model.coefficients[0], 6.5e-4);
  EXPECT_EQ(calibration.model.coefficients[2], 1e-3);
  EXPECT_EQ(calibration.model.window.end_ns, 36000.0);
  EXPECT_THAT(calibration.terms, ElementsAre("A", "t0", "C"));
  EXPECT_EQ(calibration.date, "2026-11-21T17:05:09Z");
}

TEST(AppliedCalibration, IsReadFromALogWithTheWindowThatIsGiven) {
  const AppliedCalibration calibration = ReadCalibration({kLog, {}, {{15'000.0, 65'000.0}}});
  EXPECT_EQ(calibration.model.coefficients[1], 299.97916667);
  EXPECT_EQ(calibration.model.window.start_ns, 15'000.0);
  EXPECT_EQ(calibration.what, "fit 1 of the 1 in a calibration log");
  EXPECT_THAT(calibration.terms, ElementsAre("A", "t0", "C", "D", "E", "F", "G"));
}

TEST(AppliedCalibration, NeedsTheWindowOfALogThatHasTerms) {
  EXPECT_THAT(RefusalOf([] {
                ReadCalibration({kLog, {}, {}});
              }),
              HasSubstr("found terms beyond A and t0, expected --window START,END in ns"));
}

TEST(AppliedCalibration, SaysHowManyFitsALogHas) {
  EXPECT_THAT(RefusalOf([] {
                ReadCalibration({kLog, 2, {}});
              }),
              HasSubstr("--run: found 2, expected one of the 1 fits"));
}

TEST(AppliedCalibration, RefusesOptionsOfALogForAResult) {
  EXPECT_THAT(RefusalOf([] { Read(GoodResult().dump(), {{}, 1, {}}); }), HasSubstr("--run: "));
  EXPECT_THAT(RefusalOf([] {
                Read(GoodResult().dump(), {{}, {}, {{1.0, 2.0}}});
              }),
              HasSubstr("--window: "));
}

TEST(AppliedCalibration, RefusesCoefficientsOfAnotherFormula) {
  json result = GoodResult();
  result["formula"] = "powers of the time, version 3";
  EXPECT_THAT(RefusalOf([&] { Read(result.dump()); }),
              HasSubstr("found coefficients of the formula \"powers of the time, version 3\", "
                        "expected \"tof-mass "));
  result.erase("formula");
  EXPECT_THAT(RefusalOf([&] { Read(result.dump()); }), HasSubstr("found no key \"formula\""));
}

TEST(AppliedCalibration, RefusesTheResultOfAFailure) {
  json result = GoodResult();
  result["coefficients"] = nullptr;
  EXPECT_THAT(RefusalOf([&] { Read(result.dump()); }),
              HasSubstr("found \"coefficients\": \"null\", expected the coefficients of a "
                        "calibration or fit that succeeded"));
}

TEST(AppliedCalibration, RefusesACurveThatDoesNotRise) {
  json result = GoodResult();
  result["coefficients"]["H"] = -0.9;
  EXPECT_THAT(RefusalOf([&] { Read(result.dump()); }), HasSubstr("m/z falls with flight time"));
  result["coefficients"]["A"] = -1.0;
  EXPECT_THAT(RefusalOf([&] { Read(result.dump()); }), HasSubstr("found A = -1"));
}

TEST(AppliedCalibration, RefusesDamagedTextWithItsPlace) {
  EXPECT_THAT(RefusalOf([] { Read("{\"ok\": true,\n \"date\" 5}"); }),
              HasSubstr("result.json:2:9: found text that is no JSON"));
  EXPECT_THAT(RefusalOf([] { Read(""); }), HasSubstr("the JSON result of calibrate or fit"));
}

TEST(Provenance, NamesFileDateFormulaTermsAndCoefficients) {
  AppliedCalibration calibration = Read(GoodResult().dump());
  calibration.file = "a\nb.json";
  std::string text;
  for (const Fact& fact : ProvenanceOf(calibration, "1.2.3", "2026-11-22T00:00:00Z")) {
    text += fact.name + "=" + fact.value + ";";
  }
  EXPECT_THAT(text, HasSubstr("calibration file=a?b.json;"));
  EXPECT_THAT(text, HasSubstr("calibration date=2026-11-21T17:05:09Z;"));
  EXPECT_THAT(text, HasSubstr("applied=2026-11-22T00:00:00Z;"));
  EXPECT_THAT(text, HasSubstr("terms=A t0 C;"));
  EXPECT_THAT(text, HasSubstr("A in sqrt(u)/ns=0.00065;"));
  EXPECT_THAT(text, HasSubstr("window in ns=20000 to 36000;"));
}

}  // namespace
}  // namespace tof::apply
