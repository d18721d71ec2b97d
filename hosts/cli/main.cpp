// The program tofcal.
#include <exception>
#include <iostream>
#include <string>
#include <variant>
#include <vector>

#include "hosts/cli/command_line.h"
#include "hosts/cli/console.h"
#include "hosts/cli/exit_code.h"
#include "hosts/cli/run_apply.h"
#include "hosts/cli/run_calibrate.h"
#include "hosts/cli/run_check_instrument.h"
#include "hosts/cli/run_drift.h"
#include "hosts/cli/run_fit.h"
#include "hosts/cli/run_replay.h"
#include "hosts/cli/run_report.h"
#include "instruments/spectra/input_error.h"

namespace {

using tof::cli::ExitCode;

ExitCode Run(const tof::cli::TextRequest& request) {
  std::cout << request.text;
  return tof::cli::kDone;
}

tof::cli::Terminal StandardStreams() {
  return {std::cout, std::cerr, tof::cli::StandardErrorIsTerminal()};
}

ExitCode Run(const tof::cli::FitOptions& options) {
  return tof::cli::RunFit(options, std::cout, std::cerr);
}

ExitCode Run(const tof::cli::ApplyOptions& options) {
  return tof::cli::RunApply(options, StandardStreams());
}

ExitCode Run(const tof::cli::DriftOptions& options) {
  return tof::cli::RunDrift(options, StandardStreams());
}

ExitCode Run(const tof::cli::CalibrateOptions& options) {
  return tof::cli::RunCalibrate(options, StandardStreams());
}

ExitCode Run(const tof::cli::ReplayOptions& options) {
  return tof::cli::RunReplay(options, std::cout, std::cerr);
}

ExitCode Run(const tof::cli::CheckOptions& options) {
  return tof::cli::RunCheckInstrument(options, StandardStreams());
}

ExitCode Run(const tof::cli::ReportOptions& options) {
  return tof::cli::RunReport(options, std::cout, std::cerr);
}

tof::cli::Command Parse(const std::vector<std::string>& arguments) {
  std::vector<const char*> texts;
  texts.reserve(arguments.size());
  for (const std::string& argument : arguments) texts.push_back(argument.c_str());
  return tof::cli::ParseCommandLine(static_cast<int>(texts.size()), texts.data());
}

}  // namespace

int main(int argc, char** argv) {
  try {
    tof::cli::PrepareStandardStreams();
    const std::vector<std::string> arguments = tof::cli::ArgumentsInUtf8(argc, argv);
    return std::visit([](const auto& request) { return Run(request); }, Parse(arguments));
  } catch (const tof::cli::UsageError& error) {
    std::cerr << "tofcal: " << error.what() << "\ntofcal --help shows what can be asked\n";
    return tof::cli::kBadInput;
  } catch (const tof::spectra::InputError& error) {
    std::cerr << "tofcal: " << error.what() << '\n';
    return tof::cli::kBadInput;
  } catch (const std::exception& error) {
    std::cerr << "tofcal: " << error.what() << '\n';
    return tof::cli::kFailed;
  }
}
