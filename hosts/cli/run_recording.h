// The recording of a run, where one is asked for.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "hosts/native/portable_host.h"
#include "hosts/recording/recorder.h"

namespace tof::cli {

class RunRecording {
 public:
  // Nothing at all without a `path`. Makes the file and sees to it that there is a trace to record.
  // Raises an InputError when the file can't be written. `host` outlives the recording.
  RunRecording(std::filesystem::path path, native::PortableHost& host);

  // None when nothing is recorded.
  recording::Tape* tape() { return recorder_ ? &*recorder_ : nullptr; }

  // Writes the closing line. Raises an InputError when the recording did not get into the file.
  void Close();

 private:
  std::filesystem::path path_;
  std::optional<recording::RecordingFile> file_;
  std::optional<recording::Recorder> recorder_;
};

}  // namespace tof::cli
