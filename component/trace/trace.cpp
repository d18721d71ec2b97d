#include "component/trace/trace.h"

#include <type_traits>
#include <utility>

#include "component/automation/convert.h"
#include "component/automation/error.h"

namespace tof {
namespace {

constexpr const char* kTraceProgId = "vornutils.trace.1";

// Of a thread, not of an object: objects created one after the other share it.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
thread_local ModuleState* current_state = nullptr;

std::string_view TrimBlanks(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

ModuleState& CurrentModuleState() {
  thread_local ModuleState thread_state;
  return current_state != nullptr ? *current_state : thread_state;
}

ModuleStateScope::ModuleStateScope() : outer_(std::exchange(current_state, &state_)) {}
ModuleStateScope::~ModuleStateScope() {
  current_state = outer_;
}

void CreateTraceObject(HostServices& host, const std::string& module_name) {
  TraceModule& module = CurrentModuleState().trace;
  if (module.component != nullptr) return;
  try {
    module.component = host.CreateObject(kTraceProgId);
    if (module.component == nullptr) Raise(RunTimeError::kCannotCreateObject);
    module.component->PutProperty("mnameOfModule", module_name);
    module.on = ToBool(module.component->GetProperty("mtraceFlag"));
  } catch (...) {
    module.on = false;
  }
  module.call_stack.emplace_back(std::int32_t{0});
}

void TraceObj::TraceEntry(std::int32_t level, std::string_view name) {
  if (!module_.on) return;
  const Variant routine{std::string(name)};
  module_.call_stack.push_front(routine);
  try {
    module_.call_stack.push_front(Variant(level));
  } catch (...) {
    // Level and name stand on the stack together or not at all.
    module_.call_stack.pop_front();
    throw;
  }
  entered_ = true;
  module_.component->Call("Entry", {routine, Variant(level)});
}

void TraceObj::Print(std::string_view text) {
  if (module_.call_stack.size() < 2) Raise(RunTimeError::kSubscriptOutOfRange);
  module_.component->Call("TracePrint", {Variant(std::string(TrimBlanks(text))),
                                         module_.call_stack[1], module_.call_stack[0]});
}

void TraceObj::TraceExit() noexcept {
  if (!module_.on || !entered_) return;
  // Moved, not copied: a copy of the name may need memory, and nothing may leave this function.
  static_assert(std::is_nothrow_move_constructible_v<Variant>);
  const Variant level = std::move(module_.call_stack[0]);
  const Variant name = std::move(module_.call_stack[1]);
  module_.call_stack.pop_front();
  module_.call_stack.pop_front();
  try {
    module_.component->Call("Exit", {name, level});
  } catch (...) {
    // The routine has done its work; what it answers must not depend on the trace.
  }
}

}  // namespace tof
