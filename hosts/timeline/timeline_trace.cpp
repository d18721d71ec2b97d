#include "hosts/timeline/timeline_trace.h"

#include "component/automation/convert.h"

namespace tof::timeline {

Variant TimelineTrace::GetProperty(std::string_view name) {
  return next_->GetProperty(name);
}

void TimelineTrace::PutProperty(std::string_view name, const Variant& value) {
  next_->PutProperty(name, value);
}

// The timeline first: a routine whose entry fails is left all the same.
Variant TimelineTrace::Call(std::string_view method, const std::vector<Variant>& arguments) {
  if (method == "Entry") timeline_.EnterRoutine(ToText(arguments.at(0)), ToInt32(arguments.at(1)));
  if (method == "Exit") timeline_.LeaveRoutine();
  return next_->Call(method, arguments);
}

}  // namespace tof::timeline
