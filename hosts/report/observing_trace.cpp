#include "hosts/report/observing_trace.h"

#include "component/automation/convert.h"

namespace tof::report {

Variant ObservingTrace::GetProperty(std::string_view name) {
  return next_->GetProperty(name);
}

void ObservingTrace::PutProperty(std::string_view name, const Variant& value) {
  next_->PutProperty(name, value);
}

Variant ObservingTrace::Call(std::string_view method, const std::vector<Variant>& arguments) {
  if (method == "Entry") stages_->Enter(ToText(arguments.at(0)));
  if (method == "Exit") stages_->Leave();
  if (method == "TracePrint") stages_->Print(ToText(arguments.at(0)));
  return next_->Call(method, arguments);
}

}  // namespace tof::report
