// Every collaborator and host call of a whole abundance-immune calibration fails, once and for
// ever, and an abort is asked for before it, in each way of working. What is left behind must be
// what aic_fault_table.h says.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "component/automation/convert.h"
#include "component/automation/number_text.h"
#include "component/trace/trace.h"
#include "tests/component/whole_run/aic_fault_table.h"
#include "tests/component/whole_run/aic_ways.h"
#include "tests/component/whole_run/placed_calls.h"
#include "tests/component/whole_run/swept_run.h"

namespace tof::fakes {
namespace {

using aic_fault_table::Ends;

constexpr double kEntryVolts = 75.0;

// A new calibrator on a new instrument whose state moves while it measures.
struct Bench : SweptRun {
  explicit Bench(const Way& way) {
    host.trace->on = way.traced;
    Arrange(way, instrument);
    Create();
  }
};

std::vector<PlacedCall> CallsOfATracedRun(Way way) {
  way.traced = true;
  Bench bench(way);
  EXPECT_NE(bench.Calibrate(), nullptr);
  return Placed(bench.journal.entries());
}

// --- What must be left behind.

using Event = std::pair<std::int32_t, std::string>;
const Event kInjected = {kInjectedNumber, kInjectedDescription};
const Event kNoLikelyA = {-822, "Failed to find a Likely A and t0 value"};
const Event kAborted = {1, "User aborted"};

struct Left {
  std::optional<Event> event;
  bool new_coefficients = false;
  bool state_is_restored = true;
  std::string volts = NumberText(kEntryVolts);
  bool display_live = true;
  bool log_open = false;
  int aic_ends = 0;
  bool spectrum_taken = false;
};

// What the calls do to what is looked at.
void Follow(const std::string& call, const Way& way, Left& left) {
  const std::string write = "SetpointTable.SetSetpoint(" + NumberText(way.setpoint) + ",5,";
  if (BeginsWith(call, write)) {
    left.volts = call.substr(write.size(), call.size() - write.size() - 1);
  } else if (BeginsWith(call, "SpecParser.SearchTargetAbundance")) {
    left.volts = NumberText(kSearchedVolts);
  } else if (BeginsWith(call, "SpectrumDisplay.SetDisplayUpdate")) {
    left.display_live = call == "SpectrumDisplay.SetDisplayUpdate(True)";
  } else if (BeginsWith(call, "CalibLogFiles.OpenLogFile(AIC")) {
    left.log_open = true;
  } else if (BeginsWith(call, "TextStream.Close(AIC")) {
    left.log_open = false;
  } else if (call == "AcqController.EndAIC") {
    ++left.aic_ends;
  } else if (call == "AcqController.SetCalibCoefficients") {
    left.new_coefficients = true;
  } else if (BeginsWith(call, "SpecParser.GetCalibrantPeakAttributes")) {
    left.spectrum_taken = true;
  }
}

bool IsPoll(const PlacedCall& call) {
  return call.text == "AcqController.IsAbortRequested";
}

// The run of the table: a fault, or an abort that is asked for, before the call of a place.
class Expectation {
 public:
  Expectation(const Way& way, const std::vector<PlacedCall>& calls) : way_(way), calls_(calls) {}

  Left AfterOneFault(std::size_t place) const {
    Left left;
    FollowFrom(0, place, left);
    if (calls_[place].is_exit) {  // an exit that fails is ignored
      FollowFrom(place, calls_.size(), left);
      return left;
    }
    const Stop stop = StopOf(place);
    if (stop.ends == Ends::kTheCalibration) {
      left.event = kInjected;
    } else if (stop.ends == Ends::kTheEstimate) {
      left.event = kNoLikelyA;
    } else if (stop.ends == Ends::kTheAcquisition) {
      left.event = Event{13, "Type mismatch"};
    } else if (stop.ends == Ends::kTheAveraging &&
               MassesAveragedBefore(place) < MassesAveragedBefore(stop.exit)) {
      FollowFrom(stop.exit, PlaceOf("MassCalCoefficients.Calibrate"), left);
      left.event = Event{5, "Invalid procedure call or argument"};
    } else {
      FollowFrom(stop.exit, calls_.size(), left);
    }
    return left;
  }

