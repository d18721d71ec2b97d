// The trace component of a host that draws a timeline.
#pragma once

#include <memory>
#include <utility>

#include "component/automation/late_bound_object.h"
#include "hosts/timeline/timeline.h"

namespace tof::timeline {

// Tells the timeline which routines run, and hands every call on to another trace component.
class TimelineTrace : public LateBoundObject {
 public:
  // `timeline` outlives the trace.
  TimelineTrace(Timeline& timeline, std::shared_ptr<LateBoundObject> next)
      : timeline_(timeline), next_(std::move(next)) {}

  Variant GetProperty(std::string_view name) override;
  void PutProperty(std::string_view name, const Variant& value) override;
  Variant Call(std::string_view method, const std::vector<Variant>& arguments) override;

 private:
  Timeline& timeline_;
  std::shared_ptr<LateBoundObject> next_;
};

}  // namespace tof::timeline
