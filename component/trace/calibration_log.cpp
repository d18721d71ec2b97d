#include "component/trace/calibration_log.h"

#include <string>
#include <vector>

#include "component/automation/convert.h"
#include "component/automation/number_text.h"
#include "component/calibrator/log_paths.h"
#include "component/trace/guarded.h"

namespace tof {
namespace {

constexpr std::size_t kHexWidth = 6;

std::string LastSix(const std::string& text) {
  return text.size() <= kHexWidth ? text : text.substr(text.size() - kHexWidth);
}

// The dump from its unit line on; object and record are read afresh.
std::vector<std::string> DumpLines(MassCalCoefficients& coefficients, bool times_in_usecs) {
  const CoefficientRecord values = coefficients.GetCoefficientRecord();
  const CalInfo info = coefficients.GetCalInfo();
  std::vector<std::string> lines;
  lines.push_back(std::string("Mass coefficients are in ") + (times_in_usecs ? "usecs" : "nsecs"));
  lines.emplace_back("coefficient, coefficient value");
  for (std::size_t i = 0; i < values.size(); ++i) {
    lines.push_back(std::string(1, static_cast<char>('A' + i)) + ", " + ScientificText(values[i]));
  }
  // Only four zeros pad the flags to six places, so that a one-digit value shows five: deliberate.
  lines.push_back("PolyTermsFlags = 0x" + LastSix("0000" + HexText(info.PolyTermsFlags)));
  lines.push_back("TradWeighting = 0x" + LastSix("000000" + HexText(info.TradWeighting)));
  lines.push_back("PolyWeighting = 0x" + LastSix("000000" + HexText(info.PolyWeighting)));
  return lines;
}

std::string HeaderText(Instrument& instrument, HostServices& host) {
  // A controller of its own, because the log may be opened before anything else works.
  const auto controller = instrument.factory->CreateAcqController();
  const Variant gain_channel = Need(controller).ReadSetpoint(setpoint::kGainChannelSelect);
  return "===CALIBRATION " + host.DateTimeText(host.Now()) + "===\r\n" + "GainChannel[" +
         ToText(gain_channel) + "]";
}

}  // namespace

void OpenCalibrationLog(Instrument& instrument, HostServices& host) {
  const auto files = host.CreateFileSystem();
  const std::string folder = LogFolder(instrument);
  const DateTime now = host.Now();
  const auto stream = Need(files).OpenForAppending(folder + "CalibrationLog_" + DateText(now) +
                                                   "_" + TimeText(now) + ".txt");
  Need(stream).WriteLine(HeaderText(instrument, host));
  CurrentModuleState().calibration_log = stream;
}

void TraceDumpCoefficients(Instrument& instrument, HostServices& host,
                           const std::shared_ptr<MassCalCoefficients>& coefficients,
                           bool times_in_usecs) {
  constexpr Routine kRoutine{
      .name = "TraceDumpCoefficients", .on_error = OnError::kRaise, .level = 1};
  Guarded(kRoutine, [&](TraceObj& trace) {
    auto& log = CurrentModuleState().calibration_log;
    if (log == nullptr) OpenCalibrationLog(instrument, host);
    for (const std::string& line : DumpLines(Need(coefficients), times_in_usecs)) {
      trace.TracePrint(line);
    }
    const DateTime now = host.Now();
    log->WriteLine("Time: " + DateText(now) + " " + ColonTimeText(now));
    for (const std::string& line : DumpLines(Need(coefficients), times_in_usecs)) {
      log->WriteLine(line);
    }
  });
}

}  // namespace tof
