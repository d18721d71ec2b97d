#include "component/trace/trace.h"

#include <map>
#include <thread>

#include "tests/component/error_number_of.h"
#include "tests/support/calibration_fixture.h"

namespace tof {
namespace {

using fakes::kInjectedNumber;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Trace : public fakes::CalibrationFixture {
 protected:
  void CreateTrace() {
    CreateTraceObject(host, "vorntofcaliblib");
    journal.Clear();
  }
  TraceModule& module() { return CurrentModuleState().trace; }
  const std::vector<std::string>& lines() const { return host.trace->lines; }
};

TEST_F(Trace, CreatesTheComponentNamesTheModuleAndAsksWhetherToTrace) {
  CreateTraceObject(host, "vorntofcaliblib");
  EXPECT_THAT(journal.entries(), ElementsAre("Host.CreateObject(vornutils.trace.1)",
                                             "Trace.Put(mnameOfModule)", "Trace.Get(mtraceFlag)"));
  EXPECT_EQ(host.trace->module_name, "vorntofcaliblib");
  EXPECT_TRUE(module().on);
  EXPECT_THAT(module().call_stack, ElementsAre(Variant(std::int32_t{0})));
}

TEST_F(Trace, CreatesTheComponentOnlyOnce) {
  CreateTrace();
  CreateTraceObject(host, "another module");
  EXPECT_THAT(journal.entries(), IsEmpty());
  EXPECT_EQ(host.trace->module_name, "vorntofcaliblib");
  EXPECT_EQ(module().call_stack.size(), 1U);
}

TEST_F(Trace, ConvertsTheFlagOfTheComponentToABoolean) {
  struct Row {
    Variant flag;
    bool on;
  };
  for (const Row& row : {Row{true, true}, Row{false, false}, Row{std::int32_t{-1}, true},
                         Row{std::int16_t{0}, false}, Row{"True", true}, Row{"False", false},
                         Row{0.5, true}, Row{Variant(), false}, Row{"on, please", false}}) {
    const ModuleStateScope fresh;
    host.trace->on = row.flag;
    CreateTraceObject(host, "vorntofcaliblib");
    EXPECT_EQ(module().on, row.on) << "flag " << ToText(row.flag);
  }
}

TEST_F(Trace, ReadsTheFlagOnlyAtCreation) {
  host.trace->on = false;
  CreateTrace();
  host.trace->on = true;
  CreateTraceObject(host, "vorntofcaliblib");
  TraceObj trace;
  trace.TraceEntry(9, "Outer");
  EXPECT_THAT(journal.entries(), IsEmpty());
}

TEST_F(Trace, StaysOffWhenAStepOfTheCreationFails) {
  for (const char* failing : {"Host.CreateObject", "Trace.Put", "Trace.Get"}) {
    const ModuleStateScope fresh;
    journal.fail_operation = failing;
    CreateTrace();
    EXPECT_FALSE(module().on) << failing;
    EXPECT_THAT(module().call_stack, ElementsAre(Variant(std::int32_t{0}))) << failing;
    TraceObj trace;
    trace.TraceEntry(9, "Outer");
    trace.TracePrint("a line");
    EXPECT_THAT(journal.entries(), IsEmpty()) << failing;
  }
}

TEST_F(Trace, TriesAgainForTheNextObjectWhenTheComponentCouldNotBeCreated) {
  journal.fail_operation = "Host.CreateObject";
  CreateTrace();
  journal.fail_operation.clear();
  CreateTraceObject(host, "vorntofcaliblib");
  EXPECT_TRUE(module().on);
  TraceObj trace;
  trace.TraceEntry(9, "Outer");
  EXPECT_THAT(lines(), ElementsAre("Entry Outer 9"));
}

TEST_F(Trace, KeepsAComponentThatCouldNotBeAskedAndStaysOff) {
  journal.fail_operation = "Trace.Get";
  CreateTrace();
  journal.fail_operation.clear();
  CreateTraceObject(host, "vorntofcaliblib");
  EXPECT_THAT(journal.entries(), IsEmpty());
  EXPECT_FALSE(module().on);
}

TEST_F(Trace, NestsRoutinesAndAttributesEveryLineToTheInnermostOne) {
  CreateTrace();
  {
    TraceObj outer;
    outer.TraceEntry(4, "Outer");
    outer.TracePrint("before");
    {
      TraceObj inner;
      inner.TraceEntry(9, "Inner");
      inner.TracePrint("inside");
    }
    outer.TracePrint("after");
  }
  EXPECT_THAT(lines(),
              ElementsAre("Entry Outer 4", "Outer 4: before", "Entry Inner 9", "Inner 9: inside",
                          "Exit Inner 9", "Outer 4: after", "Exit Outer 4"));
  EXPECT_EQ(module().call_stack.size(), 1U);
}

TEST_F(Trace, PassesTextNameAndLevelInThisOrder) {
  CreateTrace();
  {
    TraceObj trace;
    trace.TraceEntry(2, "Routine");
    trace.TracePrint("a line");
  }
  EXPECT_THAT(journal.entries(),
              ElementsAre("Trace.Entry(Routine,2)", "Trace.TracePrint(a line,Routine,2)",
                          "Trace.Exit(Routine,2)"));
}

TEST_F(Trace, RemovesTheBlanksAtBothEndsOfAText) {
  struct Row {
    const char* text;
    const char* traced;
  };
  CreateTrace();
  TraceObj trace;
  trace.TraceEntry(9, "Routine");
  for (const Row& row :
       {Row{"  both  ", "both"}, Row{" leading", "leading"}, Row{"trailing ", "trailing"},
        Row{"two  blanks inside", "two  blanks inside"}, Row{"   ", ""}, Row{"", ""},
        Row{"\ttab ", "\ttab"}}) {
    trace.TracePrint(row.text);
    EXPECT_EQ(host.trace->Texts().back(), row.traced);
  }
}

TEST_F(Trace, PutsNumbersAndBooleansIntoATextAsTheAutomationTypesDo) {
  CreateTrace();
  TraceObj trace;
  trace.TraceEntry(9, "Routine");
  trace.TracePrint("[", std::int32_t{-7}, ", ", std::int16_t{3}, ", ", 0.1, ", ", 1e15, ", ", true,
                   ", ", false, ", ", Variant("text"), "]");
  EXPECT_EQ(host.trace->Texts().back(), "[-7, 3, 0.1, 1E+15, True, False, text]");
}

TEST_F(Trace, PutsATextTogetherOnlyWhenItIsOn) {
  const Variant not_a_text{Variant::Missing{}};
  host.trace->on = false;
  CreateTrace();
  {
    TraceObj trace;
    trace.TraceEntry(9, "Routine");
    EXPECT_NO_THROW(trace.TracePrint("text ", not_a_text));
  }
  EXPECT_THAT(journal.entries(), IsEmpty());
  EXPECT_THAT(lines(), IsEmpty());

  const ModuleStateScope fresh;
  host.trace->on = true;
  CreateTrace();
  TraceObj trace;
  trace.TraceEntry(9, "Routine");
  EXPECT_EQ(ErrorNumberOf([&] { trace.TracePrint("text ", not_a_text); }), 13);
}

TEST_F(Trace, RaisesWhatAFailingEntryRaisesAndStillPopsTheRoutine) {
  CreateTrace();
  journal.fail_operation = "Trace.Entry";
  {
    TraceObj trace;
    EXPECT_EQ(ErrorNumberOf([&] { trace.TraceEntry(9, "Routine"); }), kInjectedNumber);
    EXPECT_EQ(module().call_stack.size(), 3U);
  }
  EXPECT_EQ(module().call_stack.size(), 1U);
  EXPECT_THAT(lines(), ElementsAre("Exit Routine 9"));
}

TEST_F(Trace, RaisesWhatAFailingPrintRaises) {
  CreateTrace();
  TraceObj trace;
  trace.TraceEntry(9, "Routine");
  journal.fail_operation = "Trace.TracePrint";
  EXPECT_EQ(ErrorNumberOf([&] { trace.TracePrint("a line"); }), kInjectedNumber);
}

TEST_F(Trace, RaisesAnErrorForALineOutsideEveryRoutine) {
  CreateTrace();
  TraceObj trace;
  EXPECT_EQ(ErrorNumberOf([&] { trace.TracePrint("a line"); }), 9);
}

TEST_F(Trace, IgnoresAFailingExitAndPopsTheRoutine) {
  CreateTrace();
  TraceObj outer;
  outer.TraceEntry(4, "Outer");
  {
    TraceObj inner;
    inner.TraceEntry(9, "Inner");
    journal.fail_operation = "Trace.Exit";
  }
  journal.fail_operation.clear();
  outer.TracePrint("after");
  EXPECT_THAT(lines(), ElementsAre("Entry Outer 4", "Entry Inner 9", "Outer 4: after"));
}

TEST_F(Trace, ARoutineEnteredBeforeTracingWasOnDoesNotExit) {
  TraceObj outer;
  outer.TraceEntry(4, "Outer");
  {
    TraceObj inner;
    inner.TraceEntry(9, "Inner");
    CreateTrace();
  }
  EXPECT_THAT(lines(), IsEmpty());
  EXPECT_EQ(module().call_stack.size(), 1U);
}

TEST_F(Trace, EveryThreadHasAStateOfItsOwn) {
  CreateTrace();
  bool on_elsewhere = true;
  std::thread([&] { on_elsewhere = CurrentModuleState().trace.on; }).join();
  EXPECT_FALSE(on_elsewhere);
  EXPECT_TRUE(module().on);
}

TEST_F(Trace, AScopeGivesAFreshStateAndPutsTheEarlierOneBack) {
  CreateTrace();
  {
    const ModuleStateScope fresh;
    EXPECT_EQ(module().component, nullptr);
    EXPECT_FALSE(module().on);
    EXPECT_THAT(module().call_stack, IsEmpty());
  }
  EXPECT_EQ(module().component, host.trace);
}

TEST_F(Trace, EveryRoutineOfACalibrationIsAnnouncedAtItsLevelAndLeaves) {
  const std::map<std::string, std::string> special = {{"TraceDumpCoefficients", "1"},
                                                      {"CalculateLikelyAAndt0Values", "2"},
                                                      {"calibrateTOFMassAxis", "4"},
                                                      {"LoadDefaultCalibCoefficients", "4"}};
  instrument.bad_fits = {0.5, 0.5};  // the defaults are loaded, too
  Calibrate();
  std::map<std::string, int> announced;
  std::vector<std::string> running;
  for (const std::string& line : lines()) {
    const std::string kind = line.substr(0, line.find(' '));
    if (kind != "Entry" && kind != "Exit") continue;
    const std::string routine = line.substr(kind.size() + 1);
    if (kind == "Exit") {
      ASSERT_FALSE(running.empty());
      EXPECT_EQ(running.back(), routine);
      running.pop_back();
      continue;
    }
    running.push_back(routine);
    const std::string name = routine.substr(0, routine.find(' '));
    const auto level = special.find(name);
    EXPECT_EQ(routine, name + " " + (level == special.end() ? "9" : level->second));
    ++announced[name];
  }
  EXPECT_THAT(running, IsEmpty());
  for (const auto& [name, level] : special) EXPECT_GE(announced[name], 1) << name;
}

TEST_F(Trace, ACalibrationNeedsNoTraceComponent) {
  const auto trace = host.trace;
  host.trace = nullptr;
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_THAT(events.events, IsEmpty());
  EXPECT_THAT(trace->lines, IsEmpty());
  EXPECT_THAT(journal.Only({"Trace."}), IsEmpty());
}

TEST_F(Trace, ACalibrationAsksNothingOfATraceThatIsOff) {
  host.trace->on = false;
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_THAT(journal.Only({"Trace."}), IsEmpty());
}

TEST_F(Trace, ACalibrationWithATraceThatFailsIsAFailedCalibration) {
  for (const char* failing : {"Trace.", "Trace.Entry", "Trace.TracePrint"}) {
    const ModuleStateScope fresh;
    events.events.clear();
    journal.fail_operation.clear();
    Create();
    journal.fail_operation = failing;
    EXPECT_EQ(Calibrate(), nullptr);
    EXPECT_THAT(events.events,
                ElementsAre(::testing::Pair(kInjectedNumber, fakes::kInjectedDescription)))
        << failing;
    journal.fail_operation.clear();
    calibrator.reset();
  }
}

TEST_F(Trace, ACalibrationGoesOnWhenOnlyTheExitsFail) {
  Create();
  journal.fail_operation = "Trace.Exit";
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_THAT(events.events, IsEmpty());
  EXPECT_EQ(module().call_stack.size(), 1U);
}

}  // namespace
}  // namespace tof
