// Every collaborator and host call of a whole calibration fails, once and for ever, and an abort is
// asked for before it. What is left behind must be what fault_table.h says.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "component/automation/convert.h"
#include "component/trace/trace.h"
#include "tests/component/whole_run/fault_table.h"
#include "tests/component/whole_run/placed_calls.h"
#include "tests/component/whole_run/swept_run.h"
#include "tests/support/expected_calls.h"

namespace tof::fakes {
namespace {

struct Configuration {
  const char* name;
  bool traced;
  bool tune;
  bool first_fit_is_bad;
};

void PrintTo(const Configuration& configuration, std::ostream* out) {
  *out << configuration.name;
}

const Variant kMoved = Variant(std::int16_t{9});
const Variant kTuned = Variant(50.0);

// A new calibrator on a new instrument whose state moves while it measures.
struct Bench : SweptRun {
  explicit Bench(const Configuration& configuration) {
    host.trace->on = configuration.traced;
    instrument.sample_masses = {118.0863, 322.0481, 622.029, 922.0098};
    instrument.setpoints[69] = 1.0;
    instrument.ready_states = {Variant(std::int32_t{-1}), Variant(std::int32_t{0})};
    instrument.on_spectrum = [this] {
      for (const std::int32_t id : {18, 150, 149, 128}) instrument.setpoints[id] = kMoved;
    };
    if (configuration.tune) {
      instrument.flags["Enable1700mzTune"] = "Yes";
      for (const char* setpoint : {"HPRF", "LPRF", "CCdV"}) {
        instrument
            .settings["Calibration/SmallMoleculeCalib_" + std::string(setpoint) + "_Standard"] =
            *kTuned.As<double>();
      }
    }
    if (configuration.first_fit_is_bad) instrument.bad_fits = {0.5};
    Create();
  }
};

// --- The run in which nothing fails, and where in it each call stands.

std::vector<PlacedCall> CallsOfATracedRun(Configuration configuration) {
  configuration.traced = true;
  Bench bench(configuration);
  EXPECT_NE(bench.Calibrate(), nullptr);
  return Placed(bench.journal.entries());
}

bool Applies(Only when, const Configuration& configuration) {
  if (when == Only::kWithTune) return configuration.tune;
  if (when == Only::kSecondPass) return configuration.first_fit_is_bad;
  return true;
}

// Per call of the traced run the row of a table; `starts(row, call)` says where a row begins.
template <class Row, std::size_t n_rows, class Starts>
std::vector<const Row*> RowsOf(const Row (&table)[n_rows], const Configuration& configuration,
                               const std::vector<PlacedCall>& calls, Starts starts, int Row::*nth) {
  std::vector<const Row*> rows(calls.size(), nullptr);
  std::size_t next = 0;
  const Row* current = nullptr;
  for (const Row& row : table) {
    if (!Applies(row.when, configuration)) continue;
    int to_find = nth == nullptr ? 1 : row.*nth;
    for (; next < calls.size(); ++next) {
      if (starts(row, calls[next]) && --to_find == 0) break;
      rows[next] = current;
    }
    EXPECT_LT(next, calls.size()) << "the run has no call for the row: " << row.reason;
    if (next == calls.size()) return rows;
    rows[next++] = current = &row;
  }
  for (; next < calls.size(); ++next) rows[next] = current;
  return rows;
}

std::vector<const FaultRow*> FaultRowsOf(const Configuration& configuration,
                                         const std::vector<PlacedCall>& calls) {
  return RowsOf(
      fault_table::kRows, configuration, calls,
      [](const FaultRow& row, const PlacedCall& call) {
        return call.routine() == row.routine && BeginsWith(call.subject, row.from);
      },
      &FaultRow::nth);
}

std::vector<const fault_table::AbortRow*> AbortRowsOf(const Configuration& configuration,
                                                      const std::vector<PlacedCall>& calls) {
  using Row = fault_table::AbortRow;
  return RowsOf(
      fault_table::kAbortRows, configuration, calls,
      [](const Row& row, const PlacedCall& call) { return BeginsWith(call.subject, row.from); },
      static_cast<int Row::*>(nullptr));
}

// --- What is left behind.

std::vector<std::pair<std::int32_t, std::string>> EventsOf(Ending ending) {
  switch (ending) {
    case Ending::kDone:
      return {};
    case Ending::kInjected:
      return {{kInjectedNumber, kInjectedDescription}};
    case Ending::kNoLikelyA:
      return {{-822, "Failed to find a Likely A and t0 value"}};
    case Ending::kTypeMismatch:
      return {{13, "Type mismatch"}};
    case Ending::kInvalidCall:
      return {{5, "Invalid procedure call or argument"}};
    case Ending::kAborted:
      return {{1, "User aborted"}};
  }
  return {};
}

Variant ZeroLike(const Variant& value) {
  if (value.As<bool>() != nullptr) return Variant(false);
  if (value.As<double>() != nullptr) return Variant(0.0);
  return Variant(std::int16_t{0});
}

Variant Expected(char letter, const Variant& found) {
  switch (letter) {
    case 'S':
    case '1':
      return found;
    case 'M':
      return kMoved;
    case 'T':
      return kTuned;
    default:
      return ZeroLike(found);
  }
}

void ExpectSetpoints(const Bench& bench, const Configuration& configuration,
                     std::string_view left) {
  constexpr std::pair<std::int32_t, std::size_t> kPlaces[] = {
      {69, 0}, {18, 2}, {150, 3}, {149, 4}, {128, 5}, {190, 7}, {191, 8}, {85, 9}};
  std::map<std::int32_t, Variant> expected = bench.found;
  for (const auto& [id, place] : kPlaces) {
    const bool untouched = place >= 7 && !configuration.tune;
    expected[id] = Expected(untouched ? 'S' : left[place], bench.found.at(id));
  }
  for (const auto& [id, value] : expected) {
    EXPECT_EQ(ToText(bench.instrument.setpoints.at(id)), ToText(value)) << "setpoint " << id;
  }
}

void ExpectOutcome(const Bench& bench, const Configuration& configuration,
                   const std::shared_ptr<MassCalCoefficients>& result, const Outcome& expected) {
  EXPECT_EQ(bench.events.events, EventsOf(expected.ending));
  EXPECT_EQ(result != nullptr, expected.ending == Ending::kDone);
  const auto& in_force = bench.instrument.in_force;
  switch (expected.in_force) {
    case InForce::kOld:
      EXPECT_EQ(in_force, bench.old_coefficients);
      break;
    case InForce::kNew:
      EXPECT_NEAR(in_force->record[0], bench.instrument.true_a_per_ns, 1e-12);
      if (result != nullptr) {
        EXPECT_EQ(in_force, result);
      }
  }
  EXPECT_EQ(bench.host.message_boxes.size(), static_cast<std::size_t>(expected.message_boxes));
  ExpectSetpoints(bench, configuration, expected.left);
  EXPECT_EQ(bench.host.OpenStreams(), expected.left.back() == 'L' ? 1 : 0);
  EXPECT_TRUE(bench.instrument.display_live);
  EXPECT_EQ(CurrentModuleState().trace.call_stack.size(), 1U) << "a routine is still on the stack";
}

// With the fault gone and the setpoints reloaded.
void ExpectTheNextCalibrationToWork(Bench& bench, const Configuration& configuration) {
  bench.journal.fail_from = bench.journal.abort_before = Journal::kNever;
  bench.instrument.abort_requested = 0;
  bench.instrument.setpoints = bench.found;
  bench.instrument.bad_fits.clear();
  bench.events.events.clear();
  bench.host.message_boxes.clear();
  const auto result = bench.Calibrate();
  ExpectOutcome(bench, configuration, result, fault_table::kSucceeded);
}

// --- The sweep.

class FaultSweep : public ::testing::TestWithParam<Configuration> {
 protected:
  // `plan(bench, n)` plans the fault of call n; `outcome(place)` looks up what it must leave, with
  // the call's place in the traced run.
  template <class Plan, class OutcomeOf>
  void Sweep(Plan plan, OutcomeOf outcome) {
    std::size_t n = 0;
    for (std::size_t place = 0; place < calls.size(); ++place) {
      if (calls[place].is_trace && !configuration.traced) continue;
      SCOPED_TRACE("call " + std::to_string(n) + ", " + calls[place].text + " in " +
                   calls[place].routine());
      Bench bench(configuration);
      bench.journal.keep_entries = false;
      plan(bench.journal, n++);
      const auto result = bench.Calibrate();
      ExpectOutcome(bench, configuration, result, outcome(place));
      ExpectTheNextCalibrationToWork(bench, configuration);
      if (HasFailure()) return;  // the first place tells enough
    }
    EXPECT_GT(n, 200U);
  }

