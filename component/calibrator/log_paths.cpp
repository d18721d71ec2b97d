#include "component/calibrator/log_paths.h"

namespace tof {

std::string LogFolder(Instrument& instrument) {
  return Need(instrument.factory->GetInstrumentPaths()).GetBaseFolder() + "\\Logfiles\\";
}

std::string LogFilePath(Instrument& instrument, const std::string& name) {
  return LogFolder(instrument) + name;
}

}  // namespace tof
