#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/support/golden.h"

namespace tof::fakes {
namespace {

using ::testing::HasSubstr;

TEST(GoldenComparer, FindsNoDifferenceBetweenEqualBytes) {
  EXPECT_EQ(FirstDifference("a\r\nb \r\n", "a\r\nb \r\n"), std::nullopt);
  EXPECT_EQ(FirstDifference("", ""), std::nullopt);
}

struct Difference {
  const char* name;
  std::string approved;
  std::string actual;
  const char* message;
};

class GoldenDifference : public ::testing::TestWithParam<Difference> {};

TEST_P(GoldenDifference, IsFoundAndShown) {
  const auto difference = FirstDifference(GetParam().approved, GetParam().actual);
  ASSERT_TRUE(difference.has_value());
  EXPECT_EQ(*difference, GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Bytes, GoldenDifference,
    ::testing::Values(Difference{"InALetter", "a\nbc\n", "a\nbd\n",
                                 "line 2, byte 3\n  approved: bc<LF>|\n  actual:   bd<LF>|"},
                      Difference{"InATrailingBlank", "a \r\n", "a\r\n",
                                 "line 1, byte 1\n  approved: a <CR><LF>|\n  actual:   a<CR><LF>|"},
                      Difference{"InALineEnd", "a\r\n", "a\n",
                                 "line 1, byte 1\n  approved: a<CR><LF>|\n  actual:   a<LF>|"},
                      Difference{"InAMissingLastLineEnd", "a\r\nb\r\n", "a\r\nb",
                                 "line 2, byte 4\n  approved: b<CR><LF>|\n  actual:   b|"},
                      Difference{"InALineTooMany", "a\r\n", "a\r\nb\r\n",
                                 "line 2, byte 3\n  approved: |\n  actual:   b<CR><LF>|"},
                      Difference{"InAnEmptyOutput", "a", "",
                                 "line 1, byte 0\n  approved: a|\n  actual:   |"},
                      Difference{"InATab", "a b", "a\tb",
                                 "line 1, byte 1\n  approved: a b|\n  actual:   a<09>b|"}),
    [](const auto& one) { return std::string(one.param.name); });

class GoldenFile : public ::testing::Test {
 protected:
  GoldenFile() { std::filesystem::remove_all(folder); }
  ~GoldenFile() override { std::filesystem::remove_all(folder); }

  // A folder of this test's own: tests run side by side.
  const std::filesystem::path folder =
      std::filesystem::path(::testing::TempDir()) /
      (std::string("golden_") + ::testing::UnitTest::GetInstance()->current_test_info()->name());
  const std::filesystem::path file = folder / "below" / "a.txt";
};

TEST_F(GoldenFile, FailsWhenItIsMissing) {
  const auto result = MatchesGoldenFile(file, "a\r\n", GoldenMode::kCompare);
  EXPECT_FALSE(result);
  EXPECT_THAT(result.message(), HasSubstr("is missing"));
  EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(GoldenFile, HoldsWhatWasApprovedByteByByte) {
  EXPECT_TRUE(MatchesGoldenFile(file, "a \r\n", GoldenMode::kApprove));
  std::ifstream in(file, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "a \r\n");
  EXPECT_TRUE(MatchesGoldenFile(file, "a \r\n", GoldenMode::kCompare));
}

TEST_F(GoldenFile, FailsOnAnyOtherBytesAndStaysAsItIs) {
  ASSERT_TRUE(MatchesGoldenFile(file, "a\r\n", GoldenMode::kApprove));
  const auto result = MatchesGoldenFile(file, "a\n", GoldenMode::kCompare);
  EXPECT_FALSE(result);
  EXPECT_THAT(result.message(), HasSubstr("line 1, byte 1"));
  EXPECT_TRUE(MatchesGoldenFile(file, "a\r\n", GoldenMode::kCompare));
}

}  // namespace
}  // namespace tof::fakes
