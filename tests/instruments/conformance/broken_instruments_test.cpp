#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <ostream>
#include <regex>
#include <set>
#include <string>
#include <vector>

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

// What an engineer is told of each fault: a line for each of the broken instruments, in their
// order.
std::vector<std::string> WhatIsSaid() {
  std::ifstream file(std::string(TOF_SOURCE_DIR) +
                     "/tests/instruments/conformance/said_of_broken_instruments.txt");
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

// Measured values depend on much else: each is a '#', as is its sign.
std::string WithoutMeasuredValues(const std::string& text) {
  static const std::regex kMeasured("-?\\d+(\\.\\d+([eE][-+]?\\d+)?|[eE][-+]?\\d+|\\d{4,})");
  return std::regex_replace(text, kMeasured, "#");
}

struct Fault {
  BrokenInstrument instrument;
  std::string said;
};

void PrintTo(const Fault& row, std::ostream* out) {
  *out << row.instrument.check;
}

std::vector<Fault> Faults() {
  const std::vector<std::string> said = WhatIsSaid();
  std::vector<Fault> faults;
  for (const BrokenInstrument& instrument : BrokenInstruments()) {
    const std::size_t i = faults.size();
    faults.push_back({instrument, i < said.size() ? said[i] : "nothing"});
  }
  return faults;
}

class OneFault : public ::testing::TestWithParam<Fault> {};

TEST_P(OneFault, FailsTheOneCheckOfIt) {
  standin::TestInstrument test(Description());
  DecoratedInstrument broken(test.instrument);
  GetParam().instrument.spoil(broken.wrappers, test.journal);
  const std::vector<std::string> failures = Failures(RunOn(broken, test));
  ASSERT_EQ(failures.size(), 1u) << ::testing::PrintToString(failures);
  EXPECT_THAT(failures.front(), ::testing::StartsWith(GetParam().instrument.check + ": expected "));
  EXPECT_EQ(WithoutMeasuredValues(failures.front()), GetParam().said);
}

std::string RowName(const ::testing::TestParamInfo<Fault>& row) {
  std::string name = row.param.instrument.check + "_" + std::to_string(row.index);
  for (char& c : name) {
    if (c == '.' || c == '-') c = '_';
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(Rows, OneFault, ::testing::ValuesIn(Faults()), RowName);

TEST(BrokenInstruments, HaveALineEach) {
  EXPECT_EQ(WhatIsSaid().size(), BrokenInstruments().size());
}

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
