// The thin layer between the routines and the outside trace component.
//
// The state is that of the module: one set per thread, kept from the first object created on the
// thread to the thread's end. Tracing is on or off for that whole time.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>

#include "component/automation/convert.h"
#include "component/automation/late_bound_object.h"
#include "component/calibrator/host_services.h"

namespace tof {

struct TraceModule {
  std::shared_ptr<LateBoundObject> component;
  bool on = false;
  // Level and name of each running routine, newest first, behind them the integer 0.
  std::deque<Variant> call_stack;
};

struct ModuleState {
  TraceModule trace;
  std::shared_ptr<TextStream> calibration_log;  // opened on first use, never closed explicitly
};

// The state of the calling thread.
ModuleState& CurrentModuleState();

// Gives the calling thread a fresh module state for the life of the scope, and the earlier one
// back: for a host that wants several independent components on one thread, one after another.
class ModuleStateScope {
 public:
  ModuleStateScope();
  ~ModuleStateScope();
  ModuleStateScope(const ModuleStateScope&) = delete;
  ModuleStateScope& operator=(const ModuleStateScope&) = delete;

 private:
  ModuleState state_;
  ModuleState* outer_;
};

// Creates the outside trace component ("vornutils.trace.1") unless there is one, names the module
// to it and asks whether to trace. Never raises: without the component tracing stays off.
void CreateTraceObject(HostServices& host, const std::string& module_name);

// What a routine holds while it runs. Each operation is one test of a boolean when tracing is off.
class TraceObj {
 public:
  TraceObj() = default;
  ~TraceObj() { TraceExit(); }
  TraceObj(const TraceObj&) = delete;
  TraceObj& operator=(const TraceObj&) = delete;

  // Announces the routine. Raises what the trace component raises; the routine is then on the
  // stack.
  void TraceEntry(std::int32_t level, std::string_view name);

  // For texts that are costly to put together.
  bool IsOn() const { return module_.on; }

  // Writes one line, without the blanks at its ends. The parts are texts, whole numbers, doubles,
  // booleans and variants; they are put together only when tracing is on.
  template <class... Parts>
  void TracePrint(const Parts&... parts) {
    if (!module_.on) return;
    std::string text;
    (AppendText(text, parts), ...);
    Print(text);
  }

 private:
  static void AppendText(std::string& text, std::string_view part) { text += part; }
  static void AppendText(std::string& text, const char* part) { text += part; }
  static void AppendText(std::string& text, const std::string& part) { text += part; }
  static void AppendText(std::string& text, const Variant& part) { text += ToText(part); }
  void Print(std::string_view text);
  // The stack is popped, a failure of the component is ignored: the routine has done its work.
  void TraceExit() noexcept;

  TraceModule& module_ = CurrentModuleState().trace;
  bool entered_ = false;
};

}  // namespace tof
