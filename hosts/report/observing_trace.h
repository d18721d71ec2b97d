// The trace component of a host that wants to know where a calibration is.
#pragma once

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "component/automation/late_bound_object.h"
#include "hosts/report/stage_clock.h"

namespace tof::report {

// Tells `stages`, then hands every call on to the next trace component.
class ObservingTrace : public LateBoundObject {
 public:
  ObservingTrace(std::shared_ptr<StageClock> stages, std::shared_ptr<LateBoundObject> next)
      : stages_(std::move(stages)), next_(std::move(next)) {}

  Variant GetProperty(std::string_view name) override;
  void PutProperty(std::string_view name, const Variant& value) override;
  Variant Call(std::string_view method, const std::vector<Variant>& arguments) override;

 private:
  std::shared_ptr<StageClock> stages_;
  std::shared_ptr<LateBoundObject> next_;
};

}  // namespace tof::report
