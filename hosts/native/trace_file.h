// The trace component of a portable host: one line in a text file per call.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "component/automation/late_bound_object.h"
#include "component/calibrator/host_services.h"

namespace tof::native {

// The ProgID under which the calibrator asks for the trace component.
inline constexpr const char* kTraceProgId = "vornutils.trace.1";

// Properties: "mnameOfModule" (text, written once by the module that traces) and "mtraceFlag" (read
// only; True: tracing is on). Methods: "Entry"(routine, level), "Exit"(routine, level),
// "TracePrint"(text, routine, level).
//
// A line is four columns, or five for TracePrint, with a tab between two: module, method, level,
// routine, text. Tabs and line ends inside a column become blanks. Of the routine Outer, which
// prints "1.1" and calls Inner:
//
//   vorntofcaliblib<TAB>Entry<TAB>4<TAB>Outer
//   vorntofcaliblib<TAB>TracePrint<TAB>4<TAB>Outer<TAB>1.1
//   vorntofcaliblib<TAB>Entry<TAB>9<TAB>Inner
//   vorntofcaliblib<TAB>Exit<TAB>9<TAB>Inner
//   vorntofcaliblib<TAB>Exit<TAB>4<TAB>Outer
//
// Errors: 438 for another name, 450 for another number of arguments, 13 for arguments that are not
// text, those of the stream as they are.
class TraceFile : public LateBoundObject {
 public:
  explicit TraceFile(std::shared_ptr<TextStream> stream) : stream_(std::move(stream)) {}

  Variant GetProperty(std::string_view name) override;
  void PutProperty(std::string_view name, const Variant& value) override;
  Variant Call(std::string_view method, const std::vector<Variant>& arguments) override;

 private:
  std::shared_ptr<TextStream> stream_;
  std::string module_name_;
};

}  // namespace tof::native
