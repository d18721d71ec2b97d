#include "hosts/cli/advice.h"

#include <gtest/gtest.h>

#include <string>

namespace tof::cli {
namespace {

constexpr std::int32_t kNoLikelyA = -822;

MassRow Row(double expected, std::optional<double> time_ns = std::nullopt) {
  return {expected, time_ns, std::nullopt, std::nullopt, std::nullopt, std::nullopt};
}

CalibrationReport Failed(std::int32_t number, std::vector<MassRow> masses = {}) {
  CalibrationReport report;
  report.status_number = number;
  report.masses = std::move(masses);
  return report;
}

constexpr const char* kGiveThem =
    ", or give A and t0\ninstead of having them estimated:\n"
    "  --flag SkipCalcLikelyABeforeCalibration=Yes\n"
    "  --flag SkipCalcLikelyABeforeCalibration_LikelyA=<sqrt(u) per us>\n"
    "  --flag SkipCalcLikelyABeforeCalibration_t0=<us>\n";

TEST(Advice, OnFewMassesIsToGiveMore) {
  const std::string wanted =
      ": the likely A is estimated from about 4 or more. Give more masses (--masses)";
  EXPECT_EQ(AdviceOn(Failed(kNoLikelyA, {Row(91.0)}), {}, ""),
            "1 expected mass" + wanted + kGiveThem);
  EXPECT_EQ(AdviceOn(Failed(kNoLikelyA, {Row(91.0), Row(92.0), Row(93.0)}), {}, ""),
            "3 expected masses" + wanted + kGiveThem);
}

TEST(Advice, OnFourMassesIsToCheckThem) {
  EXPECT_EQ(AdviceOn(Failed(kNoLikelyA, {Row(91.0), Row(92.0), Row(93.0), Row(94.0)}), {}, ""),
            std::string("the peaks of the spectrum do not agree with the masses. Check the masses "
                        "(--masses), let more\npeaks be sought (--flag "
                        "CalcLikelyA_OverrideNumPeaksSought=Yes --set "
                        "Calibration/CalcLikelyA_NumPeaksSought=N)") +
                kGiveThem);
}

TEST(Advice, NamesTheMassesWithoutATimeWhenOthersHaveOne) {
  EXPECT_EQ(AdviceOn(Failed(1, {Row(91.0), Row(159.5, 19'700.0), Row(227.25)}), {}, ""),
            "not every spectrum shows a peak of m/z 91.00000 227.25000: leave these masses out "
            "(--masses), or average\nother spectra\n");
  EXPECT_EQ(AdviceOn(Failed(1, {Row(91.0), Row(159.5)}), {}, ""), "");
  EXPECT_EQ(AdviceOn(Failed(1, {Row(91.0, 15'000.0)}), {}, ""), "");
}

TEST(Advice, TellsTheFileThatFailedAndWhereItBegan) {
  native::FileJournal files;
  files.last_failure = native::FileFailure{"logs/AIC_1.TXT", "No space left on device"};
  EXPECT_EQ(AdviceOn(Failed(61), files, "error[61] in OpenAicLog(): Disk full"),
            "it began with: error[61] in OpenAicLog(): Disk full\n"
            "logs/AIC_1.TXT: No space left on device\n");
  EXPECT_EQ(AdviceOn(Failed(61), {}, "error[61] in calibrateTOFMassAxis(): Disk full"), "");
}

TEST(Advice, IsNoneForACalibrationThatDidNotFail) {
  native::FileJournal files;
  files.last_failure = native::FileFailure{"a", "b"};
  CalibrationReport good = Failed(0);
  good.ok = true;
  EXPECT_EQ(AdviceOn(good, files, "error[5] in X(): y"), "");
  CalibrationReport skipped = Failed(kNoLikelyA);
  skipped.skipped = true;
  EXPECT_EQ(AdviceOn(skipped, files, "error[5] in X(): y"), "");
}

}  // namespace
}  // namespace tof::cli
