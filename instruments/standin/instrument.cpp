#include "instruments/standin/instrument.h"

#include <limits>
#include <utility>
#include <variant>

#include "component/automation/convert.h"
#include "instruments/masstime/stored_peak_list.h"
#include "instruments/recorded/recorded_source.h"
#include "instruments/standin/acq_controller.h"
#include "instruments/standin/calib_log_files.h"
#include "instruments/standin/calib_settings.h"
#include "instruments/standin/coefficients.h"
#include "instruments/standin/data_dictionary.h"
#include "instruments/standin/firmware_library.h"
#include "instruments/standin/instrument_paths.h"
#include "instruments/standin/spec_parser.h"
#include "instruments/standin/tune_flags.h"

namespace tof::standin {
namespace {

using description::InstrumentDescription;

double ValueOr(const InstrumentDescription& description, std::int32_t id, double absent) {
  const auto setpoint = description.setpoints.find(id);
  return setpoint == description.setpoints.end() ? absent : ToDouble(setpoint->second.value);
}

std::shared_ptr<spectra::SpectrumSource> MakeSource(
    const InstrumentDescription& description, const InstrumentOptions& options,
    const std::shared_ptr<spectra::InstrumentClock>& clock) {
  if (const auto* files = std::get_if<recorded::RecordedFiles>(&description.source)) {
    return std::make_shared<recorded::RecordedSource>(*files, options.data_folder, clock);
  }
  auto parameters = std::get<virtual_instrument::VirtualSourceParameters>(description.source);
  if (options.seed) parameters.seed = *options.seed;
  const virtual_instrument::InitialSetpoints initial{
      ValueOr(description, parameters.rf_setpoint, 0.0),
      ValueOr(description, virtual_instrument::kGainChannelSetpoint, 1.0)};
  return std::make_shared<virtual_instrument::VirtualSource>(std::move(parameters), initial, clock);
}

}  // namespace

StandInInstrument::StandInInstrument(InstrumentDescription description,
                                     const InstrumentOptions& options, HostServices& host,
                                     std::shared_ptr<spectra::InstrumentClock> clock) {
  auto source = MakeSource(description, options, clock);
  auto setpoints = description.setpoints;
  const Calibration factory{description.factory_coefficients, CalInfoOf(description)};
  // It holds an atomic, so it can't be moved into what make_shared would allocate.
  // NOLINTNEXTLINE(modernize-make-shared)
  state_ = std::shared_ptr<InstrumentState>(new InstrumentState{
      .description = std::move(description),
      .host = host,
      .clock = std::move(clock),
      .source = std::move(source),
      .observer = options.observer,
      .abort_after_sec = options.abort_after_sec.value_or(std::numeric_limits<double>::infinity()),
      .gate = OperationGate(options.faults),
      .setpoints = std::move(setpoints),
      .in_force = factory});
  paths_ = std::make_shared<StandInInstrumentPaths>(state_);
  firmware_ = std::make_shared<StandInFirmwareLibrary>(state_);
}

std::shared_ptr<DataDictionary> StandInInstrument::CreateDataDictionary() {
  return std::make_shared<StandInDataDictionary>(state_);
}

std::shared_ptr<AcqController> StandInInstrument::CreateAcqController() {
  return std::make_shared<StandInAcqController>(state_);
}

std::shared_ptr<SpecParser> StandInInstrument::CreateSpecParser() {
  return std::make_shared<StandInSpecParser>(state_);
}

std::shared_ptr<CalibLogFiles> StandInInstrument::CreateCalibLogFiles() {
  return std::make_shared<StandInCalibLogFiles>(state_);
}

std::shared_ptr<TuneFlags> StandInInstrument::CreateTuneFlags() {
  return std::make_shared<StandInTuneFlags>(state_);
}

std::shared_ptr<CalibSettings> StandInInstrument::CreateCalibSettings() {
  return std::make_shared<StandInCalibSettings>(state_);
}

std::shared_ptr<InstrumentPaths> StandInInstrument::GetInstrumentPaths() {
  return paths_;
}

std::shared_ptr<FirmwareLibrary> StandInInstrument::GetFirmwareLibrary() {
  return firmware_;
}

std::shared_ptr<PeakList> StandInInstrument::CreatePeakList() {
  return std::make_shared<masstime::StoredPeakList>();
}

std::shared_ptr<MassCalCoefficients> StandInInstrument::CreateMassCalCoefficients() {
  return MakeCoefficients(state_, {});
}

void StandInInstrument::PlanAbort(std::optional<double> at_sec) {
  state_->abort_after_sec = at_sec.value_or(std::numeric_limits<double>::infinity());
}

void StandInInstrument::FailCall(Operation operation, std::int64_t nth) {
  state_->gate.Plan({operation, state_->gate.Calls(operation) + nth});
}

const virtual_instrument::VirtualSource* StandInInstrument::Virtual() const {
  return dynamic_cast<const virtual_instrument::VirtualSource*>(state_->source.get());
}

}  // namespace tof::standin
