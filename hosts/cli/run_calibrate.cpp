#include "hosts/cli/run_calibrate.h"

#include <chrono>
#include <memory>
#include <optional>
#include <utility>
#include <variant>

#include "component/automation/error.h"
#include "hosts/cli/advice.h"
#include "hosts/cli/calibration_call.h"
#include "hosts/cli/calibration_progress.h"
#include "hosts/cli/calibration_setup.h"
#include "hosts/cli/chosen_instrument.h"
#include "hosts/cli/date_text.h"
#include "hosts/cli/first_error.h"
#include "hosts/cli/interrupt.h"
#include "hosts/cli/json_report.h"
#include "hosts/cli/log_folder.h"
#include "hosts/cli/progress.h"
#include "hosts/cli/report_builder.h"
#include "hosts/cli/result_output.h"
#include "hosts/cli/run_page.h"
#include "hosts/cli/run_recording.h"
#include "hosts/cli/run_timeline.h"
#include "hosts/cli/text_report.h"
#include "hosts/cli/watched_clock.h"
#include "hosts/native/text_file.h"
#include "hosts/native/trace_file.h"
#include "instruments/spectra/input_error.h"
#include "instruments/standin/instrument.h"

namespace tof::cli {
namespace {

using description::InstrumentDescription;
using spectra::InputError;

// The trace is a file of the user's own choice, not one of the calibrator's logs.
void RegisterTrace(const std::filesystem::path& path, native::PortableHost& host) {
  if (path.empty()) return;
  const auto journal = std::make_shared<native::FileJournal>();
  try {
    const auto file = std::make_shared<native::TextFile>(path, native::OpenMode::kReplace, journal);
    host.RegisterObject(native::kTraceProgId,
                        [file] { return std::make_shared<native::TraceFile>(file); });
  } catch (const AutomationError&) {
    throw InputError({path.string()}, journal->last_failure->reason, "a file that can be written");
  }
}

CalibrationCall CallOf(const CalibrateOptions& options, const description::RunDefaults& defaults,
                       std::vector<double> masses) {
  CalibrationCall call;
  call.spectra = options.spectra.value_or(defaults.spectra);
  call.masses = std::move(masses);
  call.suppress_aic = options.suppress_aic;
  call.optional.bThisIsAManualCalibration = options.manual;
  call.optional.dTradWeighting = options.trad_weighting.value_or(defaults.trad_weighting);
  call.optional.dPeakFindTimeWindow = options.peak_window.value_or(defaults.peak_window);
  return call;
}

double SecondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

ExitCode RunCalibrate(const CalibrateOptions& options, const Terminal& terminal) {
  const auto start = std::chrono::steady_clock::now();

  const InstrumentDescription description = DescriptionFor(options);
  std::vector<double> masses = ExpectedMasses(options, description);
  const auto inputs = InputFiles(options, description);
  RequireNotAnInput(options.json_file, inputs);
  RequireNotAnInput(options.trace_file, inputs);
  RequireNotAnInput(options.record_file, inputs);
  RequireNotAnInput(options.timeline_file, inputs);
  RequireNotAnInput(options.report_file, inputs);

  Progress progress(terminal.err, terminal.err_is_terminal);
  CalibrationProgress* followed = nullptr;
  const auto show_progress = [&followed] {
    if (followed != nullptr) followed->Show();
  };
  const auto clock = std::make_shared<WatchedClock>(MakeClock(options.real_time), show_progress);
  const auto host = MakeHost(options, terminal.err, clock);
  RunTimeline timeline(options.timeline_file, clock);
  standin::InstrumentOptions instrument_options = InstrumentOptionsOf(options);
  instrument_options.observer = timeline.observer();
  standin::StandInInstrument instrument(description, instrument_options, *host, clock);

  ResultOutput output(options.json_file, terminal.out);
  RunPage page(options.report_file);
  PrepareLogFolder(description.base_folder);
  RegisterTrace(options.trace_file, *host);
  FirstError first_error;
  native::FollowTrace(*host, first_error);
  timeline.Follow(*host);
  InstrumentFactory& watched = page.Follow(instrument, *host);
  RunRecording recording(options.record_file, *host);

  CalibrationCall call = CallOf(options, description.run, std::move(masses));
  CalibrationProgress calibration(progress, instrument, call.masses.size(), call.spectra, *host);
  followed = &calibration;
  const AbortOnInterrupt abort_on_interrupt(instrument);
  const RunOutcome outcome = Calibrate(std::move(call), watched, *host, recording.tape());
  progress.Finish();

  CalibrationReport report = BuildReport(outcome, instrument, *host);
  report.date = UtcDateText(std::chrono::system_clock::now());
  report.wall_seconds = SecondsSince(start);
  page.Deliver(report);
  output.Deliver(report);
  timeline.Deliver();
  recording.Close();
  if (!outcome.failure) return kDone;
  terminal.err << "calibration failed: [" << report.status_number << "] " << report.status_message
               << '\n'
               << AdviceOn(report, host->Files(), first_error.line());
  return kFailed;
}

}  // namespace tof::cli
