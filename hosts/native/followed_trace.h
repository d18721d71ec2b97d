// The trace component of a host that wants to know where a calibration is.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "component/automation/late_bound_object.h"
#include "hosts/native/portable_host.h"

namespace tof::native {

// Told of the calibrator's routines as they announce themselves.
class RoutineFollower {
 public:
  virtual ~RoutineFollower() = default;
  virtual void Enter(std::string_view routine, std::int32_t level) = 0;
  virtual void Leave() = 0;  // the innermost one
  virtual void Print(std::string_view /*line*/) {}
};

// Whether a line of the trace tells of an error, e.g. "error[13] in Routine(): Type mismatch".
bool TellsOfAnError(std::string_view line);

// Tells a follower, then hands every call on to the next trace component, so that a routine whose
// announcement fails there is followed all the same. The follower outlives it.
class FollowedTrace : public LateBoundObject {
 public:
  FollowedTrace(RoutineFollower& follower, std::shared_ptr<LateBoundObject> next)
      : follower_(follower), next_(std::move(next)) {}

  Variant GetProperty(std::string_view name) override;
  void PutProperty(std::string_view name, const Variant& value) override;
  Variant Call(std::string_view method, const std::vector<Variant>& arguments) override;

 private:
  RoutineFollower& follower_;
  std::shared_ptr<LateBoundObject> next_;
};

// From now on the host's trace component tells `follower`, too, and before the one that it has. A
// host without one gets one that writes nothing: routines announce themselves only to one that
// wants it.
void FollowTrace(PortableHost& host, RoutineFollower& follower);

}  // namespace tof::native
