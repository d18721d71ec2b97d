// Creates the registered classes of the instrument software.
#pragma once

#include <memory>

#include "component/calibrator/collaborators.h"

namespace tof::com {

// Each class by its identity (vorninstrument.idl, vornmasstime.idl), on the calling thread. One
// that is not registered is error 429, with its ProgID; any other failure is the class's own error.
class RegisteredInstrument : public InstrumentFactory {
 public:
  std::shared_ptr<DataDictionary> CreateDataDictionary() override;
  std::shared_ptr<AcqController> CreateAcqController() override;
  std::shared_ptr<SpecParser> CreateSpecParser() override;
  std::shared_ptr<CalibLogFiles> CreateCalibLogFiles() override;
  std::shared_ptr<TuneFlags> CreateTuneFlags() override;
  std::shared_ptr<CalibSettings> CreateCalibSettings() override;
  std::shared_ptr<InstrumentPaths> GetInstrumentPaths() override;
  std::shared_ptr<FirmwareLibrary> GetFirmwareLibrary() override;
  std::shared_ptr<PeakList> CreatePeakList() override;
  std::shared_ptr<MassCalCoefficients> CreateMassCalCoefficients() override;

 private:
  std::shared_ptr<InstrumentPaths> paths_;     // from the first time it is asked for
  std::shared_ptr<FirmwareLibrary> firmware_;  // likewise
};

}  // namespace tof::com
