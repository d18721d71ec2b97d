// The AIC log of a calibration.
#pragma once

#include <memory>
#include <string>

#include "component/calibrator/instrument.h"

namespace tof {

// Written by: the driver, which opens it on the decision for AIC and closes it after a success.
// After a failure it deliberately stays open, and later runs write to it, until the next AIC run
// opens another or the object ends.
struct AicLog {
  std::shared_ptr<TextStream> stream;  // none when no AIC log is open
};

// Whether a line would be written: the instrument's flag key is "No", "AICLoggingEnabled" is "3000"
// and a log is open.
bool AicLogTakesLines(Instrument& instrument, const AicLog& log);

// One line, if the log takes lines; else nothing.
void WriteToAICLog(Instrument& instrument, AicLog& log, const std::string& message);

// Opens a new AIC log with its header (date and time, gain channel); an open one is closed.
void OpenAicLog(Instrument& instrument, HostServices& host, AicLog& log);

// Whether the flag "AICLoggingEnabled" is "3000"; no other text enables the log.
bool AicLoggingEnabled(Instrument& instrument);

}  // namespace tof