  // The driver hears of the fault at its next call, if of nothing before; its failure path can
  // restore nothing.
  Left AfterAFaultForEver(std::size_t place) const {
    Left left;
    FollowFrom(0, place, left);
    const bool no_estimate = !calls_[place].is_exit && StopOf(place).ends == Ends::kTheEstimate;
    left.event = no_estimate ? kNoLikelyA : kInjected;
    left.state_is_restored = !left.spectrum_taken;
    return left;
  }

  // Seen by the next poll; one that is swallowed is met again by the poll behind it.
  Left AfterAnAbort(std::size_t place) const {
    Left left;
    FollowFrom(0, place, left);
    for (std::size_t n = place; n < calls_.size(); ++n) {
      if (IsPoll(calls_[n])) {
        const Stop stop = StopOf(n);
        if (stop.ends != Ends::kItself) {
          left.event = kAborted;
          return left;
        }
        n = stop.exit;
      }
      Follow(calls_[n].text, way_, left);
    }
    return left;
  }

 private:
  struct Stop {
    Ends ends;
    std::size_t exit;  // of the routine that keeps the error to itself
  };

  void FollowFrom(std::size_t begin, std::size_t end, Left& left) const {
    for (std::size_t n = begin; n < end; ++n) Follow(calls_[n].text, way_, left);
  }

  Stop StopOf(std::size_t place) const {
    const auto& running = calls_[place].running;
    for (auto routine = running.rbegin(); routine != running.rend(); ++routine) {
      const Ends ends = EndsOf(routine->name);
      if (ends != Ends::kNothingItself) return {ends, ExitOf(*routine, place)};
    }
    ADD_FAILURE() << "no routine of the table around " << calls_[place].text;
    return {Ends::kTheCalibration, calls_.size()};
  }

  static Ends EndsOf(const std::string& name) {
    for (const auto& row : aic_fault_table::kRows) {
      if (row.routine == name) return row.ends;
    }
    ADD_FAILURE() << "the table has no row for " << name;
    return Ends::kNothingItself;
  }

  std::size_t ExitOf(const RunningRoutine& routine, std::size_t from) const {
    for (std::size_t n = from; n < calls_.size(); ++n) {
      if (calls_[n].is_exit && calls_[n].running.back().entry == routine.entry) return n;
    }
    return calls_.size();
  }

  std::size_t PlaceOf(const std::string& text) const {
    std::size_t n = 0;
    while (n < calls_.size() && calls_[n].text != text) ++n;
    return n;
  }

  // A mass is averaged once its flag is read: what comes behind that only reports.
  std::size_t MassesAveragedBefore(std::size_t place) const {
    std::size_t masses = 0;
    for (std::size_t n = PlaceOf("Trace.Entry(AverageThePeakAttributes,9)"); n < place; ++n) {
      if (BeginsWith(calls_[n].text, "TuneFlags.GetFlag(TraceAICPeakAttributes")) ++masses;
    }
    return masses;
  }

