#include "hosts/native/trace_file.h"

#include <algorithm>

#include "component/automation/convert.h"
#include "component/automation/error.h"

namespace tof::native {
namespace {

[[noreturn]] void RaiseUnknownName() {
  throw AutomationError(438, "Object doesn't support this property or method");
}

void RequireCount(const std::vector<Variant>& arguments, std::size_t count) {
  if (arguments.size() == count) return;
  throw AutomationError(450, "Wrong number of arguments or invalid property assignment");
}

std::string Column(const Variant& value) {
  std::string text = ToText(value);
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\t' || c == '\r' || c == '\n'; }, ' ');
  return text;
}

}  // namespace

Variant TraceFile::GetProperty(std::string_view name) {
  if (name == "mtraceFlag") return true;
  if (name == "mnameOfModule") return module_name_;
  RaiseUnknownName();
}

void TraceFile::PutProperty(std::string_view name, const Variant& value) {
  if (name != "mnameOfModule") RaiseUnknownName();
  module_name_ = Column(value);
}

Variant TraceFile::Call(std::string_view method, const std::vector<Variant>& arguments) {
  const std::string start = module_name_ + '\t' + std::string(method) + '\t';
  if (method == "Entry" || method == "Exit") {
    RequireCount(arguments, 2);
    stream_->WriteLine(start + Column(arguments[1]) + '\t' + Column(arguments[0]));
  } else if (method == "TracePrint") {
    RequireCount(arguments, 3);
    stream_->WriteLine(start + Column(arguments[2]) + '\t' + Column(arguments[1]) + '\t' +
                       Column(arguments[0]));
  } else {
    RaiseUnknownName();
  }
  return {};
}

}  // namespace tof::native
