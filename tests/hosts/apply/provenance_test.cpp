#include "hosts/apply/provenance.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tof::apply {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

std::vector<std::pair<std::string, std::string>> Told(const AppliedCalibration& calibration) {
  std::vector<std::pair<std::string, std::string>> pairs;
  for (const Fact& fact : ProvenanceOf(calibration, "1.2.3", "2024-05-06 07:08:09")) {
    pairs.emplace_back(fact.name, fact.value);
  }
  return pairs;
}

AppliedCalibration SampleCalibration() {
  AppliedCalibration calibration;
  calibration.model = {{6.5e-4, 300.25, 1e-3, -2e-3, 3e-3, -4e-3, 5e-3, -6e-3},
                       {12'000.0, 72'500.0}};
  calibration.has_window = true;
  calibration.terms = {"A", "t0", "C"};
  calibration.file = "runs/today.json";
  calibration.what = "the result of a calibration";
  calibration.date = "2024-05-05";
  return calibration;
}

TEST(Provenance, TellsTheCalibrationInFull) {
  EXPECT_THAT(
      Told(SampleCalibration()),
      ElementsAre(Pair("calibration file", "runs/today.json"),
                  Pair("calibration", "the result of a calibration"),
                  Pair("calibration date", "2024-05-05"),
                  Pair("applied", "2024-05-06 07:08:09"),  //
                  Pair("program", "tofcal 1.2.3"), Pair("formula", std::string(masstime::kFormula)),
                  Pair("terms", "A t0 C"), Pair("A in sqrt(u)/ns", "0.00065"),
                  Pair("t0 in ns", "300.25"), Pair("C in sqrt(u)", "0.001"),
                  Pair("D in sqrt(u)", "-0.002"), Pair("E in sqrt(u)", "0.003"),
                  Pair("F in sqrt(u)", "-0.004"), Pair("G in sqrt(u)", "0.005"),
                  Pair("H in sqrt(u)", "-0.006"), Pair("window in ns", "12000 to 72500")));
}

TEST(Provenance, SaysThatAWindowIsNotRecorded) {
  AppliedCalibration calibration = SampleCalibration();
  calibration.has_window = false;
  EXPECT_THAT(Told(calibration).back(), Pair("window in ns", "not recorded; A and t0 need none"));
}

TEST(Provenance, IsOneLineAFactWhateverANameHolds) {
  AppliedCalibration calibration = SampleCalibration();
  calibration.file = "a\nb\x1f c\x7f\xc3\xbc~.json";
  calibration.date = "\r\n";
  calibration.terms = {"A\t", "t0"};
  const auto told = Told(calibration);
  EXPECT_THAT(told[0], Pair("calibration file", "a?b? c?\xc3\xbc~.json"));
  EXPECT_THAT(told[2], Pair("calibration date", "??"));
  EXPECT_THAT(told[6], Pair("terms", "A? t0"));
}

}  // namespace
}  // namespace tof::apply
