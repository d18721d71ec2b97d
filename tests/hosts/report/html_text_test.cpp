#include "hosts/report/html_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace tof::report {
namespace {

TEST(HtmlText, EscapesWhatHtmlReads) {
  EXPECT_EQ(Escape("a<b> & \"c\" 'd'"), "a&lt;b&gt; &amp; &quot;c&quot; &#39;d&#39;");
}

TEST(HtmlText, KeepsUtf8AndReplacesEverythingElse) {
  EXPECT_EQ(Escape("\xC2\xB1"), "\xC2\xB1");
  EXPECT_EQ(Escape("\xF0\x9F\x92\xA1"), "\xF0\x9F\x92\xA1");
  const std::string replacement = "\xEF\xBF\xBD";
  EXPECT_EQ(Escape("Ger\xE4t"), "Ger" + replacement + "t");
  EXPECT_EQ(Escape("\xC0\xAF"), replacement + replacement);                    // overlong
  EXPECT_EQ(Escape("\xED\xA0\x80"), replacement + replacement + replacement);  // a surrogate
  EXPECT_EQ(Escape("cut \xE2\x82"), "cut " + replacement + replacement);
  EXPECT_EQ(Escape(std::string("a\0b", 3)), "a" + replacement + "b");
}

TEST(HtmlText, KeepsTheFirstAndTheLastCharacterOfEachLength) {
  for (const char* character :
       {" ", "~", "\x7F", "\n", "\t", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xEC\xBF\xBF",
        "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF3\xBF\xBF\xBF",
        "\xF4\x8F\xBF\xBF"}) {
    EXPECT_EQ(Escape(character), character);
  }
}

TEST(HtmlText, ReplacesEachByteOfWhatIsNoCharacter) {
  for (const std::string bytes :
       {"\x01", "\x1F", "\r", "\x80", "\xBF", "\xFF", "\xC2", "\xC1\xBF", "\xC2\xC0",
        "\xE0\x9F\xBF", "\xE1\x80\xC0", "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x8F\xBF\xBF",
        "\xF1\x80\x80\xC0", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80"}) {
    std::string replaced;
    for (std::size_t i = 0; i < bytes.size(); ++i) replaced += "\xEF\xBF\xBD";
    EXPECT_EQ(Escape(bytes), replaced) << ::testing::PrintToString(bytes);
  }
}

TEST(HtmlText, OfAScriptCannotEndIt) {
  const std::string text = EscapeForScript(R"({"file":"</script><script>alert(1)<!--"})");
  EXPECT_THAT(text, ::testing::Not(::testing::HasSubstr("<")));
  EXPECT_EQ(EscapeForScript("\"a&b\""), "\"a\\u0026b\"");
}

TEST(HtmlText, ShowsNumbersRoundedAndKeepsThemExact) {
  EXPECT_EQ(Number(14974.109939, 2), "<data value=\"14974.109939\">14974.11</data>");
  EXPECT_EQ(SignedNumber(0.25, 3), "<data value=\"0.25\">+0.250</data>");
  EXPECT_EQ(ExactNumber(6.5e-4), "<data value=\"0.00065\">0.00065</data>");
}

TEST(HtmlText, ShowsADashForWhatIsNotThere) {
  EXPECT_EQ(Number(std::nullopt, 2), Number(NAN, 2));
  EXPECT_THAT(Number(std::nullopt, 2), ::testing::HasSubstr("class=\"absent\""));
}

}  // namespace
}  // namespace tof::report
