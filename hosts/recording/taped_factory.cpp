#include "hosts/recording/taped_factory.h"

#include "hosts/recording/taped_acq_controller.h"
#include "hosts/recording/taped_configuration.h"
#include "hosts/recording/taped_data_dictionary.h"
#include "hosts/recording/taped_files.h"
#include "hosts/recording/taped_mass_time.h"
#include "hosts/recording/taped_spec_parser.h"

namespace tof::recording {

std::shared_ptr<DataDictionary> TapedFactory::CreateDataDictionary() {
  return object_.AskObject<TapedDataDictionary>("InstrumentFactory.CreateDataDictionary",
                                                Arguments(),
                                                [&] { return inner_->CreateDataDictionary(); });
}

std::shared_ptr<AcqController> TapedFactory::CreateAcqController() {
  return object_.AskObject<TapedAcqController>("InstrumentFactory.CreateAcqController", Arguments(),
                                               [&] { return inner_->CreateAcqController(); });
}

std::shared_ptr<SpecParser> TapedFactory::CreateSpecParser() {
  return object_.AskObject<TapedSpecParser>("InstrumentFactory.CreateSpecParser", Arguments(),
                                            [&] { return inner_->CreateSpecParser(); });
}

std::shared_ptr<CalibLogFiles> TapedFactory::CreateCalibLogFiles() {
  return object_.AskObject<TapedCalibLogFiles>("InstrumentFactory.CreateCalibLogFiles", Arguments(),
                                               [&] { return inner_->CreateCalibLogFiles(); });
}

std::shared_ptr<TuneFlags> TapedFactory::CreateTuneFlags() {
  return object_.AskObject<TapedTuneFlags>("InstrumentFactory.CreateTuneFlags", Arguments(),
                                           [&] { return inner_->CreateTuneFlags(); });
}

std::shared_ptr<CalibSettings> TapedFactory::CreateCalibSettings() {
  return object_.AskObject<TapedCalibSettings>("InstrumentFactory.CreateCalibSettings", Arguments(),
                                               [&] { return inner_->CreateCalibSettings(); });
}

std::shared_ptr<InstrumentPaths> TapedFactory::GetInstrumentPaths() {
  return object_.AskObject<TapedInstrumentPaths>("InstrumentFactory.GetInstrumentPaths",
                                                 Arguments(),
                                                 [&] { return inner_->GetInstrumentPaths(); });
}

std::shared_ptr<FirmwareLibrary> TapedFactory::GetFirmwareLibrary() {
  return object_.AskObject<TapedFirmwareLibrary>("InstrumentFactory.GetFirmwareLibrary",
                                                 Arguments(),
                                                 [&] { return inner_->GetFirmwareLibrary(); });
}

std::shared_ptr<PeakList> TapedFactory::CreatePeakList() {
  return object_.AskObject<TapedPeakList>("InstrumentFactory.CreatePeakList", Arguments(),
                                          [&] { return inner_->CreatePeakList(); });
}

std::shared_ptr<MassCalCoefficients> TapedFactory::CreateMassCalCoefficients() {
  return object_.AskObject<TapedMassCalCoefficients>(
      "InstrumentFactory.CreateMassCalCoefficients", Arguments(),
      [&] { return inner_->CreateMassCalCoefficients(); });
}

}  // namespace tof::recording
