#include "hosts/apply/splices.h"

#include <gtest/gtest.h>

namespace tof::apply {
namespace {

TEST(Splices, ReplaceInsertAndRemoveInAnyOrder) {
  EXPECT_EQ(Spliced("0123456789", {{7, 8, ""}, {1, 3, "ab"}, {5, 5, "+"}}), "0ab34+5689");
  EXPECT_EQ(Spliced("0123456789", {{9, 10, "end"}, {0, 1, "begin"}}), "begin12345678end");
  EXPECT_EQ(Spliced("0123456789", {}), "0123456789");
}

struct Leaf {
  const char* name;
  std::string element;  // what an end of it is looked for in
};

class EndOfALeaf : public ::testing::TestWithParam<Leaf> {};

TEST_P(EndOfALeaf, IsBehindAllOfIt) {
  const std::string text = "<list><x/>" + GetParam().element + "<x></x></list>";
  pugi::xml_document document;
  ASSERT_TRUE(document.load_buffer(text.data(), text.size()));
  const pugi::xml_node element = document.document_element().child("leaf");
  EXPECT_EQ(BeginOf(element), 10u);
  EXPECT_EQ(EndOfLeaf(text, element), 10u + GetParam().element.size());
}

INSTANTIATE_TEST_SUITE_P(
    Splices, EndOfALeaf,
    ::testing::Values(Leaf{"Empty", "<leaf/>"}, Leaf{"EmptyWithABlank", "<leaf />"},
                      Leaf{"EmptyInTwoTags", "<leaf></leaf>"},
                      Leaf{"WithText", "<leaf>text</leaf>"},
                      Leaf{"WithABlankInTheEndTag", "<leaf>text</leaf >"},
                      Leaf{"WithAnAttribute", "<leaf a=\"1\"/>"},
                      Leaf{"WithATagInQuotes", "<leaf a=\"/>\">text</leaf>"},
                      Leaf{"WithATagInSingleQuotes", "<leaf a='\"/>'>text</leaf>"},
                      Leaf{"WithBothQuotes", "<leaf a='\">' b=\"'>\"/>"},
                      Leaf{"WithAnotherEndTagInAComment", "<leaf><!-- </x> --></leaf>"},
                      Leaf{"WithAnotherEndTagInItsText", "<leaf><![CDATA[</x>]]></leaf>"}),
    [](const auto& row) { return row.param.name; });

TEST(Splices, ATagThatDoesNotEndGoesToTheEndOfTheText) {
  EXPECT_EQ(EndOfTag("<a b=\">\"", 0), 8u);
  EXPECT_EQ(EndOfTag("<a><b></b>", 3), 6u);
}

std::string Ascii(const std::string& element, const std::string& indent) {
  pugi::xml_document document;
  document.load_string(element.c_str());
  return AsciiXml(document.document_element(), indent);
}

TEST(AsciiXml, WritesWhatIsNotAsciiByItsNumber) {
  EXPECT_EQ(Ascii("<a>~\x7f</a>", ""), "<a>~\x7f</a>");
  EXPECT_EQ(Ascii("<a b=\"\xc2\x80\xc3\xbc\">\xe2\x82\xac\xf0\x9f\x98\x80</a>", ""),
            "<a b=\"&#128;&#252;\">&#8364;&#128512;</a>");
}

TEST(AsciiXml, IsIndentedOnlyWhenItIsTold) {
  EXPECT_EQ(Ascii("<a><b/><c>1</c></a>", ""), "<a><b/><c>1</c></a>");
  EXPECT_EQ(Ascii("<a><b/><c>1</c></a>", "  "), "<a>\n  <b />\n  <c>1</c>\n</a>\n");
}

}  // namespace
}  // namespace tof::apply
