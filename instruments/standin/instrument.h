// An instrument made from a description: what a calibrator is given to work with.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "component/calibrator/collaborators.h"
#include "instruments/description/instrument_description.h"
#include "instruments/spectra/instrument_clock.h"
#include "instruments/standin/instrument_state.h"
#include "instruments/virtual/virtual_source.h"

namespace tof::standin {

struct InstrumentOptions {
  std::filesystem::path data_folder = {};      // what recorded files' names are relative to
  std::optional<std::uint64_t> seed = {};      // of the virtual instrument, in place of its own
  std::optional<double> abort_after_sec = {};  // on the instrument's clock
  std::vector<Fault> faults = {};
  InstrumentObserver* observer = nullptr;  // outlives the instrument
};

// Virtual or recorded, as the description says. All collaborators that it creates share one state,
// which outlives it as long as one of them lives.
class StandInInstrument : public InstrumentFactory {
 public:
  // Reads recorded files now: an InputError says which can't be used. `host` outlives the
  // instrument and what it creates.
  StandInInstrument(description::InstrumentDescription description,
                    const InstrumentOptions& options, HostServices& host,
                    std::shared_ptr<spectra::InstrumentClock> clock);

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

  // The user asks for an abort. May be called from a signal handler.
  void RequestAbort() noexcept { state_->abort_requested = true; }
  void WithdrawAbort() noexcept { state_->abort_requested = false; }
  // The user asks for it at that time of the instrument's clock; none: no longer.
  void PlanAbort(std::optional<double> at_sec);

  // The next `count` fits of coefficients come out wrong: A is 10 per cent too high.
  void MakeFitsBad(std::int64_t count) { state_->bad_fits = count; }

  // The `nth` call of an operation from now on fails, from 1.
  void FailCall(Operation operation, std::int64_t nth);
  void WithdrawFailures() { state_->gate.WithdrawPlans(); }

  Counters Counted() const { return state_->counters; }
  const InstrumentState& State() const { return *state_; }

  // The virtual instrument's source, for judging a calibration by the truth; none for a recorded
  // one.
  const virtual_instrument::VirtualSource* Virtual() const;

 private:
  std::shared_ptr<InstrumentState> state_;
  std::shared_ptr<InstrumentPaths> paths_;
  std::shared_ptr<FirmwareLibrary> firmware_;
};

}  // namespace tof::standin
