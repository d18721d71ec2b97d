#include "instruments/spectra/input_error.h"

#include <gtest/gtest.h>

namespace tof::spectra {
namespace {

TEST(InputErrorText, SaysWhereWhatAndWhatWasExpected) {
  const InputError error({"a.txt", 12, 9}, Quoted("abc"), "an intensity");
  EXPECT_STREQ(error.what(), "a.txt:12:9: found \"abc\", expected an intensity");
}

TEST(InputErrorText, LeavesOutAPlaceThatIsTheWholeSource) {
  const InputError error({"a.txt"}, "nothing", "a spectrum");
  EXPECT_STREQ(error.what(), "a.txt: found nothing, expected a spectrum");
}

TEST(InputErrorText, CutsALongQuote) {
  EXPECT_EQ(Quoted(std::string(41, 'x')), '"' + std::string(40, 'x') + "...\"");
  EXPECT_EQ(Quoted(std::string(40, 'x')), '"' + std::string(40, 'x') + '"');
}

TEST(InputErrorText, KeepsControlCharactersFromTheTerminal) {
  EXPECT_EQ(Quoted("a\x1b[2Jb"), "\"a?[2Jb\"");
}

TEST(PlaceOfOffset, CountsLinesAndColumnsFromOne) {
  const std::string_view text = "ab\ncd\n";
  EXPECT_EQ(PlaceOfOffset("f", text, 0).line, 1u);
  EXPECT_EQ(PlaceOfOffset("f", text, 0).column, 1u);
  EXPECT_EQ(PlaceOfOffset("f", text, 4).line, 2u);
  EXPECT_EQ(PlaceOfOffset("f", text, 4).column, 2u);
  EXPECT_EQ(PlaceOfOffset("f", text, 99).line, 3u);
  EXPECT_EQ(PlaceOfOffset("f", text, 99).column, 1u);
}

}  // namespace
}  // namespace tof::spectra
