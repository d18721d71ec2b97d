#include "hosts/cli/run_report.h"

#include <fmt/format.h>

#include <system_error>

#include "hosts/cli/output_file.h"
#include "hosts/report/html_page.h"
#include "hosts/report/logs/log_page.h"
#include "instruments/spectra/input_error.h"

namespace tof::cli {
namespace {

using report::LoggedRuns;
using report::ReportPage;
using spectra::InputError;

LoggedRuns ReadRuns(const std::filesystem::path& folder) {
  std::error_code error;
  if (!std::filesystem::is_directory(folder, error)) {
    throw InputError({folder.string()}, "no folder", "a folder of log files");
  }
  try {
    return report::RunsInFolder(folder);
  } catch (const std::filesystem::filesystem_error& failure) {
    throw InputError({folder.string()}, failure.code().message(), "a folder that can be read");
  }
}

std::string LineOf(const report::Problem& problem) {
  if (problem.line == 0) return fmt::format("{}: {}\n", problem.file, problem.what);
  return fmt::format("{}:{}: {}\n", problem.file, problem.line, problem.what);
}

// From 0; the newest when none is asked for.
std::size_t ChosenRun(const ReportOptions& options, const LoggedRuns& logged) {
  if (logged.runs.empty()) {
    throw InputError({logged.folder.string()}, "no log of a calibration",
                     "log files of a calibration");
  }
  if (!options.run) return logged.runs.size() - 1;
  const auto chosen = static_cast<std::size_t>(*options.run);
  if (chosen > logged.runs.size()) {
    throw InputError({"--run"}, std::to_string(chosen),
                     fmt::format("a run from 1 to {}", logged.runs.size()));
  }
  return chosen - 1;
}

}  // namespace

ExitCode RunReport(const ReportOptions& options, std::ostream& out, std::ostream& err) {
  const LoggedRuns logged = ReadRuns(options.folder);
  for (const report::Problem& problem : logged.problems) err << "tofcal: " << LineOf(problem);
  const std::size_t chosen = ChosenRun(options, logged);
  ReportPage page = report::LogPageOf(logged, chosen);
  page.program = "tofcal " TOF_VERSION;

  for (const std::string& file : page.files) RequireNotAnInput(options.out_file, {file});
  OutputFile(options.out_file).Commit(report::HtmlOf(page));
  for (const report::RunRow& run : page.runs) {
    out << fmt::format("{} run {}: {}, {}\n", run.shown ? "*" : " ", run.number, run.began,
                       run.told);
  }
  out << report::VerdictSentence(page) << "\nreport: " << options.out_file.string() << '\n';
  return kDone;
}

}  // namespace tof::cli
