// What COM adds to a calibration and to a call: the component on a stand-in instrument, linked in
// and through the registered classes, in turn. The instrument, the host's services and the files
// are the same both times.

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "hosts/com/automation/windows_headers.h"

// The identities are defined in this file.
#include <initguid.h>

#include <vorninstrument.h>
#include <vorninstrumentcontrol.h>
#include <vorntofcaliblib.h>

#include "component/calibrator/tof_calibrator.h"
#include "component/trace/trace.h"
#include "hosts/com/automation/dispatch_object.h"
#include "hosts/com/automation/error_info.h"
#include "hosts/com/automation/safe_array.h"
#include "hosts/com/calibrator/windows_host.h"
#include "hosts/com/instrument_client/instrument_factory.h"
#include "hosts/com/standin/hosted_instrument.h"
#include "instruments/description/overrides.h"

namespace tof::com {
namespace {

constexpr int kPairs = 7;
constexpr int kCalls = 100'000;
constexpr std::int16_t kSpectra = 10;
const char* const kNoWaits = "Calibration/AICSettlingTime_sec=0";

double SecondsOf(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

struct LastStatus : StatusEvents {
  void evtNewStatus(std::int32_t, const std::string& message) override { text = message; }
  std::string text;
};

// Log files; each way keeps one open, so each has a folder of its own.
std::filesystem::path LogFolder() {
  return std::filesystem::temp_directory_path() / "com_cost";
}

InstrumentChoice BuiltInWithoutWaits() {
  InstrumentChoice choice;
  description::OverrideSetting(choice.description, kNoWaits);
  choice.description.base_folder = (LogFolder() / "linked").string();
  return choice;
}

std::int64_t CallsOf(HostedInstrument& hosted) {
  const standin::OperationGate& gate = hosted.Instrument().State().gate;
  std::int64_t calls = 0;
  for (std::size_t i = 0; i < standin::kOperationCount; ++i) {
    calls += gate.Calls(static_cast<standin::Operation>(i));
  }
  return calls;
}

// Linked in; answers how often the instrument was called.
std::int64_t CalibrateNatively(bool suppress_aic) {
  HostedInstrument hosted(BuiltInWithoutWaits());
  hosted.MakeLogFolder();
  WindowsHost host;
  LastStatus status;
  const ModuleStateScope module_state;
  TofCalibrator calibrator(hosted.Instrument(), host, status);
  std::int16_t spectra = kSpectra;
  Variant times;
  const auto masses = description::CalibrantMasses(hosted.Instrument().State().description);
  if (calibrator.calibrateTOFMassAxis(spectra, Variant::DoubleArray(masses), times, suppress_aic) ==
      nullptr) {
    throw AutomationError(1, "the linked calibration failed: " + status.text);
  }
  return CallsOf(hosted);
}

// Through the registered classes, on an instrument as new.
void CalibrateThroughCom(DispatchObject& control, bool suppress_aic) {
  control.Call("LoadDescription", "", "");
  control.Call("OverrideSetting", kNoWaits);
  control.PutProperty("BaseFolder",
                      OwnedVariant::Of((LogFolder() / "through_com").string().c_str()));
  void* object = nullptr;
  Check(CoCreateInstance(__uuidof(::TofCalibrator), nullptr, CLSCTX_INPROC_SERVER,
                         __uuidof(_TofCalibrator), &object));
  const auto calibrator = ComPtr<_TofCalibrator>::Adopt(static_cast<_TofCalibrator*>(object));
  const OwnedVariant masses = ToVariant(
      BoundedArray<double>(description::CalibrantMasses(description::BuiltInDescription())));
  short spectra = kSpectra;
  VARIANT times;
  VariantInit(&times);
  VARIANT_BOOL suppress = suppress_aic ? VARIANT_TRUE : VARIANT_FALSE;
  ComPtr<IMassCalCoefficients> coefficients;
  Check(calibrator->calibrateTOFMassAxis(&spectra, masses.get(), &times, &suppress, nullptr,
                                         nullptr, nullptr, nullptr, coefficients.Out()));
  VariantClear(&times);
  if (!coefficients) throw AutomationError(1, "the calibration through COM failed");
}

void CompareCalibrations(const char* name, DispatchObject& control, bool suppress_aic) {
  std::vector<double> linked;
  std::vector<double> through_com;
  std::vector<double> ratios;
  std::int64_t calls = 0;
  for (int pair = 0; pair < kPairs; ++pair) {
    linked.push_back(SecondsOf([&] { calls = CalibrateNatively(suppress_aic); }));
    through_com.push_back(SecondsOf([&] { CalibrateThroughCom(control, suppress_aic); }));
    ratios.push_back(through_com.back() / linked.back());
  }
  std::cout << fmt::format("{:12} {:8} {:11.1f} {:15.1f} {:9.3f}\n", name, calls,
                           1e3 * Median(linked), 1e3 * Median(through_com), Median(ratios));
}

void CompareCalls(const char* name, const std::function<void()>& linked,
                  const std::function<void()>& through_com) {
  const auto nanoseconds_of = [](const std::function<void()>& call) {
    return 1e9 / kCalls * SecondsOf([&] {
             for (int i = 0; i < kCalls; ++i) call();
           });
  };
  const double linked_ns = nanoseconds_of(linked);
  std::cout << fmt::format("{:34} {:10.0f} {:14.0f}\n", name, linked_ns,
                           nanoseconds_of(through_com));
}

// Of a call to a collaborator, as the calibrator makes it.
void CompareAllCalls() {
  HostedInstrument hosted(BuiltInWithoutWaits());
  RegisteredInstrument registered;
  const auto linked_dictionary = hosted.Instrument().CreateDataDictionary();
  const auto dictionary = registered.CreateDataDictionary();
  const auto linked_settings = hosted.Instrument().CreateCalibSettings();
  const auto settings = registered.CreateCalibSettings();
  const auto linked_coefficients = hosted.Instrument().CreateMassCalCoefficients();
  const auto coefficients = registered.CreateMassCalCoefficients();
  double value = 0.0;
  const auto read = [&value](CalibSettings& from) {
    from.GetValue("Calibration", "AIC_RF_Step", 0, value);
  };
  CompareCalls(
      "DataDictionary.GetTimeValue", [&] { value += linked_dictionary->GetTimeValue(); },
      [&] { value += dictionary->GetTimeValue(); });
  CompareCalls(
      "CalibSettings.GetValue", [&] { read(*linked_settings); }, [&] { read(*settings); });
  CompareCalls(
      "DataDictionary.GetSetpointTable", [&] { linked_dictionary->GetSetpointTable(); },
      [&] { dictionary->GetSetpointTable(); });
  CompareCalls(
      "MassCalCoefficients.GetCalInfo", [&] { linked_coefficients->GetCalInfo(); },
      [&] { coefficients->GetCalInfo(); });
}

void Run() {
  DispatchObject control = CreateDispatchObject("vorninstrument.InstrumentControl");
  std::cout << "calibration     calls  linked, ms  through COM, ms  ratio (medians of " << kPairs
            << " pairs)\n";
  CompareCalibrations("traditional", control, true);
  CompareCalibrations("AIC, ramp", control, false);
  std::cout << "\ncall                               linked, ns  by name, ns\n";
  CompareAllCalls();
}

}  // namespace
}  // namespace tof::com

int main() {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  int code = 0;
  try {
    tof::com::Run();
  } catch (const std::exception& error) {
    std::cerr << "com_cost: " << error.what() << '\n';
    code = 1;
  }
  CoUninitialize();  // which closes the log files
  std::filesystem::remove_all(tof::com::LogFolder());
  return code;
}
