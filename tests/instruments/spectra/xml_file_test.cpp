#include "instruments/spectra/xml_file.h"

#include <gtest/gtest.h>

#include "tests/instruments/spectra/expect_input_error.h"

namespace tof::spectra {
namespace {

TEST(XmlFile, KnowsTheLineAndColumnOfAnElement) {
  const XmlFile file("<a>\n  <b/>\n</a>\n", "d.xml");
  const InputPlace place = file.PlaceOf(file.Root().child("b"));
  EXPECT_EQ(place.source, "d.xml");
  EXPECT_EQ(place.line, 2u);
  EXPECT_EQ(place.column, 4u);
}

TEST(XmlFile, SaysWhereTheXmlIsMalformed) {
  const std::string message = InputErrorOf([] { XmlFile("<a>\n  <b></c>\n</a>\n", "d.xml"); });
  EXPECT_EQ(message,
            "d.xml:2:8: found malformed XML (Start-end tags mismatch), expected a well-formed "
            "document");
}

TEST(XmlFile, RefusesAnEmptyText) {
  EXPECT_EQ(InputErrorOf([] { XmlFile("", "d.xml"); }),
            "d.xml:1:1: found malformed XML (No document element found), expected a well-formed "
            "document");
}

}  // namespace
}  // namespace tof::spectra
