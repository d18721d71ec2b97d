#include "hosts/cli/run_drift.h"

#include <fmt/format.h>

#include <filesystem>
#include <optional>
#include <utility>

#include "hosts/cli/drift_report.h"
#include "hosts/cli/output_file.h"
#include "hosts/cli/progress.h"
#include "hosts/cli/result_output.h"
#include "hosts/cli/stop_on_interrupt.h"
#include "instruments/spectra/utf8_path.h"

namespace tof::cli {
namespace {

constexpr double kMegabyte = 1e6;

// "LABEL=FILE", or the path of a file, which is then its own label.
DriftFile FileOf(const std::string& argument) {
  std::error_code no_status;
  const std::size_t sign = argument.find('=');
  if (sign == std::string::npos ||
      std::filesystem::exists(spectra::PathOfUtf8(argument), no_status)) {
    return {argument, argument, {}};
  }
  return {argument.substr(sign + 1), argument.substr(0, sign), {}};
}

DriftReport Read(const DriftOptions& options, const Terminal& terminal) {
  DriftReport report;
  report.options = options.analysis;
  Progress progress(terminal.err, terminal.err_is_terminal);
  const StopOnInterrupt interrupt;
  drift::SeriesBuilder builder;
  const auto add = [&builder](const drift::DataRow& row) { builder.Add(row); };
  for (const std::string& argument : options.files) {
    DriftFile file = FileOf(argument);
    builder.BeginFile(file.label);
    file.read = drift::ReadDataSet(spectra::PathOfUtf8(file.path), add, [&](std::uint64_t bytes) {
      interrupt.Check();
      progress.Show(
          fmt::format("reading {}: {:.0f} MB", file.path, static_cast<double>(bytes) / kMegabyte));
    });
    builder.EndFile();
    report.files.push_back(std::move(file));
  }
  report.runs_per_point = builder.RunsPerPoint();
  for (const drift::Instrument& instrument : builder.Finish()) {
    report.instruments.push_back(drift::Analyse(instrument, options.analysis));
  }
  return report;
}

}  // namespace

ExitCode RunDrift(const DriftOptions& options, const Terminal& terminal) {
  std::vector<std::filesystem::path> inputs;
  for (const std::string& argument : options.files)
    inputs.push_back(spectra::PathOfUtf8(FileOf(argument).path));
  RequireNotAnInput(options.json_file, inputs);
  RequireNotAnInput(options.report_file, inputs);
  ResultOutput output(options.json_file, terminal.out);
  std::optional<OutputFile> page;
  if (!options.report_file.empty()) page.emplace(options.report_file);
  const DriftReport report = Read(options, terminal);
  if (page) page->Commit(HtmlOf(report));
  output.Deliver(report);
  return kDone;
}

}  // namespace tof::cli
