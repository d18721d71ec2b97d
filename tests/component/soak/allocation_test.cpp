// Every allocation of whole calibrations fails, once. It is error 7 as any other error is one: the
// instrument is put back, the host hears of it, and the next calibration works.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "tests/component/soak/memory.h"
#include "tests/component/whole_run/aic_ways.h"
#include "tests/component/whole_run/swept_run.h"

namespace tof::fakes {
namespace {

// A run behind every failure would double the time. A prime number, so that no kind of call is
// always passed over.
constexpr std::int64_t kRunsBetweenNextRuns = 7;

struct Kind {
  std::string name;
  const Way* way;  // none: the traditional way, with an estimate of A
  bool traced;
};

void PrintTo(const Kind& kind, std::ostream* out) {
  *out << kind.name;
}

std::vector<Kind> Kinds() {
  std::vector<Kind> kinds;
  for (const bool traced : {false, true}) {
    const std::string suffix = traced ? "AndTraced" : "AndNotTraced";
    kinds.push_back({"Traditional" + suffix, nullptr, traced});
    for (const Way& way : kWays) kinds.push_back({way.name + suffix, &way, traced});
  }
  return kinds;
}

// A new calibrator on a new instrument whose state moves while it measures.
struct Bench : SweptRun {
  explicit Bench(const Kind& kind) {
    if (kind.way != nullptr) {
      Arrange(*kind.way, instrument);
    } else {
      instrument.on_spectrum = [this] {
        for (const std::int32_t id : kStoredState) instrument.setpoints[id] = kMoved;
      };
    }
    host.trace->on = kind.traced;
    n_spectra = 1;
    Create();
  }
};

// Where the calls of the run stood when the allocation failed.
struct Place {
  std::size_t calls = 0;
  bool failed = false;
};

std::ptrdiff_t CountBefore(const Place& place, const std::vector<std::string>& calls,
                           const std::string& call) {
  const auto end = calls.begin() + static_cast<std::ptrdiff_t>(std::min(place.calls, calls.size()));
  return std::count(calls.begin(), end, call);
}

// What was stored is written back, unless the store or the restore was itself cut short.
void ExpectTheStateToBePutBack(const Bench& bench, const Place& place) {
  const std::vector<std::string>& calls = bench.journal.entries();
  const bool was_stored = CountBefore(place, calls, "SetpointTable.GetSetpoint(149)") > 0;
  // Read at the start and right before the restore.
  const bool was_restoring =
      CountBefore(place, calls, "TuneFlags.GetFlag(Enable1700mzTune,-1)") > 1;
  if (!was_stored || was_restoring) return;
  for (const std::int32_t id : kStoredState) {
    EXPECT_EQ(bench.instrument.setpoints.at(id), bench.found.at(id)) << "setpoint " << id;
  }
}

using EventCounts = std::map<std::int32_t, int>;

void ExpectPromises(const Bench& bench, const std::shared_ptr<MassCalCoefficients>& result,
                    const Place& place, EventCounts& counts) {
  EXPECT_TRUE(place.failed);
  EXPECT_EQ(CurrentModuleState().trace.call_stack.size(), 1U);
  EXPECT_EQ(bench.events.events.size(), result == nullptr ? 1U : 0U);
  for (const auto& [number, description] : bench.events.events) {
    ++counts[number];
    EXPECT_FALSE(description.empty());
    if (number == 7) {
      EXPECT_EQ(description, "Out of memory");
    } else {
      // Of routines that keep their errors to themselves the host hears what they left undone: no
      // estimate of A, no times, or a time that is not a number.
      EXPECT_THAT(number, ::testing::AnyOf(-822, 13, 5)) << description;
    }
  }
  if (result != nullptr) {
    EXPECT_EQ(result, bench.instrument.in_force) << "what is returned is in force";
  }
  ExpectTheStateToBePutBack(bench, place);
}

void ExpectTheNextRunToWork(Bench& bench) {
  bench.events.events.clear();
  for (const auto& [id, value] : bench.found) bench.instrument.setpoints[id] = value;
  EXPECT_NE(bench.Calibrate(), nullptr) << ::testing::PrintToString(bench.events.events);
}

class EveryAllocation : public ::testing::TestWithParam<Kind> {
 protected:
  // Of the run in which none fails.
  static std::int64_t AllocationsOfARun() {
    Bench bench(GetParam());
    const FailingAllocation watch(FailingAllocation::kNone);
    EXPECT_NE(bench.Calibrate(), nullptr);
    return watch.Count();
  }
};

TEST_P(EveryAllocation, OfACalibrationMayFail) {
  const std::int64_t n_allocations = AllocationsOfARun();
  EventCounts counts;
  for (std::int64_t n = 0; n < n_allocations; ++n) {
    SCOPED_TRACE("allocation " + std::to_string(n));
    Bench bench(GetParam());
    Place place;
    std::shared_ptr<MassCalCoefficients> result;
    {
      const FailingAllocation failing(
          n, [&] { place = {.calls = bench.journal.entries().size(), .failed = true}; });
      result = bench.Calibrate();
    }
    ExpectPromises(bench, result, place, counts);
    if (n % kRunsBetweenNextRuns == 0) ExpectTheNextRunToWork(bench);
    ASSERT_FALSE(HasFailure());
  }
  std::cout << n_allocations << " allocations failed, one a run; events by number: "
            << ::testing::PrintToString(counts) << "\n";
  EXPECT_GT(counts[7], 0);
}

INSTANTIATE_TEST_SUITE_P(AllWays, EveryAllocation, ::testing::ValuesIn(Kinds()),
                         [](const auto& one) { return one.param.name; });

TEST(EveryAllocationOfACreation, MayFailAndIsErrorSevenOrATraceThatStaysOff) {
  int n_created = 0;
  for (std::int64_t n = 0;; ++n) {
    SCOPED_TRACE("allocation " + std::to_string(n));
    const ModuleStateScope module_state;
    Journal journal;
    FakeHost host(journal);
    FakeInstrument instrument(journal, host);
    RecordedEvents events;
    bool created = false;
    bool failed = false;
    {
      const FailingAllocation failing(n, [&] { failed = true; });
      try {
        const TofCalibrator calibrator(instrument, host, events);
        created = true;
      } catch (...) {
        EXPECT_EQ(CurrentError().number(), 7);
      }
    }
    if (!failed) break;
    n_created += created ? 1 : 0;
  }
  // Where only the trace could not be had: it stays off, and the object works without.
  EXPECT_GT(n_created, 0);
}

}  // namespace
}  // namespace tof::fakes
