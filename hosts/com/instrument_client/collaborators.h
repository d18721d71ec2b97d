// An instrument's automation objects as the collaborators that the component asks for. They only
// translate; the contract of each operation stands in component/calibrator/collaborators.h and
// hosts/com/idl/vorninstrument.idl.
#pragma once

#include <memory>
#include <string>

#include "component/calibrator/collaborators.h"
#include "hosts/com/automation/dispatch_object.h"

namespace tof::com {

class AutomationSetpointTable : public SetpointTable {
 public:
  explicit AutomationSetpointTable(DispatchObject object) : object_(std::move(object)) {}
  Variant GetSetpoint(std::int32_t id) override;
  void SetSetpoint(std::int32_t id, ValueType type, const Variant& value) override;
  Variant GetCurrentValue(std::int32_t id) override;

 private:
  DispatchObject object_;
};

class AutomationSpectrumDisplay : public SpectrumDisplay {
 public:
  explicit AutomationSpectrumDisplay(DispatchObject object) : object_(std::move(object)) {}
  void SetDisplayUpdate(bool live) override;

 private:
  DispatchObject object_;
};

class AutomationStatusReader : public StatusReader {
 public:
  explicit AutomationStatusReader(DispatchObject object) : object_(std::move(object)) {}
  Variant Read(const std::string& name, const std::string& type, std::int32_t zero) override;

 private:
  DispatchObject object_;
};

class AutomationDataDictionary : public DataDictionary {
 public:
  explicit AutomationDataDictionary(DispatchObject object) : object_(std::move(object)) {}
  void Initialize() override;
  std::shared_ptr<SetpointTable> GetSetpointTable() override;
  std::shared_ptr<SpectrumDisplay> GetConfigObject() override;
  std::string GetFlagKey() override;
  double GetTimeValue() override;
  std::int32_t GetAcqStartTime() override;
  std::int32_t GetAcqEndTime() override;
  std::shared_ptr<StatusReader> GetStatusReader() override;
  std::string GetModeName() override;
  bool ModeUsesRfSetpoints(const std::string& mode_name) override;

 private:
  DispatchObject object_;
};

class AutomationAcqController : public AcqController {
 public:
  explicit AutomationAcqController(DispatchObject object) : object_(std::move(object)) {}
  void InitializeController(std::int32_t zero) override;
  void InitializeAcquisition(std::int32_t zero) override;
  Variant PrepareSetpointAccess() override;
  Variant PrepareSetpointTable() override;
  std::int16_t IsAbortRequested() override;
  double GetScaleFactor() override;
  std::shared_ptr<MassCalCoefficients> GetCurrentMassCalObject() override;
  double GetCurrentA() override;
  std::shared_ptr<MassCalCoefficients> GetDefaultCalibCoefficients() override;
  void SetCalibCoefficients(const std::shared_ptr<MassCalCoefficients>& coefficients) override;
  void SetLikelyAAndT0(double a_per_us, double t0_us) override;
  ColumnStatistics GetColumnStatistics(const BoundedArray2D<double>& values) override;
  void EndAIC() override;
  Variant ReadSetpoint(std::int32_t id) override;
  std::string GetConfigurationName() override;
  BoundedArray<double> GetCalibrantMasses(std::int32_t setpoint117, const std::string& mode_name,
                                          const std::string& configuration_name) override;

 private:
  DispatchObject object_;
};

class AutomationSpecParser : public SpecParser {
 public:
  explicit AutomationSpecParser(DispatchObject object) : object_(std::move(object)) {}
  PeakAttribsTable GetCalibrantPeakAttributes(const Variant& masses,
                                              double peak_find_window) override;
  double GetPeakAttribute(PeakCalculationtype kind, double mass, double tolerance) override;
  void FindPeaks(double start_ns, double end_ns, std::int32_t peaks_sought, std::int32_t& count,
                 std::shared_ptr<PeakList>& list) override;
  bool ShouldAvoidAIC(const Variant& masses, double& peak_find_width) override;
  void SearchTargetAbundance(double mass, double tolerance) override;

 private:
  DispatchObject object_;
};

class AutomationTuneFlags : public TuneFlags {
 public:
  explicit AutomationTuneFlags(DispatchObject object) : object_(std::move(object)) {}
  std::string GetFlag(const std::string& key, std::int32_t minus_one) override;

 private:
  DispatchObject object_;
};

class AutomationCalibSettings : public CalibSettings {
 public:
  explicit AutomationCalibSettings(DispatchObject object) : object_(std::move(object)) {}
  void GetValue(const std::string& section, const std::string& key, std::int32_t zero,
                double& value) override;

 private:
  DispatchObject object_;
};

class AutomationCalibLogFiles : public CalibLogFiles {
 public:
  explicit AutomationCalibLogFiles(DispatchObject object) : object_(std::move(object)) {}
  std::shared_ptr<TextStream> OpenLogFile(const std::string& prefix, const std::string& header,
                                          const std::string& extension) override;
  std::string JoinAsCsvLine(const std::array<Variant, 6>& values) override;

 private:
  DispatchObject object_;
};

class AutomationInstrumentPaths : public InstrumentPaths {
 public:
  explicit AutomationInstrumentPaths(DispatchObject object) : object_(std::move(object)) {}
  std::string GetBaseFolder() override;

 private:
  DispatchObject object_;
};

}  // namespace tof::com
