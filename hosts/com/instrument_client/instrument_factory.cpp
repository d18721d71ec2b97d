#include "hosts/com/instrument_client/instrument_factory.h"

#include <vorninstrument.h>

#include "hosts/com/instrument_client/collaborators.h"
#include "hosts/com/instrument_client/firmware_library.h"
#include "hosts/com/instrument_client/mass_time_objects.h"

namespace tof::com {
namespace {

template <class Adapter>
std::shared_ptr<Adapter> Created(REFCLSID class_id, const char* prog_id) {
  return std::make_shared<Adapter>(CreateDispatchObject(class_id, prog_id));
}

}  // namespace

std::shared_ptr<DataDictionary> RegisteredInstrument::CreateDataDictionary() {
  return Created<AutomationDataDictionary>(__uuidof(::DataDictionary),
                                           "vorninstrument.DataDictionary");
}
std::shared_ptr<AcqController> RegisteredInstrument::CreateAcqController() {
  return Created<AutomationAcqController>(__uuidof(::AcqController),
                                          "vorninstrument.AcqController");
}
std::shared_ptr<SpecParser> RegisteredInstrument::CreateSpecParser() {
  return Created<AutomationSpecParser>(__uuidof(::SpecParser), "vorninstrument.SpecParser");
}
std::shared_ptr<CalibLogFiles> RegisteredInstrument::CreateCalibLogFiles() {
  return Created<AutomationCalibLogFiles>(__uuidof(::CalibLogFiles),
                                          "vorninstrument.CalibLogFiles");
}
std::shared_ptr<TuneFlags> RegisteredInstrument::CreateTuneFlags() {
  return Created<AutomationTuneFlags>(__uuidof(::TuneFlags), "vorninstrument.TuneFlags");
}
std::shared_ptr<CalibSettings> RegisteredInstrument::CreateCalibSettings() {
  return Created<AutomationCalibSettings>(__uuidof(::CalibSettings),
                                          "vorninstrument.CalibSettings");
}
std::shared_ptr<InstrumentPaths> RegisteredInstrument::GetInstrumentPaths() {
  if (paths_ == nullptr) {
    paths_ = Created<AutomationInstrumentPaths>(__uuidof(::InstrumentPaths),
                                                "vorninstrument.InstrumentPaths");
  }
  return paths_;
}
std::shared_ptr<FirmwareLibrary> RegisteredInstrument::GetFirmwareLibrary() {
  if (firmware_ == nullptr) firmware_ = std::make_shared<LoadedFirmwareLibrary>();
  return firmware_;
}
std::shared_ptr<PeakList> RegisteredInstrument::CreatePeakList() {
  return Created<AutomationPeakList>(__uuidof(::PeakList), "vornmasstime.PeakList");
}
std::shared_ptr<MassCalCoefficients> RegisteredInstrument::CreateMassCalCoefficients() {
  return Created<AutomationCoefficients>(__uuidof(::MassCalCoefficients),
                                         "vornmasstime.MassCalCoefficients");
}

}  // namespace tof::com
