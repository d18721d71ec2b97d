// The trace component of a host that follows which routine runs.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "component/automation/convert.h"
#include "component/automation/late_bound_object.h"

namespace tof::cli {

// Tells which routines begin and end, and hands every call on to another trace component, if there
// is one. Without one it wants every call itself: routines are announced only while tracing is on.
class RoutineTrace : public LateBoundObject {
 public:
  using OnEntry = std::function<void(std::string_view routine)>;
  using OnExit = std::function<void()>;

  RoutineTrace(OnEntry on_entry, OnExit on_exit, std::shared_ptr<LateBoundObject> next)
      : on_entry_(std::move(on_entry)), on_exit_(std::move(on_exit)), next_(std::move(next)) {}

  Variant GetProperty(std::string_view name) override {
    return next_ != nullptr ? next_->GetProperty(name) : Variant(true);
  }
  void PutProperty(std::string_view name, const Variant& value) override {
    if (next_ != nullptr) next_->PutProperty(name, value);
  }
  Variant Call(std::string_view method, const std::vector<Variant>& arguments) override {
    if (method == "Entry") on_entry_(ToText(arguments.at(0)));
    if (method == "Exit") on_exit_();
    return next_ != nullptr ? next_->Call(method, arguments) : Variant{};
  }

 private:
  OnEntry on_entry_;
  OnExit on_exit_;
  std::shared_ptr<LateBoundObject> next_;
};

}  // namespace tof::cli
