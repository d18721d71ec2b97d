// The timeline of a run, where one is asked for.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "hosts/cli/output_file.h"
#include "hosts/native/portable_host.h"
#include "hosts/timeline/timeline.h"

namespace tof::cli {

class RunTimeline {
 public:
  // Nothing at all without a `path`. Raises an InputError when the file can't be written.
  RunTimeline(const std::filesystem::path& path,
              std::shared_ptr<const spectra::InstrumentClock> clock);

  // To be told of spectra and setpoint writes; none when nothing is drawn.
  standin::InstrumentObserver* observer() { return timeline_ ? &*timeline_ : nullptr; }

  // Follows the host's trace from now on; the trace component that it has keeps getting every call.
  void Follow(native::PortableHost& host);

  // Raises an InputError when the timeline can't be written in full.
  void Deliver();

 private:
  std::optional<timeline::Timeline> timeline_;
  std::optional<OutputFile> file_;
};

}  // namespace tof::cli
