#include "hosts/cli/run_check_instrument.h"

#include "hosts/cli/calibration_setup.h"
#include "hosts/cli/chosen_instrument.h"
#include "hosts/cli/conformance_report.h"
#include "hosts/cli/log_folder.h"
#include "hosts/cli/output_file.h"
#include "hosts/cli/result_output.h"

namespace tof::cli {

ExitCode RunCheckInstrument(const CheckOptions& options, std::ostream& out, std::ostream& err) {
  const description::InstrumentDescription description = DescriptionFor(options);
  RequireNotAnInput(options.json_file, InputFiles(options, description));

  const auto clock = MakeClock(options.real_time);
  const auto host = MakeHost(options, err, clock);
  standin::StandInInstrument instrument(description, InstrumentOptionsOf(options), *host, clock);

  ResultOutput output(options.json_file, out);
  PrepareLogFolder(description.base_folder);
  const ConformanceReport report{
      .instrument = description.name,
      .results = conformance::RunChecks(
          {.factory = instrument,
           .host = *host,
           .abort = {.ask = [&instrument] { instrument.RequestAbort(); },
                     .withdraw = [&instrument] { instrument.WithdrawAbort(); }},
           .masses = options.masses})};
  output.Deliver(report);
  const auto failed = NumberOf(conformance::Outcome::kFail, report);
  if (failed == 0) return kDone;
  err << "instrument check failed: " << failed << " of " << report.results.size() << " checks\n";
  return kFailed;
}

}  // namespace tof::cli
