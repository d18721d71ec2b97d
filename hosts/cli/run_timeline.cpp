#include "hosts/cli/run_timeline.h"

#include <utility>

#include "hosts/native/registered_trace.h"
#include "hosts/native/silent_trace.h"
#include "hosts/native/trace_file.h"
#include "hosts/timeline/timeline_trace.h"

namespace tof::cli {

RunTimeline::RunTimeline(const std::string& path,
                         std::shared_ptr<const spectra::InstrumentClock> clock) {
  if (path.empty()) return;
  file_.emplace(path);
  timeline_.emplace(std::move(clock));
}

void RunTimeline::Follow(native::PortableHost& host) {
  if (!timeline_) return;
  std::shared_ptr<LateBoundObject> next = native::RegisteredTrace(host);
  if (!next) next = std::make_shared<native::SilentTrace>();
  auto trace = std::make_shared<timeline::TimelineTrace>(*timeline_, std::move(next));
  host.RegisterObject(native::kTraceProgId, [trace] { return trace; });
}

void RunTimeline::Deliver() {
  if (file_) file_->Commit(timeline_->Document());
}

}  // namespace tof::cli
