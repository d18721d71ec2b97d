#include "hosts/cli/run_apply.h"

#include <fmt/format.h>

#include <chrono>
#include <filesystem>
#include <string_view>

#include "hosts/apply/applied_calibration.h"
#include "hosts/apply/mzml_conversion.h"
#include "hosts/apply/text_conversion.h"
#include "hosts/cli/apply_report.h"
#include "hosts/cli/date_text.h"
#include "hosts/cli/output_file.h"
#include "hosts/cli/progress.h"
#include "hosts/cli/result_output.h"
#include "hosts/cli/spectrum_format.h"
#include "hosts/cli/stop_on_interrupt.h"
#include "instruments/spectra/input_error.h"

namespace tof::cli {
namespace {

constexpr double kMegabyte = 1e6;

void RequireOneFormat(const std::filesystem::path& input, const std::filesystem::path& output) {
  if (IsMzml(input) == IsMzml(output)) return;
  throw spectra::InputError(
      {output.string()},
      IsMzml(input) ? "a name that does not end in .mzML" : "a name that ends in .mzML",
      "the format of the input");
}

}  // namespace

ExitCode RunApply(const ApplyOptions& options, const Terminal& terminal) {
  RequireOneFormat(options.spectrum, options.output);
  const apply::AppliedCalibration calibration =
      apply::ReadCalibration({options.coefficients, options.run, options.window});
  const std::vector<std::filesystem::path> inputs{options.coefficients, options.spectrum};
  RequireNotAnInput(options.output, inputs);
  RequireNotAnInput(options.json_file, inputs);

  ApplyReport report;
  report.output = options.output.string();
  report.facts =
      apply::ProvenanceOf(calibration, TOF_VERSION, UtcDateText(std::chrono::system_clock::now()));
  ResultOutput result(options.json_file, terminal.out);
  OutputFile file(options.output);
  const apply::Sink sink = [&file](std::string_view bytes) { file.Write(bytes); };
  Progress progress(terminal.err, terminal.err_is_terminal);
  const StopOnInterrupt interrupt;
  const auto show = [&](std::uint64_t bytes) {
    interrupt.Check();
    progress.Show(fmt::format("applying: {:.0f} MB read", static_cast<double>(bytes) / kMegabyte));
  };

  apply::MassAxis axis(calibration);
  if (IsMzml(options.spectrum)) {
    apply::ConvertMzml(options.spectrum, report.facts, TOF_VERSION, axis, sink, show);
  } else {
    apply::ConvertText(options.spectrum, report.facts, axis, sink, show);
  }
  file.Commit();
  progress.Finish();
  report.counts = axis.Counts();
  result.Deliver(report);
  return kDone;
}

}  // namespace tof::cli
