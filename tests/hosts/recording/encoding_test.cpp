#include "hosts/recording/encoding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace tof::recording {
namespace {

// Through the text of a line and back.
template <class T>
T Again(const T& value) {
  return Decoded<T>(Json::parse(Encoded(value).dump()));
}

bool SameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

TEST(Encoding, KeepsEveryBitOfADouble) {
  using Limits = std::numeric_limits<double>;
  const double negative_nan = -Limits::quiet_NaN();
  const double other_nan = std::bit_cast<double>(0x7FF8000000000ABCULL);
  for (const double value :
       {0.0, -0.0, 5.0, 0.1, -1.5e-7, Limits::max(), Limits::min(), Limits::denorm_min(),
        Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(), negative_nan, other_nan}) {
    EXPECT_TRUE(SameBits(Again(value), value)) << value;
    EXPECT_TRUE(SameBits(*Again(Variant(value)).As<double>(), value)) << value;
  }
  std::mt19937_64 random(1);
  for (int i = 0; i < 20000; ++i) {
    const auto value = std::bit_cast<double>(random());
    EXPECT_TRUE(SameBits(Again(value), value)) << value;
  }
}

TEST(Encoding, KeepsSinglesAndWholeNumbers) {
  for (const float value : {0.0F, 0.1F, std::numeric_limits<float>::max()}) {
    EXPECT_EQ(Again(value), value);
  }
  for (const std::int16_t value : {std::int16_t{-32768}, std::int16_t{0}, std::int16_t{32767}}) {
    EXPECT_EQ(Again(value), value);
  }
  for (const std::int32_t value :
       {std::numeric_limits<std::int32_t>::min(), 0, std::numeric_limits<std::int32_t>::max()}) {
    EXPECT_EQ(Again(value), value);
  }
  EXPECT_EQ(Again(std::numeric_limits<std::uint32_t>::max()), 4294967295U);
}

TEST(Encoding, KeepsTextsOfAnyBytes) {
  for (const std::string& text :
       {std::string(), std::string("line\r\n\t\"x\""), std::string("\xC3\xA9"),
        std::string("\xE9 is Latin-1"), std::string("\0\x01\xFF", 3)}) {
    EXPECT_EQ(Again(text), text);
    EXPECT_EQ(Again(Variant(text)), Variant(text));
  }
}

TEST(Encoding, KeepsTheTypeOfAVariant) {
  const Variant::Array nested({Variant(1.0), Variant(Variant::Array({Variant("x"), Variant()}))});
  const std::vector<Variant> variants = {Variant(),
                                         Variant(Variant::Missing{}),
                                         Variant(true),
                                         Variant(std::int16_t{5}),
                                         Variant(std::int32_t{5}),
                                         Variant(5.0),
                                         Variant("5"),
                                         Variant(Variant::Object()),
                                         Variant(Variant::DoubleArray()),
                                         Variant(Variant::DoubleArray({1.0, 2.0}, 1)),
                                         Variant(nested)};
  for (const Variant& a : variants) {
    EXPECT_EQ(Again(a), a) << Encoded(a);
    for (const Variant& b : variants) {
      EXPECT_EQ(Encoded(a).dump() == Encoded(b).dump(), a == b) << Encoded(a) << Encoded(b);
    }
  }
}

TEST(Encoding, KeepsBoundsAndWhetherAnArrayWasDimensioned) {
  EXPECT_FALSE(Again(BoundedArray<double>()).IsDimensioned());
  const BoundedArray<double> none(std::vector<double>{}, 3);
  EXPECT_EQ(Again(none), none);
  EXPECT_FALSE(Again(BoundedArray2D<double>()).IsDimensioned());
  BoundedArray2D<double> table({-1, 1}, {2, 3});
  table(-1, 2) = 1.5;
  table(1, 3) = -0.0;
  EXPECT_EQ(Again(table), table);
  const BoundedArray2D<double> no_columns({0, 4}, {0, -1}, IfEmpty::kIsAllowed);
  EXPECT_EQ(Again(no_columns), no_columns);
}

TEST(Encoding, KeepsEveryFieldOfTheRecords) {
  PeakAttribsTable table({0, 1}, {0, 0});
  table(0, 0) = {1, 2, 3, 4, 5, 6, 7, 8};
  table(1, 0) = {-1, -2, -3, -4, -5, -6, -7, -8};
  EXPECT_EQ(Again(table), table);
  const PeakRecord record{1, 2, 3, 4, 5, 6, 7, 8};
  EXPECT_EQ(Again(record), record);
  const CoefficientRecord coefficients{1, 2, 3, 4, 5, 6, 7, 8};
  EXPECT_EQ(Again(coefficients), coefficients);
  CalInfo info;
  for (std::size_t i = 0; i < sizeof info; ++i) {
    const auto byte = static_cast<unsigned char>(i + 200);
    std::memcpy(reinterpret_cast<unsigned char*>(&info) + i, &byte, 1);
  }
  const CalInfo again = Again(info);
  EXPECT_EQ(std::memcmp(&again, &info, sizeof info), 0);
  const DateTime moment{2024, 2, 29, 13, 5, 9};
  EXPECT_EQ(Again(moment), moment);
  const AutomationError error = Again(AutomationError(-822, "text", "source"));
  EXPECT_EQ(error.number(), -822);
  EXPECT_EQ(error.description(), "text");
  EXPECT_EQ(error.source(), "source");
}

template <class T>
void ExpectMalformed(const char* text, const char* message) {
  try {
    Decoded<T>(Json::parse(text));
    ADD_FAILURE() << text << " was taken";
  } catch (const MalformedValue& error) {
    EXPECT_THAT(error.what(), ::testing::HasSubstr(message));
  }
}

TEST(Encoding, SaysWhatWasFoundAndWhatWasExpected) {
  ExpectMalformed<bool>("1", "found 1, expected true or false");
  ExpectMalformed<double>("null", "expected a number");
  ExpectMalformed<double>("\"NaN:xyz\"", "expected a number, NaN or an infinity");
  ExpectMalformed<std::int16_t>("32768", "expected a whole number of 16 bits");
  ExpectMalformed<std::int32_t>("2.5", "expected a whole number of 32 bits");
  ExpectMalformed<std::int32_t>("18446744073709551615", "expected a whole number of 32 bits");
  ExpectMalformed<std::uint32_t>("-1", "expected a whole number of 32 bits");
  ExpectMalformed<std::string>("[]", "expected a text");
  ExpectMalformed<std::string>("{\"bytes\":\"0\"}", "expected bytes in hexadecimal");
  ExpectMalformed<Variant>("{\"int8\":1}", "expected a variant");
  ExpectMalformed<ObjectNumber>("0", "expected the number of a call");
  ExpectMalformed<PeakRecord>("[1.0]", "expected 8 values");
  ExpectMalformed<BoundedArray<double>>("{\"lower\":0}", "expected an object with \"values\"");
  ExpectMalformed<BoundedArray2D<double>>(
      "{\"lower\":[0,0],\"upper\":[2147483647,2147483647],\"values\":[]}",
      "expected as many values as the bounds say");
  ExpectMalformed<BoundedArray2D<double>>("{\"lower\":[0,5],\"upper\":[0,0],\"values\":[]}",
                                          "expected as many values as the bounds say");
}

}  // namespace
}  // namespace tof::recording
