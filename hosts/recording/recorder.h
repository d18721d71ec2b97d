// A tape that records.
#pragma once

#include "hosts/recording/recording_file.h"
#include "hosts/recording/tape.h"

namespace tof::recording {

// A failure to write is not raised: a calibration is worth more than its recording. Ask the file
// at the end.
class Recorder : public Tape {
 public:
  // `file` outlives the recorder.
  explicit Recorder(RecordingFile& file) : file_(file) {}

  // A call that is made while another one runs (by a host that works off its messages) is not the
  // calibrator's and passes unrecorded.
  Json Exchange(Call call, const RealCall& real) override;
  Json Invoke(const std::string& method, const Json& arguments,
              const std::function<Json()>& run) override;
  AutomationError Refused(const MalformedValue& why) override;

  std::int64_t calls() const { return calls_; }

 private:
  RecordingFile& file_;
  std::int64_t calls_ = 0;
  bool in_call_ = false;
};

}  // namespace tof::recording
