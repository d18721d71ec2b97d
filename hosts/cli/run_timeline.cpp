#include "hosts/cli/run_timeline.h"

#include <utility>

#include "hosts/native/followed_trace.h"

namespace tof::cli {

RunTimeline::RunTimeline(const std::filesystem::path& path,
                         std::shared_ptr<const spectra::InstrumentClock> clock) {
  if (path.empty()) return;
  file_.emplace(path);
  timeline_.emplace(std::move(clock));
}

void RunTimeline::Follow(native::PortableHost& host) {
  if (timeline_) native::FollowTrace(host, *timeline_);
}

void RunTimeline::Deliver() {
  if (file_) file_->Commit(timeline_->Document());
}

}  // namespace tof::cli
