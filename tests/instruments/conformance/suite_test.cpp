#include "instruments/conformance/suite.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "instruments/spectra/input_file.h"
#include "tests/instruments/conformance/decorated_instrument.h"
#include "tests/instruments/standin/test_instrument.h"

namespace tof::conformance {
namespace {

TEST(Suite, ChecksHaveIdsOfTheirOwn) {
  std::set<std::string> ids;
  for (const Check& check : AllChecks()) {
    EXPECT_TRUE(ids.insert(IdOf(check)).second) << IdOf(check);
    EXPECT_THAT(IdOf(check), ::testing::MatchesRegex("[A-Z][A-Za-z]+\\.[a-z0-9-]+"));
    EXPECT_THAT(std::string(check.relied_on), ::testing::EndsWith(".")) << IdOf(check);
  }
}

// The page lists the checks as they are; what it lists can be pasted from what this prints.
TEST(Suite, IsListedInTheDocument) {
  const std::string page =
      spectra::ReadWholeFile(std::filesystem::path(TOF_SOURCE_DIR) / "docs/conformance.md");
  std::string list;
  for (const Check& check : AllChecks()) {
    list += "| `" + IdOf(check) + "` | " + std::string(check.relied_on) + " |\n";
  }
  const std::string marker = "| --- | --- |\n";
  const std::size_t head = page.find(marker);
  ASSERT_NE(head, std::string::npos);
  const std::size_t begin = head + marker.size();
  EXPECT_EQ(page.substr(begin, page.find("\n\n", begin) + 1 - begin), list);
}

struct ParserThatRaises : ForwardingSpecParser {
  using ForwardingSpecParser::ForwardingSpecParser;
  bool ShouldAvoidAIC(const Variant&, double&) override {
    throw AutomationError(4711, "The parser is on fire");
  }
};

TEST(Suite, TakesAnErrorForAFailureOfTheCheckThatMeetsIt) {
  standin::TestInstrument test;
  DecoratedInstrument broken(test.instrument);
  broken.wrappers.Use<ParserThatRaises>();
  int failures = 0;
  for (const CheckResult& result : RunChecks({.factory = broken, .host = test.host})) {
    if (result.outcome != Outcome::kFail) continue;
    ++failures;
    EXPECT_EQ(result.id, "SpecParser.avoiding-aic-keeps-the-width-usable");
    EXPECT_EQ(result.collaborator, "SpecParser");
    EXPECT_EQ(result.expected, "no error");
    EXPECT_EQ(result.found, "error 4711: The parser is on fire");
  }
  EXPECT_EQ(failures, 1);
}

TEST(Suite, SaysWhichCheckHasToPassFirst) {
  standin::TestInstrument test;
  DecoratedInstrument broken(test.instrument);
  broken.wrappers.GiveNone<SpecParser>();
  for (const CheckResult& result : RunChecks({.factory = broken, .host = test.host})) {
    if (result.collaborator == "InstrumentFactory") continue;
    EXPECT_EQ(result.outcome, Outcome::kNotApplicable) << result.id;
    EXPECT_EQ(result.why_not_applicable,
              "InstrumentFactory.creates-every-collaborator has to pass first");
  }
}

}  // namespace
}  // namespace tof::conformance
