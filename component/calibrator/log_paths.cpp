#include "component/calibrator/log_paths.h"

namespace tof {

std::string LogFilePath(Instrument& instrument, const std::string& name) {
  return Need(instrument.factory->GetInstrumentPaths()).GetBaseFolder() + "\\Logfiles\\" + name;
}

}  // namespace tof
