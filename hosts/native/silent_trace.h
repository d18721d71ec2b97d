// A trace component that wants every call and writes nothing.
#pragma once

#include "component/automation/late_bound_object.h"

namespace tof::native {

// For a host that follows the calls on their way: tracing is on, so that they are made.
class SilentTrace : public LateBoundObject {
 public:
  Variant GetProperty(std::string_view) override { return true; }
  void PutProperty(std::string_view, const Variant&) override {}
  Variant Call(std::string_view, const std::vector<Variant>&) override { return {}; }
};

}  // namespace tof::native
