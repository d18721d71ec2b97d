#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

#include "hosts/cli/coefficient_names.h"
#include "hosts/cli/json_report.h"
#include "hosts/cli/text_report.h"

namespace tof::cli {
namespace {

using nlohmann::ordered_json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

CalibrationReport GoodReport() {
  CalibrationReport report;
  report.ok = true;
  report.masses = {{91.0, 15000.5, 91.000091, 1.0, std::nullopt, 1234.0},
                   {159.0, std::nullopt, std::nullopt, std::nullopt, std::nullopt, std::nullopt}};
  report.coefficients = CoefficientRecord{0.00065, 300.0, 1e-4};
  report.terms = {"A", "t0", "C"};
  report.rms_ppm = 1.0;
  report.max_ppm = 1.0;
  report.loo_ppm = 2.0;
  report.counts = {11, 2, 3, 0, 0};
  report.instrument_seconds = 11.04;
  report.wall_seconds = 0.5;
  report.files = {"out/Logfiles/a.txt"};
  return report;
}

std::vector<std::string> KeysOf(const ordered_json& json) {
  std::vector<std::string> keys;
  for (const auto& item : json.items()) keys.push_back(item.key());
  return keys;
}

TEST(JsonReport, HasEveryKeyInItsOrder) {
  const auto json = ordered_json::parse(JsonOf(GoodReport()));
  EXPECT_THAT(KeysOf(json),
              ElementsAre("ok", "status", "skipped", "aic", "masses", "date", "formula",
                          "window_ns", "coefficients", "terms", "rms_ppm", "max_ppm", "loo_ppm",
                          "counts", "instrument_seconds", "wall_seconds", "files"));
  EXPECT_THAT(KeysOf(json["status"]), ElementsAre("number", "message"));
  EXPECT_THAT(KeysOf(json["masses"][0]), ElementsAre("expected", "time_ns", "calculated",
                                                     "error_ppm", "voltage", "abundance"));
  EXPECT_THAT(KeysOf(json["coefficients"]), ElementsAre("A", "t0", "C", "D", "E", "F", "G", "H"));
  EXPECT_THAT(KeysOf(json["counts"]), ElementsAre("spectra", "setpoint_writes", "setpoint_reads",
                                                  "settle_calls", "settle_slices"));
}

TEST(JsonReport, GivesNumbersToTheLastDigitAndNullForTheUnknown) {
  const auto json = ordered_json::parse(JsonOf(GoodReport()));
  EXPECT_EQ(json["masses"][0]["calculated"], 91.000091);
  EXPECT_TRUE(json["masses"][0]["voltage"].is_null());
  EXPECT_TRUE(json["masses"][1]["time_ns"].is_null());
  EXPECT_EQ(json["coefficients"]["A"], 0.00065);
  EXPECT_EQ(json["terms"], ordered_json::array({"A", "t0", "C"}));
}

TEST(JsonReport, GivesNullForAFigureThatIsNotFinite) {
  CalibrationReport report = GoodReport();
  report.loo_ppm = NAN;
  EXPECT_TRUE(ordered_json::parse(JsonOf(report))["loo_ppm"].is_null());
}

TEST(JsonReport, TellsTheTruthOfAVirtualInstrument) {
  CalibrationReport report = GoodReport();
  report.truth = Truth{{1.0, 0.5, 0.8, 2.0}, {3.0, 2.5, 1.8, 4.0}, {5.0, 4.5, 2.8, 6.0}, 0.1};
  const auto truth = ordered_json::parse(JsonOf(report))["truth"];
  EXPECT_THAT(KeysOf(truth),
              ElementsAre("rms_ppm", "max_ppm", "at_calibration", "in_band", "weak", "limit_ppm"));
  EXPECT_EQ(truth["rms_ppm"], 3.0);
  EXPECT_EQ(truth["max_ppm"], 4.0);
  EXPECT_EQ(truth["at_calibration"]["mass_dependent_ppm"], 0.8);
  EXPECT_EQ(truth["weak"]["common_ppm"], 4.5);
  EXPECT_EQ(truth["limit_ppm"], 0.1);
}

TEST(JsonReport, OfAFailureCarriesItsNumberAndText) {
  CalibrationReport report;
  report.status_number = -822;
  report.status_message = "Failed to find a Likely A and t0 value";
  const auto json = ordered_json::parse(JsonOf(report));
  EXPECT_EQ(json["ok"], false);
  EXPECT_EQ(json["status"]["number"], -822);
  EXPECT_EQ(json["status"]["message"], "Failed to find a Likely A and t0 value");
  EXPECT_TRUE(json["coefficients"].is_null());
  EXPECT_TRUE(json["rms_ppm"].is_null());
}

TEST(JsonReport, SurvivesATextThatIsNotUtf8) {
  CalibrationReport report;
  report.status_message = "Ger\xE4t";
  EXPECT_TRUE(ordered_json::accept(JsonOf(report)));
}

TEST(TextReport, ShowsMassesErrorsSummaryAndFiles) {
  EXPECT_EQ(
      TableOf(GoodReport()),
      "  expected m/z       time, ns     calculated       ppm   voltage   abundance\n"
      "      91.00000     15000.5000       91.00009    +1.000         -        1234\n"
      "     159.00000              -              -         -         -           -  no peak\n"
      "\n"
      "A = 0.00065 sqrt(u)/ns, t0 = 300 ns, C = 0.0001 (3 coefficients fitted)\n"
      "rms 1.000 ppm, max 1.000 ppm, leave-one-out 2.000 ppm\n"
      "11 spectra, 11.0 s of instrument time, 0.50 s\n"
      "log file: out/Logfiles/a.txt\n");
}

TEST(TextReport, MarksTheMassesOutsideTheBand) {
  CalibrationReport report = GoodReport();
  report.masses[0].outside_band = BandSide::kBelow;
  EXPECT_THAT(TableOf(report), HasSubstr("1234  below the band\n"));
  report.masses[0].outside_band = BandSide::kAbove;
  EXPECT_THAT(TableOf(report), HasSubstr("1234  above the band\n"));
}

TEST(TextReport, SaysThatACalibrationWasSkipped) {
  CalibrationReport report;
  report.skipped = true;
  EXPECT_THAT(TableOf(report), HasSubstr("skipped: "));
  EXPECT_THAT(TableOf(report), Not(HasSubstr("rms")));
}

TEST(CoefficientNames, NameTheFittedOnes) {
  EXPECT_THAT(NamesOfFitted(0), ElementsAre("A", "t0"));
  EXPECT_THAT(NamesOfFitted(0b100001), ElementsAre("A", "t0", "C", "H"));
}

}  // namespace
}  // namespace tof::cli
