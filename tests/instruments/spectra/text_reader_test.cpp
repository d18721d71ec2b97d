#include "instruments/spectra/text_reader.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "tests/instruments/spectra/expect_input_error.h"
#include "tests/instruments/spectra/scratch_file.h"

namespace tof::spectra {
namespace {

using testing::ElementsAre;

TEST(TextReader, ReadsTimesAndIntensities) {
  const ScratchFile file("# time_ns intensity\n10.0 1701\n10.5 -2.5e1\n");
  const Spectrum spectrum = ReadTextSpectrum(file.Path());
  EXPECT_THAT(spectrum.time_ns, ElementsAre(10.0, 10.5));
  EXPECT_THAT(spectrum.intensity, ElementsAre(1701.0, -25.0));
  EXPECT_DOUBLE_EQ(spectrum.bin_width_ns, 0.5);
}

TEST(TextReader, AcceptsEveryLayoutOfTwoColumns) {
  const Spectrum spectrum =
      ParseTextSpectrum("\r\n  1\t2 # a comment\r\n\n#\n\t+3   +4#tail\n5 6", "spectrum.txt");
  EXPECT_THAT(spectrum.time_ns, ElementsAre(1.0, 3.0, 5.0));
  EXPECT_THAT(spectrum.intensity, ElementsAre(2.0, 4.0, 6.0));
}

struct BadText {
  const char* name;
  const char* text;
  const char* message;
};

class BadTexts : public testing::TestWithParam<BadText> {};

TEST_P(BadTexts, AreRefusedWithTheirPlace) {
  EXPECT_EQ(InputErrorOf([] { ParseTextSpectrum(GetParam().text, "s.txt"); }), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    TextReader, BadTexts,
    testing::Values(
        BadText{"TextAsTime", "1 2\nabc 3\n",
                "s.txt:2:1: found \"abc\", expected a flight time in ns"},
        BadText{"TextAsIntensity", "1 2\n# c\n  2 3x4 # c\n",
                "s.txt:3:5: found \"3x4\", expected an intensity"},
        BadText{"CommaAsDecimalPoint", "1,5 2\n",
                "s.txt:1:1: found \"1,5\", expected a flight time in ns"},
        BadText{"OneColumn", "1 2\n2\n",
                "s.txt:2:2: found the end of the line, expected an intensity"},
        BadText{"OneColumnAndAComment", "1 # 2\n",
                "s.txt:1:3: found the end of the line, expected an intensity"},
        BadText{"OneColumnAtTheEndOfTheFile", "1 2\n2",
                "s.txt:2:2: found the end of the line, expected an intensity"},
        BadText{"ThreeColumns", "1 2\n2 3 4\n",
                "s.txt:2:5: found a further column \"4\", expected time_ns and intensity only"},
        BadText{"NanTime", "nan 2\n", "s.txt:1:1: found \"nan\", expected a flight time in ns"},
        BadText{"NanIntensity", "1 NaN\n", "s.txt:1:3: found \"NaN\", expected an intensity"},
        BadText{"InfiniteIntensity", "1 -inf\n",
                "s.txt:1:3: found \"-inf\", expected an intensity"},
        BadText{"TooLargeIntensity", "1 1e999\n",
                "s.txt:1:3: found \"1e999\", expected an intensity"},
        BadText{"UnsortedTimes", "1 2\n3 1\n  2.50 1\n",
                "s.txt:3:3: found time 2.50 after a later one, expected ascending times"},
        BadText{"DuplicateTimes", "1 2\n1.0 3\n",
                "s.txt:2:1: found time 1.0 twice, expected ascending times"},
        BadText{"NoData", "# time_ns intensity\n\n",
                "s.txt: found 0 bins with data, expected a spectrum of at least two bins: time_ns "
                "intensity"},
        BadText{"OneBin", "1 2\n",
                "s.txt: found 1 bins with data, expected a spectrum of at least two bins: time_ns "
                "intensity"}),
    [](const testing::TestParamInfo<BadText>& row) { return row.param.name; });

TEST(TextReader, ReadsTheRealLadder) {
  const std::filesystem::path path = std::filesystem::path(TOF_SHARED_DATA) / "ladder/spectrum.txt";
  if (!std::filesystem::exists(path)) GTEST_SKIP() << "the shared spectra are not on this machine";
  const Spectrum spectrum = ReadTextSpectrum(path);
  ASSERT_EQ(spectrum.time_ns.size(), 137887u);
  EXPECT_EQ(spectrum.time_ns.front(), 30371.0);
  EXPECT_EQ(spectrum.intensity.front(), 1701.0);
  EXPECT_DOUBLE_EQ(spectrum.bin_width_ns, 0.5);
}

}  // namespace
}  // namespace tof::spectra