  const Way& way_;
  const std::vector<PlacedCall>& calls_;
};

int OpenStreams(const Bench& bench, const std::string& begin) {
  int open = 0;
  for (const auto& [path, file] : bench.host.files) {
    if (path.find("\\" + begin) != std::string::npos) open += file.open_streams;
  }
  return open;
}

void ExpectLeft(const Bench& bench, const Way& way,
                const std::shared_ptr<MassCalCoefficients>& result, const Left& expected) {
  if (expected.event.has_value()) {
    EXPECT_THAT(bench.events.events, ::testing::ElementsAre(*expected.event));
  } else {
    EXPECT_THAT(bench.events.events, ::testing::IsEmpty());
  }
  EXPECT_EQ(result != nullptr, !expected.event.has_value());
  const auto& in_force = bench.instrument.in_force;
  if (expected.new_coefficients) {
    EXPECT_NEAR(in_force->record[0], bench.instrument.true_a_per_ns, 1e-12);
  } else {
    EXPECT_EQ(in_force, bench.old_coefficients);
  }
  std::map<std::int32_t, Variant> setpoints = bench.found;
  if (!expected.state_is_restored) {
    for (const std::int32_t id : kStoredState) setpoints[id] = kMoved;
  }
  setpoints.erase(ToInt32(way.setpoint));
  for (const auto& [id, value] : setpoints) {
    EXPECT_EQ(ToText(bench.instrument.setpoints.at(id)), ToText(value)) << "setpoint " << id;
  }
  EXPECT_EQ(ToText(bench.instrument.setpoints.at(ToInt32(way.setpoint))), expected.volts);
  EXPECT_EQ(bench.instrument.display_live, expected.display_live);
  EXPECT_EQ(OpenStreams(bench, "AIC_"), expected.log_open ? 1 : 0);
  EXPECT_EQ(bench.host.OpenStreams(),
            OpenStreams(bench, "AIC_") + OpenStreams(bench, "CalibrationLog_"))
      << "no other file stays open";
  EXPECT_EQ(bench.instrument.aic_ends, expected.aic_ends);
  EXPECT_EQ(CurrentModuleState().trace.call_stack.size(), 1U) << "a routine is still on the stack";
}

// --- The sweep.

class AicFaultSweep : public ::testing::TestWithParam<Way> {
 protected:
  // `plan(journal, n)` plans the fault of call n, which must leave `left(place)`, the call's place
  // in the traced run.
  template <class Plan, class LeftAt>
  void Sweep(Plan plan, LeftAt left) {
    std::size_t n = 0;
    for (std::size_t place = 0; place < end; ++place) {
      if (calls[place].is_trace && !way.traced) continue;
      const std::size_t call = n++;
      if (place < begin) continue;
      SCOPED_TRACE("call " + std::to_string(call) + ", " + calls[place].text + " in " +
                   calls[place].routine());
      Bench bench(way);
      bench.journal.keep_entries = false;
      plan(bench.journal, call);
      const auto result = bench.Calibrate();
      ExpectLeft(bench, way, result, left(place));
      ExpectTheNextCalibrationToWork(bench);
      if (HasFailure()) return;  // the first place tells enough
    }
    EXPECT_GT(n, 200U);
  }

  // With the fault gone and the setpoints reloaded. It closes the log that was left open.
  void ExpectTheNextCalibrationToWork(Bench& bench) const {
    bench.journal.fail_from = bench.journal.abort_before = Journal::kNever;
    bench.instrument.abort_requested = 0;
    bench.instrument.setpoints = bench.found;
    bench.instrument.aic_ends = 0;
    bench.events.events.clear();
    Left left;
    for (const PlacedCall& call : calls) Follow(call.text, way, left);
    ExpectLeft(bench, way, bench.Calibrate(), left);
  }

  std::size_t FirstOf(const std::string& text) const {
    const auto found = std::find_if(calls.begin(), calls.end(), [&](const PlacedCall& call) {
      return BeginsWith(call.text, text);
    });
    EXPECT_NE(found, calls.end()) << text;
    return static_cast<std::size_t>(found - calls.begin());
  }

  const Way& way = GetParam();
  const std::vector<PlacedCall> calls = CallsOfATracedRun(way);
  // Before and behind these the run is the same without AIC.
  const std::size_t begin = FirstOf("TuneFlags.GetFlag(SkipTOFCalibrationDuringAutotunes");
  const std::size_t end = FirstOf("Trace.Entry(RestorePreAutotuneInstrumentState");
  const Expectation expectation{way, calls};
};

TEST_P(AicFaultSweep, OneFaultLeavesWhatTheTableSays) {
  Sweep([](Journal& journal, std::size_t n) { journal.fail_from = n; },
        [&](std::size_t place) { return expectation.AfterOneFault(place); });
}

TEST_P(AicFaultSweep, AFaultForEverLeavesWhatTheTableSays) {
  Sweep(
      [](Journal& journal, std::size_t n) {
        journal.fail_from = n;
        journal.fail_count = Journal::kNever;
      },
      [&](std::size_t place) { return expectation.AfterAFaultForEver(place); });
}

TEST_P(AicFaultSweep, AnAbortLeavesWhatTheTableSays) {
  Sweep([](Journal& journal, std::size_t n) { journal.abort_before = n; },
        [&](std::size_t place) { return expectation.AfterAnAbort(place); });
}

INSTANTIATE_TEST_SUITE_P(Ways, AicFaultSweep, ::testing::ValuesIn(kWays),
                         [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace tof::fakes
