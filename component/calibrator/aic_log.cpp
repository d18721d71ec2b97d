#include "component/calibrator/aic_log.h"

#include "component/automation/convert.h"

namespace tof {

bool AicLoggingEnabled(Instrument& instrument) {
  return FlagIs(instrument, "AICLoggingEnabled", "3000");
}

bool AicLogTakesLines(Instrument& instrument, const AicLog& log) {
  const std::string key = instrument.data_dictionary->GetFlagKey();
  if (!FlagIs(instrument, key, "No")) return false;
  return AicLoggingEnabled(instrument) && log.stream != nullptr;
}

void WriteToAICLog(Instrument& instrument, AicLog& log, const std::string& message) {
  if (AicLogTakesLines(instrument, log)) log.stream->WriteLine(message);
}

void OpenAicLog(Instrument& instrument, HostServices& host, AicLog& log) {
  const Variant gain_channel = ReadSetpoint(instrument, setpoint::kGainChannelSelect);
  const std::string header = "===AIC " + host.DateTimeText(host.Now()) + "===\r\n" +
                             "GainChannel = " + ToText(gain_channel);
  log.stream = instrument.calib_log_files->OpenLogFile("AIC", header, "TXT");
}

}  // namespace tof
