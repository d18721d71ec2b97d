// Collaborators that pass every call on, for a broken one to change a single operation of.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "component/calibrator/collaborators.h"

namespace tof::conformance {

// What every forwarding collaborator has: the one that really answers.
template <class TheInterface>
class Forwarding : public TheInterface {
 public:
  using Interface = TheInterface;
  explicit Forwarding(std::shared_ptr<Interface> inner) : inner_(std::move(inner)) {}
  const std::shared_ptr<Interface>& inner() const { return inner_; }

 protected:
  std::shared_ptr<Interface> inner_;
};

struct ForwardingDataDictionary : Forwarding<DataDictionary> {
  using Forwarding::Forwarding;
  void Initialize() override { inner_->Initialize(); }
  std::shared_ptr<SetpointTable> GetSetpointTable() override { return inner_->GetSetpointTable(); }
  std::shared_ptr<SpectrumDisplay> GetConfigObject() override { return inner_->GetConfigObject(); }
  std::string GetFlagKey() override { return inner_->GetFlagKey(); }
  double GetTimeValue() override { return inner_->GetTimeValue(); }
  std::int32_t GetAcqStartTime() override { return inner_->GetAcqStartTime(); }
  std::int32_t GetAcqEndTime() override { return inner_->GetAcqEndTime(); }
  std::shared_ptr<StatusReader> GetStatusReader() override { return inner_->GetStatusReader(); }
  std::string GetModeName() override { return inner_->GetModeName(); }
  bool ModeUsesRfSetpoints(const std::string& mode_name) override {
    return inner_->ModeUsesRfSetpoints(mode_name);
  }
};

struct ForwardingSetpointTable : Forwarding<SetpointTable> {
  using Forwarding::Forwarding;
  Variant GetSetpoint(std::int32_t id) override { return inner_->GetSetpoint(id); }
  void SetSetpoint(std::int32_t id, ValueType type, const Variant& value) override {
    inner_->SetSetpoint(id, type, value);
  }
  Variant GetCurrentValue(std::int32_t id) override { return inner_->GetCurrentValue(id); }
};

struct ForwardingSpectrumDisplay : Forwarding<SpectrumDisplay> {
  using Forwarding::Forwarding;
  void SetDisplayUpdate(bool live) override { inner_->SetDisplayUpdate(live); }
};

struct ForwardingStatusReader : Forwarding<StatusReader> {
  using Forwarding::Forwarding;
  Variant Read(const std::string& name, const std::string& type, std::int32_t zero) override {
    return inner_->Read(name, type, zero);
  }
};

struct ForwardingAcqController : Forwarding<AcqController> {
  using Forwarding::Forwarding;
  void InitializeController(std::int32_t zero) override { inner_->InitializeController(zero); }
  void InitializeAcquisition(std::int32_t zero) override { inner_->InitializeAcquisition(zero); }
  Variant PrepareSetpointAccess() override { return inner_->PrepareSetpointAccess(); }
  Variant PrepareSetpointTable() override { return inner_->PrepareSetpointTable(); }
  std::int16_t IsAbortRequested() override { return inner_->IsAbortRequested(); }
  double GetScaleFactor() override { return inner_->GetScaleFactor(); }
  std::shared_ptr<MassCalCoefficients> GetCurrentMassCalObject() override {
    return inner_->GetCurrentMassCalObject();
  }
  double GetCurrentA() override { return inner_->GetCurrentA(); }
  std::shared_ptr<MassCalCoefficients> GetDefaultCalibCoefficients() override {
    return inner_->GetDefaultCalibCoefficients();
  }
  void SetCalibCoefficients(const std::shared_ptr<MassCalCoefficients>& coefficients) override {
    inner_->SetCalibCoefficients(coefficients);
  }
  void SetLikelyAAndT0(double a_per_us, double t0_us) override {
    inner_->SetLikelyAAndT0(a_per_us, t0_us);
  }
  ColumnStatistics GetColumnStatistics(const BoundedArray2D<double>& values) override {
    return inner_->GetColumnStatistics(values);
  }
  void EndAIC() override { inner_->EndAIC(); }
  Variant ReadSetpoint(std::int32_t id) override { return inner_->ReadSetpoint(id); }
  std::string GetConfigurationName() override { return inner_->GetConfigurationName(); }
  BoundedArray<double> GetCalibrantMasses(std::int32_t setpoint117, const std::string& mode_name,
                                          const std::string& configuration_name) override {
    return inner_->GetCalibrantMasses(setpoint117, mode_name, configuration_name);
  }
};

struct ForwardingCoefficients : Forwarding<MassCalCoefficients> {
  using Forwarding::Forwarding;
  double GetBinWidth() override { return inner_->GetBinWidth(); }
  CoefficientRecord GetCoefficientRecord() override { return inner_->GetCoefficientRecord(); }
  double TimeToMass(double time_ns) override { return inner_->TimeToMass(time_ns); }
  double MassToTime(double mass) override { return inner_->MassToTime(mass); }
  void Calibrate(const BoundedArray<double>& masses,
                 const BoundedArray<double>& times_ns) override {
    inner_->Calibrate(masses, times_ns);
  }
  CalInfo GetCalInfo() override { return inner_->GetCalInfo(); }
  void SetCalInfo(const CalInfo& info) override { inner_->SetCalInfo(info); }
};

struct ForwardingPeakList : Forwarding<PeakList> {
  using Forwarding::Forwarding;
  void Initialize() override { inner_->Initialize(); }
  std::int32_t Count() override { return inner_->Count(); }
  PeakRecord GetRecord(std::int32_t index) override { return inner_->GetRecord(index); }
  void Add(const PeakRecord& record) override { inner_->Add(record); }
  void SetRecord(std::int32_t index, const PeakRecord& record) override {
    inner_->SetRecord(index, record);
  }
  void PreparePeakList(std::int32_t first, std::int32_t second) override {
    inner_->PreparePeakList(first, second);
  }
};

struct ForwardingSpecParser : Forwarding<SpecParser> {
  using Forwarding::Forwarding;
  PeakAttribsTable GetCalibrantPeakAttributes(const Variant& masses, double window) override {
    return inner_->GetCalibrantPeakAttributes(masses, window);
  }
  double GetPeakAttribute(PeakCalculationtype kind, double mass, double tolerance) override {
    return inner_->GetPeakAttribute(kind, mass, tolerance);
  }
  void FindPeaks(double start_ns, double end_ns, std::int32_t peaks_sought, std::int32_t& count,
                 std::shared_ptr<PeakList>& list) override {
    inner_->FindPeaks(start_ns, end_ns, peaks_sought, count, list);
  }
  bool ShouldAvoidAIC(const Variant& masses, double& peak_find_width) override {
    return inner_->ShouldAvoidAIC(masses, peak_find_width);
  }
  void SearchTargetAbundance(double mass, double tolerance) override {
    inner_->SearchTargetAbundance(mass, tolerance);
  }
};

struct ForwardingTuneFlags : Forwarding<TuneFlags> {
  using Forwarding::Forwarding;
  std::string GetFlag(const std::string& key, std::int32_t minus_one) override {
    return inner_->GetFlag(key, minus_one);
  }
};

struct ForwardingCalibSettings : Forwarding<CalibSettings> {
  using Forwarding::Forwarding;
  void GetValue(const std::string& section, const std::string& key, std::int32_t zero,
                double& value) override {
    inner_->GetValue(section, key, zero, value);
  }
};

struct ForwardingTextStream : Forwarding<TextStream> {
  using Forwarding::Forwarding;
  void WriteLine(std::string_view text) override { inner_->WriteLine(text); }
  void Close() override { inner_->Close(); }
};

struct ForwardingCalibLogFiles : Forwarding<CalibLogFiles> {
  using Forwarding::Forwarding;
  std::shared_ptr<TextStream> OpenLogFile(const std::string& prefix, const std::string& header,
                                          const std::string& extension) override {
    return inner_->OpenLogFile(prefix, header, extension);
  }
  std::string JoinAsCsvLine(const std::array<Variant, 6>& values) override {
    return inner_->JoinAsCsvLine(values);
  }
};

struct ForwardingInstrumentPaths : Forwarding<InstrumentPaths> {
  using Forwarding::Forwarding;
  std::string GetBaseFolder() override { return inner_->GetBaseFolder(); }
};

struct ForwardingFirmwareLibrary : Forwarding<FirmwareLibrary> {
  using Forwarding::Forwarding;
  float BinarySearchForTargetAb(std::int32_t argument1, float minimum, float maximum,
                                float speed_up_factor, float argument5, float argument6,
                                float argument7, std::int32_t argument8, float window_start_ns,
                                float window_end_ns) override {
    return inner_->BinarySearchForTargetAb(argument1, minimum, maximum, speed_up_factor, argument5,
                                           argument6, argument7, argument8, window_start_ns,
                                           window_end_ns);
  }
};

}  // namespace tof::conformance
