#include "instruments/spectra/base64.h"

#include <gtest/gtest.h>

namespace tof::spectra {
namespace {

struct Vector {
  std::string_view text;
  std::string_view bytes;
};

class Base64Vectors : public testing::TestWithParam<Vector> {};

TEST_P(Base64Vectors, Decode) {
  EXPECT_EQ(DecodeBase64(GetParam().text), GetParam().bytes);
}

TEST_P(Base64Vectors, Encode) {
  EXPECT_EQ(EncodeBase64(GetParam().bytes), GetParam().text);
}

// The test vectors of RFC 4648, section 10.
INSTANTIATE_TEST_SUITE_P(Rfc4648, Base64Vectors,
                         testing::Values(Vector{"", ""}, Vector{"Zg==", "f"}, Vector{"Zm8=", "fo"},
                                         Vector{"Zm9v", "foo"}, Vector{"Zm9vYg==", "foob"},
                                         Vector{"Zm9vYmE=", "fooba"},
                                         Vector{"Zm9vYmFy", "foobar"}));

TEST(Base64, DecodesBytesAboveAscii) {
  EXPECT_EQ(DecodeBase64("/+7d"), "\xff\xee\xdd");
  EXPECT_EQ(EncodeBase64("\xff\xee\xdd"), "/+7d");
}

TEST(Base64, IgnoresWhiteSpace) {
  EXPECT_EQ(DecodeBase64(" Zm9v\r\n\tYmFy\n"), "foobar");
}

TEST(Base64, RefusesAnUnfinishedGroup) {
  EXPECT_EQ(DecodeBase64("Zm9vY"), std::nullopt);
}

TEST(Base64, RefusesAForeignCharacterAnywhere) {
  EXPECT_EQ(DecodeBase64("Z*9vYmFy"), std::nullopt);
  EXPECT_EQ(DecodeBase64("Zm9vYm*y"), std::nullopt);
}

TEST(Base64, RefusesPaddingBeforeTheEnd) {
  EXPECT_EQ(DecodeBase64("Zg==Zm9v"), std::nullopt);
  EXPECT_EQ(DecodeBase64("Z==="), std::nullopt);
}

}  // namespace
}  // namespace tof::spectra
