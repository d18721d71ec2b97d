// An instrument that notes what a calibration does with it.
#pragma once

#include <memory>

#include "component/calibrator/collaborators.h"
#include "hosts/report/stage_clock.h"

namespace tof::report {

// Hands every call on as it is and notes spectra, abundances and setpoint writes with the stage
// they belong to. What the instrument does by itself, such as a search of its own, passes unseen.
class ObservingInstrument : public InstrumentFactory {
 public:
  // `moved_setpoint`: the RF voltage of an abundance-immune calibration. `now` and `seen` are
  // shared with `stages`; all outlive the instrument and what it creates.
  ObservingInstrument(InstrumentFactory& instrument, std::int32_t moved_setpoint,
                      std::function<Moment()> now, std::shared_ptr<StageClock> stages,
                      Observation& seen);

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
  struct Notebook;

  class Dictionary;
  class Parser;
  class Setpoints;

  InstrumentFactory& instrument_;
  std::shared_ptr<Notebook> notebook_;
};

}  // namespace tof::report