  // An exit that fails is ignored: what fails for ever is decided by the calls behind it.
  std::size_t BehindExits(std::size_t place) const {
    while (place + 1 < calls.size() && calls[place].is_exit) ++place;
    return place;
  }

  const Configuration& configuration = GetParam();
  const std::vector<PlacedCall> calls = CallsOfATracedRun(configuration);
};

TEST_P(FaultSweep, OneFaultLeavesWhatTheTableSays) {
  const auto rows = FaultRowsOf(configuration, calls);
  Sweep([](Journal& journal, std::size_t n) { journal.fail_from = n; },
        [&](std::size_t place) {
          return calls[place].is_exit ? fault_table::kSucceeded : rows[place]->once;
        });
}

TEST_P(FaultSweep, AFaultForEverLeavesWhatTheTableSays) {
  const auto rows = FaultRowsOf(configuration, calls);
  Sweep(
      [](Journal& journal, std::size_t n) {
        journal.fail_from = n;
        journal.fail_count = Journal::kNever;
      },
      [&](std::size_t place) {
        const std::size_t decisive = BehindExits(place);
        return calls[decisive].is_exit ? fault_table::kSucceeded : rows[decisive]->for_ever;
      });
}

TEST_P(FaultSweep, AnAbortLeavesWhatTheTableSays) {
  const auto rows = AbortRowsOf(configuration, calls);
  Sweep([](Journal& journal, std::size_t n) { journal.abort_before = n; },
        [&](std::size_t place) { return rows[place]->outcome; });
}

TEST_P(FaultSweep, CallsTheSameWithAndWithoutTheTrace) {
  Bench bench(configuration);
  ASSERT_NE(bench.Calibrate(), nullptr);
  Calls expected;
  for (const PlacedCall& call : calls) {
    if (configuration.traced || !call.is_trace) expected.push_back(call.text);
  }
  EXPECT_EQ(bench.journal.entries(), expected);
}

INSTANTIATE_TEST_SUITE_P(Runs, FaultSweep,
                         ::testing::Values(Configuration{"Plain", false, false, false},
                                           Configuration{"PlainTraced", true, false, false},
                                           Configuration{"Tune", false, true, false},
                                           Configuration{"TuneTraced", true, true, false},
                                           Configuration{"Retry", false, false, true},
                                           Configuration{"RetryTraced", true, false, true},
                                           Configuration{"TuneAndRetryTraced", true, true, true}),
                         [](const auto& one) { return std::string(one.param.name); });

// A second fault, while the failure path of a first one runs, changes neither event nor result.
TEST(FaultSweepOfTheFailurePath, EveryStepIsTakenWhateverBecomesOfTheOthers) {
  const Configuration configuration{"DebugError", true, true, false};
  const std::string check = "AcqController.GetCurrentMassCalObject";
  Bench first(configuration);
  const std::string trigger = "TriggerError_caliblib_calibrateTOFMassAxis";
  first.instrument.flags[trigger] = "Yes";
  first.Calibrate();
  const Calls calls = first.journal.entries();
  const auto fault = std::find(calls.begin(), calls.end(), "TuneFlags.GetFlag(" + trigger + ",-1)");
  ASSERT_NE(fault, calls.end());
  const auto checked = std::find(fault, calls.end(), check);
  ASSERT_NE(checked, calls.end());
  for (auto call = fault + 1; call != calls.end(); ++call) {
    SCOPED_TRACE(*call);
    Bench bench(configuration);
    bench.instrument.flags[trigger] = "Yes";
    bench.journal.fail_from = static_cast<std::size_t>(call - calls.begin());
    EXPECT_EQ(bench.Calibrate(), nullptr);
    EXPECT_THAT(bench.events.events,
                ::testing::ElementsAre(::testing::Pair(-666, "Debug Error Raised")));
    // A check that fails counts as not good; the last call is the driver's own exit.
    const bool checks = call >= checked && call + 1 != calls.end();
    EXPECT_EQ(bench.instrument.in_force,
              checks ? bench.instrument.defaults : bench.old_coefficients);
  }
}

// The wait for a ready instrument has neither a limit nor an abort test: the host's sleep ends it.
TEST(FaultSweepOfTheWait, OnlyAFaultEndsTheWaitForAnInstrumentThatIsNeverReady) {
  const Configuration configuration{"NeverReady", false, false, false};
  for (int sleeps = 1; sleeps <= 50; ++sleeps) {
    Bench bench(configuration);
    bench.instrument.ready_states = {Variant(std::int32_t{-1})};
    bench.journal.abort_operation = "Host.Sleep";
    bench.journal.request_abort = [&, slept = 0]() mutable {
      bench.instrument.abort_requested = -1;
      if (++slept == sleeps) bench.journal.fail_operation = "Host.Sleep";
    };
    const auto result = bench.Calibrate();
    EXPECT_EQ(bench.journal.Only({"Host.Sleep"}).size(), static_cast<std::size_t>(sleeps));
    ExpectOutcome(bench, configuration, result,
                  {Ending::kNoLikelyA, InForce::kOld, 1, "0 SSSS SSS -"});
    bench.journal.abort_operation.clear();
    bench.journal.fail_operation.clear();
    bench.instrument.ready_states = {Variant(std::int32_t{0})};
    ExpectTheNextCalibrationToWork(bench, configuration);
  }
}

}  // namespace
}  // namespace tof::fakes
