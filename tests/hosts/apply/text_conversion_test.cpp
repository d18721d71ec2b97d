#include "hosts/apply/text_conversion.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "instruments/spectra/input_error.h"
#include "tests/hosts/temporary_folder.h"

namespace tof::apply {
namespace {

using ::testing::HasSubstr;
using tof::testing::TemporaryFolder;
using tof::testing::WriteBytes;

AppliedCalibration SampleCalibration() {
  AppliedCalibration calibration;
  calibration.model.coefficients = {6.5e-4, 300.0};
  return calibration;
}

std::string Mass(double time_ns) {
  return fmt::format("{}", masstime::TimeToMass(SampleCalibration().model, time_ns));
}

std::string Converted(const std::string& text, ConversionCounts* counts = nullptr) {
  const TemporaryFolder folder;
  WriteBytes(folder / "in.txt", text);
  std::string result;
  MassAxis axis(SampleCalibration());
  ConvertText(
      folder / "in.txt", {{"calibration file", "r.json"}}, axis,
      [&](std::string_view bytes) { result += bytes; }, [](std::uint64_t) {});
  if (counts != nullptr) *counts = axis.Counts();
  return result;
}

const std::string kHeader =
    "# tofcal apply: flight times turned into m/z\n# calibration file: r.json\n"
    "# columns: m/z intensity\n";

std::string Refusal(const std::string& text) {
  try {
    Converted(text);
    return "none";
  } catch (const spectra::InputError& error) {
    const std::string what = error.what();
    return what.substr(what.find("in.txt"));
  }
}

TEST(TextConversion, ReplacesTheFirstColumnAndKeepsTheRest) {
  EXPECT_EQ(Converted("# time_ns intensity\n"
                      " 20000\t1.50  # saturated\r\n"
                      "\n"
                      "+2.5e4 7"),
            kHeader + "# input: time_ns intensity\n " + Mass(20'000.0) +
                "\t1.50  # saturated\r\n\n" + Mass(25'000.0) + " 7");
}

TEST(TextConversion, CountsBinsBeforeT0) {
  ConversionCounts counts;
  Converted("100 1\n299 1\n400 1\n", &counts);
  EXPECT_EQ(counts.bins, 3u);
  EXPECT_EQ(counts.before_t0, 2u);
  EXPECT_EQ(counts.outside_window, 0u);
}

TEST(TextConversion, RefusesWhatTheReaderRefuses) {
  EXPECT_THAT(Refusal("1 2\n1 2\n"), HasSubstr("in.txt:2:1: found time 1 after 1"));
  EXPECT_THAT(Refusal("1 2\n2\n"), HasSubstr("in.txt:2:2: found the end of the line"));
  EXPECT_THAT(Refusal("1 2\n2 3 4\n"), HasSubstr("in.txt:2:5: found a further column \"4\""));
  EXPECT_THAT(Refusal("1 2\nx 3\n"), HasSubstr("in.txt:2:1: found \"x\""));
  EXPECT_THAT(Refusal("1 2\n3 nan\n"), HasSubstr("in.txt:2:3: found \"nan\""));
  EXPECT_THAT(Refusal("1 2\n"), HasSubstr("found 1 bins with data"));
}

TEST(TextConversion, RefusesWhatHasItsMzAlready) {
  EXPECT_THAT(Refusal(Converted("1 2\n3 4\n")), HasSubstr("has its m/z already"));
}

}  // namespace
}  // namespace tof::apply
