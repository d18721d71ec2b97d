#include "component/trace/guarded.h"

#include <new>
#include <stdexcept>

#include "tests/component/error_number_of.h"
#include "tests/support/calibration_fixture.h"

namespace tof {
namespace {

using ::testing::ElementsAre;

class AGuardedRoutine : public fakes::CalibrationFixture {
 protected:
  AGuardedRoutine() { CreateTraceObject(host, "vorntofcaliblib"); }

  // What the caller gets to see of a routine that fails.
  std::int32_t RaisedBy(const Routine& routine) {
    return ErrorNumberOf([&] { Guarded(routine, [](TraceObj&) { FailWith5(); }); });
  }
  [[noreturn]] static void FailWith5() { throw AutomationError(5, "No luck", "somewhere"); }
};

TEST_F(AGuardedRoutine, AnnouncesItselfAnswersAndLeaves) {
  const int answer =
      Guarded({.name = "Routine", .on_error = OnError::kSwallow, .level = 2}, [](TraceObj& trace) {
        trace.TracePrint("working");
        return 42;
      });
  EXPECT_EQ(answer, 42);
  EXPECT_THAT(host.trace->lines,
              ElementsAre("Entry Routine 2", "Routine 2: working", "Exit Routine 2"));
}

TEST_F(AGuardedRoutine, RaisesWithoutALineWhenItHasNoHandler) {
  EXPECT_EQ(RaisedBy({.name = "Routine", .on_error = OnError::kRaise}), 5);
  EXPECT_THAT(host.trace->lines, ElementsAre("Entry Routine 9", "Exit Routine 9"));
}

TEST_F(AGuardedRoutine, TracesOneLineAndPassesTheErrorOn) {
  try {
    Guarded({.name = "Routine", .on_error = OnError::kTraceAndRaise},
            [](TraceObj&) { FailWith5(); });
    FAIL() << "nothing was raised";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 5);
    EXPECT_EQ(error.description(), "No luck");
    EXPECT_EQ(error.source(), "somewhere");
  }
  EXPECT_THAT(host.trace->lines,
              ElementsAre("Entry Routine 9", "Routine 9: error[5] in Routine(): No luck",
                          "Exit Routine 9"));
}

TEST_F(AGuardedRoutine, TracesOneLineAndAnswersAsNewlyMade) {
  const Routine routine{.name = "Routine", .on_error = OnError::kSwallow};
  const Variant answer = Guarded(routine, [](TraceObj&) -> Variant { FailWith5(); });
  EXPECT_TRUE(answer.IsEmpty());
  EXPECT_FALSE(Guarded(routine, [](TraceObj&) -> bool { FailWith5(); }));
  EXPECT_EQ(Guarded(routine, [](TraceObj&) -> std::shared_ptr<int> { FailWith5(); }), nullptr);
  EXPECT_THAT(host.trace->Texts(),
              ElementsAre("error[5] in Routine(): No luck", "error[5] in Routine(): No luck",
                          "error[5] in Routine(): No luck"));
}

TEST_F(AGuardedRoutine, WritesEachFormOfTheErrorLine) {
  const AutomationError error(-822, "Why");
  const auto text = [&](ErrorLine form, std::string_view other_name = {}) {
    return ErrorLineText({.name = "Routine",
                          .on_error = OnError::kSwallow,
                          .error_line = form,
                          .name_in_error_line = other_name},
                         error);
  };
  EXPECT_EQ(text(ErrorLine::kStandard), "error[-822] in Routine(): Why");
  EXPECT_EQ(text(ErrorLine::kNameFirst), "Routine.Error[-822]");
  EXPECT_EQ(text(ErrorLine::kNameFirst, "ROutine"), "ROutine.Error[-822]");
  EXPECT_EQ(text(ErrorLine::kNumberOnly), "Error[-822] = Why");
  EXPECT_EQ(text(ErrorLine::kCapitalized), "Error[-822] in Routine(): Why");
}

TEST_F(AGuardedRoutine, TreatsAFailingEntryAsItsOwnError) {
  journal.fail_operation = "Trace.Entry";
  bool ran = false;
  EXPECT_EQ(ErrorNumberOf([&] {
              Guarded({.name = "Routine", .on_error = OnError::kSwallow},
                      [&](TraceObj&) { ran = true; });
            }),
            0);
  EXPECT_FALSE(ran);
  EXPECT_THAT(host.trace->lines,
              ElementsAre("Routine 9: error[4711] in Routine(): Injected fault", "Exit Routine 9"));
  EXPECT_EQ(ErrorNumberOf([&] {
              Guarded({.name = "Routine", .on_error = OnError::kRaise}, [](TraceObj&) {});
            }),
            fakes::kInjectedNumber);
}

TEST_F(AGuardedRoutine, IgnoresATraceThatFailsInItsHandler) {
  journal.fail_operation = "Trace.TracePrint";
  EXPECT_EQ(RaisedBy({.name = "Routine", .on_error = OnError::kSwallow}), 0);
  EXPECT_EQ(RaisedBy({.name = "Routine", .on_error = OnError::kTraceAndRaise}), 5);
}

TEST_F(AGuardedRoutine, RunsItsFailurePathBehindTheLineAndIgnoresErrorsInIt) {
  const auto fail = [&](OnError policy) {
    return ErrorNumberOf([&] {
      Guarded(
          {.name = "Routine", .on_error = policy}, [](TraceObj&) { FailWith5(); },
          [](const AutomationError& error, TraceObj& trace) {
            trace.TracePrint("cleaning up after ", error.number());
            throw AutomationError(6, "worse");
          });
    });
  };
  EXPECT_EQ(fail(OnError::kSwallow), 0);
  EXPECT_THAT(host.trace->Texts(),
              ElementsAre("error[5] in Routine(): No luck", "cleaning up after 5"));
  EXPECT_EQ(fail(OnError::kTraceAndRaise), 5);
}

TEST_F(AGuardedRoutine, TurnsEveryExceptionIntoAnAutomationError) {
  const Routine routine{.name = "Routine", .on_error = OnError::kTraceAndRaise};
  EXPECT_EQ(ErrorNumberOf([&] { Guarded(routine, [](TraceObj&) { throw std::bad_alloc(); }); }), 7);
  EXPECT_EQ(
      ErrorNumberOf([&] { Guarded(routine, [](TraceObj&) { throw std::runtime_error("odd"); }); }),
      440);
  EXPECT_EQ(ErrorNumberOf([&] { Guarded(routine, [](TraceObj&) { throw 1; }); }), 440);
  EXPECT_THAT(host.trace->Texts(),
              ElementsAre("error[7] in Routine(): Out of memory", "error[440] in Routine(): odd",
                          "error[440] in Routine(): Automation error"));
}

TEST_F(AGuardedRoutine, TakesEachStepOfAFailurePathOnItsOwn) {
  int taken = 0;
  IgnoringErrors([&] {
    ++taken;
    FailWith5();
  });
  IgnoringErrors([&] { ++taken; });
  IgnoringErrors([&] {
    ++taken;
    throw 1;
  });
  EXPECT_EQ(taken, 3);
}

}  // namespace
}  // namespace tof
