// The page of a watched run holds what the run measured, each time where it belongs.
#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "tests/hosts/program_test_fixture.h"

namespace tof::testing {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;

std::size_t CountOf(const std::string& part, const std::string& text) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

struct Way {
  const char* name;
  std::vector<std::string> arguments;
  std::size_t voltages;  // of the survey, and of the choice
};

class LivePage : public ProgramTest, public ::testing::WithParamInterface<Way> {
 protected:
  LivePage() {
    std::vector<std::string> arguments{
        "--spectra",           "3",      "--set", "Calibration/AIC_RF_Step=20", "--report",
        folder_ / "page.html", "--json", "-"};
    arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());
    const ProgramResult run = CalibrateVirtual(arguments);
    if (run.exit_code != 0) throw std::runtime_error("does not calibrate: " + run.err);
    result_ = json::parse(run.out);
    page_ = BytesOf(folder_ / "page.html");
  }
  json result_;
  std::string page_;
};

TEST_P(LivePage, HasTheMeasurementsWhoseMeanEachTimeIs) {
  ASSERT_EQ(result_["masses"].size(), 10u);
  for (const json& mass : result_["masses"]) {
    EXPECT_THAT(page_, HasSubstr(fmt::format("3 measurements, mean {:.4f} ns",
                                             mass["time_ns"].get<double>())));
  }
}

TEST_P(LivePage, HasEveryVoltageOfTheSurveyForEveryMass) {
  EXPECT_EQ(CountOf("<td>the survey</td>", page_), 10 * GetParam().voltages);
  EXPECT_EQ(CountOf("<td>the choice</td>", page_), 10 * GetParam().voltages);
}

TEST_P(LivePage, CountsTheSpectraOfTheStages) {
  const auto row = [](const char* stage, std::size_t spectra) {
    return ::testing::ContainsRegex(
        fmt::format("<th scope=\"row\">{}</th><td class=\"number\"><data value=\"1\">1</data></td>"
                    "<td class=\"number\"><data value=\"[0-9.e+-]*\">[0-9.]*</data></td>"
                    "<td class=\"number\"><data value=\"{}\">",
                    stage, spectra));
  };
  if (GetParam().voltages > 0) {
    EXPECT_THAT(page_, row("surveying the voltages", GetParam().voltages));
    EXPECT_THAT(page_, row("choosing the voltages", GetParam().voltages));
    EXPECT_THAT(page_, row("collecting flight times", 30));
    EXPECT_THAT(page_, ::testing::ContainsRegex("<td>75</td><td>20 to 160 \\([0-9]+ writes\\)</td>"
                                                "<td>75</td><td>as before</td>"));
  } else {
    EXPECT_THAT(page_, row("collecting flight times", 4));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Ways, LivePage,
    ::testing::Values(
        Way{"ByMeasurement", {}, 8},
        Way{"ByMass", {"--flag", "AIC_MinimizeImpactOfDriftOnCalibPointCollection=No"}, 8},
        Way{"Traditional", {"--suppress-aic"}, 0}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace tof::testing
