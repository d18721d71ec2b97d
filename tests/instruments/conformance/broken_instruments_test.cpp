#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "tests/instruments/conformance/broken_instruments.h"
#include "tests/instruments/conformance/outcomes.h"
#include "tests/instruments/standin/test_instrument.h"

namespace tof::conformance {
namespace {

// The virtual instrument with the special tune switched on, so that every check applies.
description::InstrumentDescription Description() {
  description::InstrumentDescription description = description::BuiltInDescription();
  description.flags["Enable1700mzTune"] = "Yes";
  return description;
}

std::vector<CheckResult> RunOn(InstrumentFactory& factory, standin::TestInstrument& test) {
  return RunChecks({.factory = factory,
                    .host = test.host,
                    .abort = {[&test] { test.instrument.RequestAbort(); },
                              [&test] { test.instrument.WithdrawAbort(); }}});
}

class OneFault : public ::testing::TestWithParam<BrokenInstrument> {};

TEST_P(OneFault, FailsTheOneCheckOfIt) {
  standin::TestInstrument test(Description());
  DecoratedInstrument broken(test.instrument);
  GetParam().spoil(broken.wrappers, test.journal);
  const std::vector<std::string> failures = Failures(RunOn(broken, test));
  ASSERT_EQ(failures.size(), 1u) << ::testing::PrintToString(failures);
  EXPECT_THAT(failures.front(), ::testing::StartsWith(GetParam().check + ": expected "));
}

std::string RowName(const ::testing::TestParamInfo<BrokenInstrument>& row) {
  std::string name = row.param.check + "_" + std::to_string(row.index);
  for (char& c : name) {
    if (c == '.' || c == '-') c = '_';
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(Rows, OneFault, ::testing::ValuesIn(BrokenInstruments()), RowName);

TEST(BrokenInstruments, ThereIsOneForEveryCheck) {
  std::set<std::string> broken;
  for (const BrokenInstrument& instrument : BrokenInstruments()) broken.insert(instrument.check);
  std::set<std::string> checks;
  for (const Check& check : AllChecks()) checks.insert(IdOf(check));
  EXPECT_EQ(broken, checks);
}

// The wrapping itself spoils nothing.
TEST(BrokenInstruments, PassWhenNothingIsBroken) {
  standin::TestInstrument test(Description());
  DecoratedInstrument sound(test.instrument);
  EXPECT_THAT(Failures(RunOn(sound, test)), ::testing::IsEmpty());
}

}  // namespace
}  // namespace tof::conformance
