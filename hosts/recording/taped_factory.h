// The instrument on a tape.
#pragma once

#include "component/calibrator/collaborators.h"
#include "hosts/recording/taped_object.h"

namespace tof::recording {

class TapedFactory : public InstrumentFactory {
 public:
  // `inner` is the instrument that is recorded; none in a replay. Both outlive the factory.
  TapedFactory(Tape& tape, InstrumentFactory* inner) : object_(tape, {}), inner_(inner) {}

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
  TapedObject object_;
  InstrumentFactory* inner_;
};

}  // namespace tof::recording
