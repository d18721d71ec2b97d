#include "hosts/native/followed_trace.h"

#include "component/automation/convert.h"
#include "hosts/native/registered_trace.h"
#include "hosts/native/silent_trace.h"

namespace tof::native {

bool TellsOfAnError(std::string_view line) {
  return line.rfind("error[", 0) == 0 || line.rfind("Error[", 0) == 0 ||
         line.find(".Error[") != std::string_view::npos;
}

Variant FollowedTrace::GetProperty(std::string_view name) {
  return next_->GetProperty(name);
}

void FollowedTrace::PutProperty(std::string_view name, const Variant& value) {
  next_->PutProperty(name, value);
}

Variant FollowedTrace::Call(std::string_view method, const std::vector<Variant>& arguments) {
  if (method == "Entry") follower_.Enter(ToText(arguments.at(0)), ToInt32(arguments.at(1)));
  if (method == "Exit") follower_.Leave();
  if (method == "TracePrint") follower_.Print(ToText(arguments.at(0)));
  return next_->Call(method, arguments);
}

void FollowTrace(PortableHost& host, RoutineFollower& follower) {
  std::shared_ptr<LateBoundObject> next = RegisteredTrace(host);
  if (!next) next = std::make_shared<SilentTrace>();
  auto trace = std::make_shared<FollowedTrace>(follower, std::move(next));
  host.RegisterObject(kTraceProgId, [trace] { return trace; });
}

}  // namespace tof::native
