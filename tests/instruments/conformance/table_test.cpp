#include "instruments/conformance/table.h"

#include <gtest/gtest.h>

namespace tof::conformance {
namespace {

TEST(Table, HasALineForEachCheckInGroupsAndTheSums) {
  const std::vector<CheckResult> results{
      {"A.one", "A", "One is relied on.", Outcome::kPass},
      {"A.two", "A", "Two is relied on.", Outcome::kFail, "2", "3"},
      {"B.one", "B", "B is relied on.", Outcome::kNotApplicable, "", "", "no B"},
      {"B.two", "B", "B is.", Outcome::kPass},
      {"B.three", "B", "B is, too.", Outcome::kPass}};
  EXPECT_EQ(TableOf("bench 7", results),
            "bench 7\n"
            "\n"
            "pass  A.one\n"
            "FAIL  A.two\n"
            "      Two is relied on.\n"
            "      expected: 2\n"
            "      found:    3\n"
            "\n"
            "n/a   B.one: no B\n"
            "pass  B.two\n"
            "pass  B.three\n"
            "\n"
            "3 passed, 1 failed, 1 not applicable\n");
}

}  // namespace
}  // namespace tof::conformance
