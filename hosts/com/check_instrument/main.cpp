// The program check_instrument: whether the registered instrument software does what a calibration
// relies on.

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "hosts/com/automation/windows_headers.h"

// The identities are defined in this file.
#include <initguid.h>

#include <vorninstrument.h>

#include "hosts/com/automation/dispatch_object.h"
#include "hosts/com/automation/error_info.h"
#include "hosts/com/automation/text.h"
#include "hosts/com/calibrator/windows_host.h"
#include "hosts/com/instrument_client/instrument_factory.h"
#include "instruments/conformance/table.h"

namespace {

using tof::AutomationError;
using tof::com::DispatchObject;
using tof::com::OwnedVariant;

// As the program tofcal ends.
enum ExitCode : int { kDone = 0, kFailed = 1, kBadInput = 2 };

constexpr const char* kControl = "vorninstrument.InstrumentControl";

// What a stand-in instrument is to be; another instrument has no such control.
struct StandInChoice {
  std::string description;
  std::string data_folder;
  std::vector<std::string> settings;
  std::vector<std::string> flags;
  std::vector<std::string> setpoints;
  std::string base_folder;

  bool IsEmpty() const {
    return description.empty() && data_folder.empty() && settings.empty() && flags.empty() &&
           setpoints.empty() && base_folder.empty();
  }
};

struct Options {
  std::vector<double> masses;
  StandInChoice stand_in;
};

void Declare(CLI::App& app, Options& options) {
  app.add_option("--masses", options.masses, "Masses to look for (default: its calibrants)")
      ->type_name("M1,M2,...")
      ->delimiter(',')
      ->check(CLI::PositiveNumber);
  StandInChoice& stand_in = options.stand_in;
  const std::string group = "Of the stand-in instrument of vorninstrument.dll alone";
  const auto declare = [&](const char* name, const char* placeholder, const char* help,
                           auto& value) {
    app.add_option(name, value, help)->type_name(placeholder)->expected(1)->group(group);
  };
  declare("--instrument", "FILE.xml", "Its description (default: the built-in virtual one)",
          stand_in.description);
  declare("--data", "DIR", "Folder of its recorded files", stand_in.data_folder);
  declare("--base-folder", "DIR", "Log files go to DIR\\Logfiles", stand_in.base_folder);
  const auto repeatable = [&](const char* name, const char* placeholder, const char* help,
                              std::vector<std::string>& values) {
    app.add_option(name, values, help)
        ->type_name(placeholder)
        ->type_size(1)
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->group(group);
  };
  repeatable("--set", "Section/Key=V", "Changes a setting", stand_in.settings);
  repeatable("--flag", "Key=V", "Changes a flag", stand_in.flags);
  repeatable("--setpoint", "ID=V", "Changes a setpoint", stand_in.setpoints);
}

// None where the registered instrument has none.
std::optional<DispatchObject> ControlOfStandIn() {
  try {
    return tof::com::CreateDispatchObject(kControl);
  } catch (const AutomationError&) {
    return std::nullopt;
  }
}

void Apply(const StandInChoice& choice, DispatchObject& control) {
  control.Call("LoadDescription", choice.description, choice.data_folder);
  for (const std::string& text : choice.settings) control.Call("OverrideSetting", text);
  for (const std::string& text : choice.flags) control.Call("OverrideFlag", text);
  for (const std::string& text : choice.setpoints) control.Call("OverrideSetpoint", text);
  if (choice.base_folder.empty()) return;
  control.PutProperty("BaseFolder", OwnedVariant::Of(choice.base_folder.c_str()));
}

// Who asks for an abort on another instrument's software is its user.
tof::conformance::AbortHook AbortThrough(std::optional<DispatchObject>& control) {
  if (!control) return {};
  return {.ask = [&control] { control->Call("RequestAbort"); },
          .withdraw = [&control] { control->Call("WithdrawAbort"); }};
}

ExitCode Check(const Options& options) {
  std::optional<DispatchObject> control = ControlOfStandIn();
  if (!options.stand_in.IsEmpty()) {
    if (!control) {
      throw AutomationError(429, std::string(kControl) +
                                     " is not registered: only the instrument of "
                                     "vorninstrument.dll takes these options");
    }
    Apply(options.stand_in, *control);
  }
  tof::com::RegisteredInstrument instrument;
  tof::com::WindowsHost host;
  const auto results = tof::conformance::RunChecks({.factory = instrument,
                                                    .host = host,
                                                    .abort = AbortThrough(control),
                                                    .masses = options.masses});
  std::cout << tof::conformance::TableOf("the registered instrument", results);
  const auto failed = NumberOf(tof::conformance::Outcome::kFail, results);
  if (failed == 0) return kDone;
  std::cerr << "instrument check failed: " << failed << " of " << results.size() << " checks\n";
  return kFailed;
}

// COM on this thread, with everything of it gone before it is left.
ExitCode CheckInApartment(const Options& options) {
  tof::com::Check(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
  const struct Apartment {
    ~Apartment() { CoUninitialize(); }
  } apartment;
  return Check(options);
}

}  // namespace

// In Unicode: the arguments of main() lack the characters that the system's code page lacks.
int wmain(int argc, wchar_t** argv) {
  CLI::App app("Checks that the registered instrument does what a calibration relies on.",
               "check_instrument");
  try {
    Options options;
    Declare(app, options);
    // The last argument comes first.
    std::vector<std::string> arguments;
    for (int i = argc - 1; i > 0; --i) arguments.push_back(tof::com::Utf8(argv[i]));
    app.parse(std::move(arguments));
    return CheckInApartment(options);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kBadInput;
  } catch (const AutomationError& error) {
    std::cerr << "check_instrument: [" << error.number() << "] " << error.what() << '\n';
    return kBadInput;
  } catch (const std::exception& error) {
    std::cerr << "check_instrument: " << error.what() << '\n';
    return kFailed;
  }
}
