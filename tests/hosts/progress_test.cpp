#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "hosts/cli/progress.h"
#include "hosts/cli/run_calibrate.h"
#include "hosts/cli/run_check_instrument.h"
#include "tests/hosts/temporary_folder.h"

namespace tof::cli {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

TEST(ProgressText, SaysWhatIsLeft) {
  EXPECT_EQ(ProgressText({"collecting", 0, SpectraPlan{11}, 0.0}), "collecting: 0 of 11 spectra");
  EXPECT_EQ(ProgressText({"collecting", 1, SpectraPlan{11}, 2.0}),
            "collecting: 1 of 11 spectra, about 20 s of instrument time left");
  EXPECT_EQ(ProgressText({"collecting", 100, SpectraPlan{250}, 200.0}),
            "collecting: 100 of 250 spectra, about 5 min of instrument time left");
  EXPECT_EQ(ProgressText({"collecting", 11, SpectraPlan{11}, 22.0}),
            "collecting: 11 of 11 spectra");
}

TEST(ProgressText, PromisesNoMoreThanIsKnown) {
  EXPECT_EQ(ProgressText({"searching", 10, SpectraPlan{100, true}, 10.0}),
            "searching: 10 of at least 100 spectra, at least 90 s of instrument time left");
  EXPECT_EQ(ProgressText({"checking", 3, std::nullopt, 4.2}),
            "checking: 3 spectra, 4 s of instrument time");
  EXPECT_EQ(ProgressText({"preparing", 0, std::nullopt, 0.0}), "preparing");
}

constexpr const char* kToStartOfClearedLine = "\r\033[K";

TEST(Progress, IsOneLineThatIsClearedAtTheEnd) {
  std::ostringstream out;
  {
    Progress progress(out, true);
    progress.Show("one");
    progress.Show("one");
    progress.Show("two");
    EXPECT_EQ(out.str(), "\r\033[Kone\r\033[Ktwo");
  }
  EXPECT_EQ(out.str(), "\r\033[Kone\r\033[Ktwo\r\033[K");
}

TEST(Progress, IsSilentWhereNobodyWatches) {
  std::ostringstream out;
  {
    Progress progress(out, false);
    progress.Show("one");
  }
  EXPECT_EQ(out.str(), "");
}

class ProgressOfARun : public ::testing::Test {
 protected:
  // Few steps of the ramp and few spectra: what they show does not depend on it.
  ProgressOfARun() {
    options_.base_folder = folder_.path().string();
    options_.spectra = std::int16_t{2};
    options_.settings = {"Calibration/AIC_RF_Step=20"};
  }

  // What the line said, one text after the other.
  std::vector<std::string> Calibrate(bool on_a_terminal = true) {
    std::ostringstream out;
    std::ostringstream err;
    RunCalibrate(options_, {out, err, on_a_terminal});
    return TextsOf(err.str());
  }

  static std::vector<std::string> TextsOf(const std::string& shown) {
    std::vector<std::string> texts;
    const std::string separator = kToStartOfClearedLine;
    std::size_t begin = shown.find(separator);
    while (begin != std::string::npos) {
      begin += separator.size();
      const std::size_t end = shown.find(separator, begin);
      texts.push_back(shown.substr(begin, end - begin));
      begin = end;
    }
    return texts;
  }

  testing::TemporaryFolder folder_;
  CalibrateOptions options_;
};

TEST_F(ProgressOfARun, NamesTheStagesOfATraditionalCalibration) {
  options_.suppress_aic = true;
  const std::vector<std::string> texts = Calibrate();
  EXPECT_THAT(texts, Contains(StartsWith("estimating A and t0")));
  EXPECT_THAT(texts, Contains("collecting flight times: 0 of 3 spectra"));
  EXPECT_THAT(
      texts,
      Contains("collecting flight times: 1 of 3 spectra, about 2 s of instrument time left"));
  EXPECT_THAT(texts, Contains("collecting flight times: 3 of 3 spectra"));
  EXPECT_THAT(texts, Contains("putting the instrument back: 3 of 3 spectra"));
}

TEST_F(ProgressOfARun, KnowsHowManySpectraARampTakes) {
  const std::vector<std::string> texts = Calibrate();
  // Eight steps twice, then two spectra of each of ten masses.
  EXPECT_THAT(texts, Contains(StartsWith("surveying the voltages: 1 of 36 spectra, about ")));
  EXPECT_THAT(texts, Contains(StartsWith("choosing the voltages: 10 of 36 spectra, about ")));
  EXPECT_THAT(texts, Contains("collecting flight times: 36 of 36 spectra"));
}

TEST_F(ProgressOfARun, KnowsThatMassByMassTakesAsMany) {
  options_.flags = {"AIC_MinimizeImpactOfDriftOnCalibPointCollection=No"};
  EXPECT_THAT(Calibrate(), Contains("collecting flight times: 36 of 36 spectra"));
}

TEST_F(ProgressOfARun, KnowsTheNumberOnlyBehindASearch) {
  options_.settings = {"Calibration/AIC_SetpointToUse=83"};
  const std::vector<std::string> texts = Calibrate();
  EXPECT_THAT(texts,
              Contains(StartsWith("choosing the voltages: 1 of at least 20 spectra, at least ")));
  const std::string& last_of_collecting =
      *std::find_if(texts.rbegin(), texts.rend(),
                    [](const auto& text) { return text.rfind("collecting", 0) == 0; });
  // "collecting flight times: 97 of 97 spectra"
  std::istringstream words(last_of_collecting.substr(last_of_collecting.find(':') + 1));
  std::string done;
  std::string of;
  std::string planned;
  words >> done >> of >> planned;
  EXPECT_EQ(done, planned);
  EXPECT_THAT(last_of_collecting, Not(HasSubstr("at least")));
}

TEST_F(ProgressOfARun, KnowsThatGivenVoltagesNeedNoSearch) {
  options_.flags = {"EnableAICAltSPPlugValues=Yes"};
  for (int mass = 1; mass <= 10; ++mass) {
    options_.settings.push_back("Calibration/AICAltSPPlugValueForMass" + std::to_string(mass) +
                                "=75");
  }
  EXPECT_THAT(Calibrate(), Contains("collecting flight times: 20 of 20 spectra"));
}

TEST_F(ProgressOfARun, ChangesNeitherTraceNorLogs) {
  options_.suppress_aic = true;
  options_.trace_file = folder_ / "watched.txt";
  Calibrate();
  options_.trace_file = folder_ / "unwatched.txt";
  EXPECT_THAT(Calibrate(false), ::testing::IsEmpty());
  EXPECT_EQ(testing::BytesOf(folder_ / "watched.txt"), testing::BytesOf(folder_ / "unwatched.txt"));
}

TEST_F(ProgressOfARun, ShowsThatAnInstrumentIsBeingChecked) {
  CheckOptions options;
  options.base_folder = options_.base_folder;
  std::ostringstream out;
  std::ostringstream err;
  RunCheckInstrument(options, {out, err, true});
  EXPECT_THAT(TextsOf(err.str()), Contains(StartsWith("checking the instrument: 2 spectra, ")));
}

}  // namespace
}  // namespace tof::cli
