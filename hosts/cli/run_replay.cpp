#include "hosts/cli/run_replay.h"

#include "hosts/cli/output_file.h"
#include "hosts/cli/replay_report.h"
#include "hosts/cli/result_output.h"
#include "hosts/recording/recording.h"
#include "instruments/spectra/input_error.h"

namespace tof::cli {

ExitCode RunReplay(const ReplayOptions& options, std::ostream& out, std::ostream& err) {
  RequireNotAnInput(options.json_file, {options.recording});
  const recording::Recording recording = recording::ReadRecording(options.recording);
  ResultOutput output(options.json_file, out);
  const ReplayReport report{.recording = recording.source,
                            .program = recording.program,
                            .result = recording::Replay(recording),
                            .cut = recording.cut};
  output.Deliver(report);
  if (report.cut) {
    const spectra::InputError ends_early({recording.source, report.cut->line, 1}, report.cut->found,
                                         "the closing line of the recording");
    err << "tofcal: " << ends_early.what() << "; it was followed up to there\n";
  }
  if (report.result.difference) return kFailed;
  return report.cut ? kBadInput : kDone;
}

}  // namespace tof::cli
