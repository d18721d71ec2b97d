#include "hosts/report/observing_instrument.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace tof::report {

// Where all that the instrument created takes its notes.
struct ObservingInstrument::Notebook {
  std::int32_t moved_setpoint;
  std::function<Moment()> now;
  std::shared_ptr<StageClock> stages;
  Observation& seen;
  std::optional<double> voltage = {};

  std::int32_t Pass() const { return std::max(seen.passes, 1); }
  void NoteValue(std::int32_t id, const Variant& value) {
    const auto* const volts = value.As<double>();
    if (id == moved_setpoint && volts != nullptr) voltage = *volts;
  }
};

namespace {

PeakReading ReadingOf(const PeakAttribs& row0) {
  if (!std::isfinite(row0.time)) return {};
  return {row0.time, row0.abundance};
}

}  // namespace

class ObservingInstrument::Setpoints : public SetpointTable {
 public:
  Setpoints(std::shared_ptr<SetpointTable> table, std::shared_ptr<Notebook> notebook)
      : table_(std::move(table)), notebook_(std::move(notebook)) {}

  Variant GetSetpoint(std::int32_t id) override {
    Variant value = table_->GetSetpoint(id);
    notebook_->NoteValue(id, value);
    return value;
  }
  void SetSetpoint(std::int32_t id, ValueType type, const Variant& value) override {
    table_->SetSetpoint(id, type, value);
    notebook_->NoteValue(id, value);
    notebook_->seen.writes.push_back({id, value});
  }
  Variant GetCurrentValue(std::int32_t id) override { return table_->GetCurrentValue(id); }

 private:
  std::shared_ptr<SetpointTable> table_;
  std::shared_ptr<Notebook> notebook_;
};

class ObservingInstrument::Dictionary : public DataDictionary {
 public:
  Dictionary(std::shared_ptr<DataDictionary> dictionary, std::shared_ptr<Notebook> notebook)
      : dictionary_(std::move(dictionary)), notebook_(std::move(notebook)) {}

  void Initialize() override { dictionary_->Initialize(); }
  std::shared_ptr<SetpointTable> GetSetpointTable() override {
    std::shared_ptr<SetpointTable> table = dictionary_->GetSetpointTable();
    if (table == nullptr) return nullptr;
    return std::make_shared<Setpoints>(std::move(table), notebook_);
  }
  std::shared_ptr<SpectrumDisplay> GetConfigObject() override {
    return dictionary_->GetConfigObject();
  }
  std::string GetFlagKey() override { return dictionary_->GetFlagKey(); }
  double GetTimeValue() override { return dictionary_->GetTimeValue(); }
  std::int32_t GetAcqStartTime() override { return dictionary_->GetAcqStartTime(); }
  std::int32_t GetAcqEndTime() override { return dictionary_->GetAcqEndTime(); }
  std::shared_ptr<StatusReader> GetStatusReader() override {
    return dictionary_->GetStatusReader();
  }
  std::string GetModeName() override { return dictionary_->GetModeName(); }
  bool ModeUsesRfSetpoints(const std::string& mode_name) override {
    return dictionary_->ModeUsesRfSetpoints(mode_name);
  }

 private:
  std::shared_ptr<DataDictionary> dictionary_;
  std::shared_ptr<Notebook> notebook_;
};

class ObservingInstrument::Parser : public SpecParser {
 public:
  Parser(std::shared_ptr<SpecParser> parser, std::shared_ptr<Notebook> notebook)
      : parser_(std::move(parser)), notebook_(std::move(notebook)) {}

  PeakAttribsTable GetCalibrantPeakAttributes(const Variant& masses,
                                              double peak_find_window) override {
    PeakAttribsTable parsed = parser_->GetCalibrantPeakAttributes(masses, peak_find_window);
    SpectrumReading reading;
    reading.pass = notebook_->Pass();
    reading.stage = notebook_->stages->stage();
    reading.routine = notebook_->stages->routine();
    reading.at_seconds = notebook_->now().instrument_seconds;
    reading.voltage = notebook_->voltage;
    for (std::int32_t m = parsed.LBound(2); m <= parsed.UBound(2); ++m) {
      reading.peaks.push_back(ReadingOf(parsed(0, m)));
    }
    notebook_->seen.spectra.push_back(std::move(reading));
    return parsed;
  }
  double GetPeakAttribute(PeakCalculationtype kind, double mass, double tolerance) override {
    const double abundance = parser_->GetPeakAttribute(kind, mass, tolerance);
    notebook_->seen.abundances.push_back(
        {notebook_->Pass(), notebook_->stages->stage(), mass, notebook_->voltage, abundance});
    return abundance;
  }
  void FindPeaks(double start_ns, double end_ns, std::int32_t peaks_sought, std::int32_t& count,
                 std::shared_ptr<PeakList>& list) override {
    parser_->FindPeaks(start_ns, end_ns, peaks_sought, count, list);
  }
  bool ShouldAvoidAIC(const Variant& masses, double& peak_find_width) override {
    return parser_->ShouldAvoidAIC(masses, peak_find_width);
  }
  void SearchTargetAbundance(double mass, double tolerance) override {
    // It moves the setpoint by itself.
    notebook_->voltage.reset();
    parser_->SearchTargetAbundance(mass, tolerance);
  }

 private:
  std::shared_ptr<SpecParser> parser_;
  std::shared_ptr<Notebook> notebook_;
};

ObservingInstrument::ObservingInstrument(InstrumentFactory& instrument, std::int32_t moved_setpoint,
                                         std::function<Moment()> now,
                                         std::shared_ptr<StageClock> stages, Observation& seen)
    : instrument_(instrument),
      notebook_(std::make_shared<Notebook>(
          Notebook{moved_setpoint, std::move(now), std::move(stages), seen})) {}

std::shared_ptr<DataDictionary> ObservingInstrument::CreateDataDictionary() {
  return std::make_shared<Dictionary>(instrument_.CreateDataDictionary(), notebook_);
}
std::shared_ptr<AcqController> ObservingInstrument::CreateAcqController() {
  return instrument_.CreateAcqController();
}
std::shared_ptr<SpecParser> ObservingInstrument::CreateSpecParser() {
  return std::make_shared<Parser>(instrument_.CreateSpecParser(), notebook_);
}
std::shared_ptr<CalibLogFiles> ObservingInstrument::CreateCalibLogFiles() {
  return instrument_.CreateCalibLogFiles();
}
std::shared_ptr<TuneFlags> ObservingInstrument::CreateTuneFlags() {
  return instrument_.CreateTuneFlags();
}
std::shared_ptr<CalibSettings> ObservingInstrument::CreateCalibSettings() {
  return instrument_.CreateCalibSettings();
}
std::shared_ptr<InstrumentPaths> ObservingInstrument::GetInstrumentPaths() {
  return instrument_.GetInstrumentPaths();
}
std::shared_ptr<FirmwareLibrary> ObservingInstrument::GetFirmwareLibrary() {
  return instrument_.GetFirmwareLibrary();
}
std::shared_ptr<PeakList> ObservingInstrument::CreatePeakList() {
  return instrument_.CreatePeakList();
}
std::shared_ptr<MassCalCoefficients> ObservingInstrument::CreateMassCalCoefficients() {
  return instrument_.CreateMassCalCoefficients();
}

}  // namespace tof::report
