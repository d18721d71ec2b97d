// The program tofcal.
#include <unistd.h>

#include <exception>
#include <iostream>
#include <variant>

#include "hosts/cli/command_line.h"
#include "hosts/cli/exit_code.h"
#include "hosts/cli/run_apply.h"
#include "hosts/cli/run_calibrate.h"
#include "hosts/cli/run_check_instrument.h"
#include "hosts/cli/run_drift.h"
#include "hosts/cli/run_fit.h"
#include "hosts/cli/run_replay.h"
#include "instruments/spectra/input_error.h"

namespace {

using tof::cli::ExitCode;

ExitCode Run(const tof::cli::TextRequest& request) {
  std::cout << request.text;
  return tof::cli::kDone;
}

tof::cli::Terminal StandardStreams() {
  return {std::cout, std::cerr, isatty(STDERR_FILENO) != 0};
}

ExitCode Run(const tof::cli::FitOptions& options) {
  return tof::cli::RunFit(options, std::cout, std::cerr);
}

ExitCode Run(const tof::cli::ApplyOptions& options) {
  return tof::cli::RunApply(options, {std::cout, std::cerr, isatty(STDERR_FILENO) != 0});
}

ExitCode Run(const tof::cli::DriftOptions& options) {
  return tof::cli::RunDrift(options, {std::cout, std::cerr, isatty(STDERR_FILENO) != 0});
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

}  // namespace

int main(int argc, char** argv) {
  try {
    return std::visit([](const auto& request) { return Run(request); },
                      tof::cli::ParseCommandLine(argc, argv));
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
