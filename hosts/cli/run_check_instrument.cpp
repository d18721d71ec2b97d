#include "hosts/cli/run_check_instrument.h"

#include "hosts/cli/calibration_setup.h"
#include "hosts/cli/chosen_instrument.h"
#include "hosts/cli/conformance_report.h"
#include "hosts/cli/log_folder.h"
#include "hosts/cli/output_file.h"
#include "hosts/cli/progress.h"
#include "hosts/cli/result_output.h"
#include "hosts/cli/watched_clock.h"

namespace tof::cli {

ExitCode RunCheckInstrument(const CheckOptions& options, const Terminal& terminal) {
  const description::InstrumentDescription description = DescriptionFor(options);
  RequireNotAnInput(options.json_file, InputFiles(options, description));

  Progress progress(terminal.err, terminal.err_is_terminal);
  const standin::StandInInstrument* watched = nullptr;
  const auto show_progress = [&progress, &watched] {
    if (watched == nullptr) return;
    progress.Show(ProgressText({.stage = "checking the instrument",
                                .spectra = watched->Counted().spectra,
                                .plan = std::nullopt,
                                .instrument_seconds = watched->State().clock->Seconds()}));
  };
  const auto clock = std::make_shared<WatchedClock>(MakeClock(options.real_time), show_progress);
  const auto host = MakeHost(options, terminal.err, clock);
  standin::StandInInstrument instrument(description, InstrumentOptionsOf(options), *host, clock);
  watched = &instrument;

  ResultOutput output(options.json_file, terminal.out);
  PrepareLogFolder(description.base_folder);
  const ConformanceReport report{
      .instrument = description.name,
      .results = conformance::RunChecks(
          {.factory = instrument,
           .host = *host,
           .abort = {.ask = [&instrument] { instrument.RequestAbort(); },
                     .withdraw = [&instrument] { instrument.WithdrawAbort(); }},
           .masses = options.masses})};
  progress.Finish();
  output.Deliver(report);
  const auto failed = NumberOf(conformance::Outcome::kFail, report);
  if (failed == 0) return kDone;
  terminal.err << "instrument check failed: " << failed << " of " << report.results.size()
               << " checks\n";
  return kFailed;
}

}  // namespace tof::cli
