#include "hosts/native/text_encoding.h"

#include <gtest/gtest.h>

namespace tof::native {
namespace {

struct Case {
  const char* name;
  std::string utf8;
  std::string latin1;
};

void PrintTo(const Case& row, std::ostream* out) {
  *out << row.name;
}

class Latin1FromUtf8Table : public ::testing::TestWithParam<Case> {};

TEST_P(Latin1FromUtf8Table, GivesTheBytes) {
  EXPECT_EQ(Latin1FromUtf8(GetParam().utf8), GetParam().latin1);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Latin1FromUtf8Table,
    ::testing::Values(
        Case{"Empty", "", ""}, Case{"Ascii", "t0 = 1.5E-07", "t0 = 1.5E-07"},
        Case{"LineEndsStay", "a\r\nb", "a\r\nb"}, Case{"FirstBeyondAscii", "\xC2\x80", "\x80"},
        Case{"UmlautAndMicro", "Z\xC3\xBCrich \xC2\xB5s", "Z\xFCrich \xB5s"},
        Case{"LastOfLatin1", "\xC3\xBF", "\xFF"}, Case{"FirstBeyondLatin1", "a\xC4\x80z", "a?z"},
        Case{"EuroSign", "\xE2\x82\xAC 5", "? 5"},
        Case{"BeyondTheBasicPlane", "<\xF0\x9F\x94\xAC>", "<?>"},
        Case{"LoneContinuation", "a\x80z", "a?z"}, Case{"CutAtTheEnd", "a\xE2\x82", "a??"},
        Case{"ContinuationMissing", "\xC3z", "?z"}, Case{"OverlongTwo", "\xC1\x81", "??"},
        Case{"OverlongThree", std::string("\xE0\x81\x81"), "???"},
        Case{"BeyondUnicode", "\xF5\x80\x80\x80", "????"}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace tof::native
