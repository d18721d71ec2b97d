#include "hosts/cli/run_recording.h"

#include <memory>
#include <utility>

#include "hosts/native/registered_trace.h"
#include "hosts/native/silent_trace.h"
#include "hosts/native/trace_file.h"
#include "instruments/spectra/input_error.h"

namespace tof::cli {

RunRecording::RunRecording(std::filesystem::path path, native::PortableHost& host)
    : path_(std::move(path)) {
  if (path_.empty()) return;
  file_.emplace(path_, "tofcal " TOF_VERSION);
  recorder_.emplace(*file_);
  if (native::RegisteredTrace(host)) return;
  host.RegisterObject(native::kTraceProgId, [] { return std::make_shared<native::SilentTrace>(); });
}

void RunRecording::Close() {
  if (!file_) return;
  file_->Close(recorder_->calls());
  if (!file_->failure()) return;
  throw spectra::InputError({path_.string()}, *file_->failure() + ", so the recording ends early",
                            "room for the recording");
}

}  // namespace tof::cli
