// Collaborators written in C++ as automation objects: what an instrument's COM server hands out.
// They only translate; the contract of each operation stands in
// component/calibrator/collaborators.h.
#pragma once

#include <vorninstrument.h>

#include <memory>

#include "component/calibrator/collaborators.h"
#include "hosts/com/server/dual_object.h"

namespace tof::com {

class SetpointTableObject final : public DualObject<SetpointTableObject, ISetpointTable> {
 public:
  explicit SetpointTableObject(std::shared_ptr<SetpointTable> table) : table_(std::move(table)) {}

  HRESULT STDMETHODCALLTYPE GetSetpoint(LONG id, VARIANT* value) override;
  HRESULT STDMETHODCALLTYPE SetSetpoint(LONG id, LONG value_type, VARIANT value) override;
  HRESULT STDMETHODCALLTYPE GetCurrentValue(LONG id, VARIANT* value) override;

 private:
  std::shared_ptr<SetpointTable> table_;
};

class SpectrumDisplayObject final : public DualObject<SpectrumDisplayObject, ISpectrumDisplay> {
 public:
  explicit SpectrumDisplayObject(std::shared_ptr<SpectrumDisplay> display)
      : display_(std::move(display)) {}

  HRESULT STDMETHODCALLTYPE SetDisplayUpdate(VARIANT_BOOL live) override;

 private:
  std::shared_ptr<SpectrumDisplay> display_;
};

class StatusReaderObject final : public DualObject<StatusReaderObject, IStatusReader> {
 public:
  explicit StatusReaderObject(std::shared_ptr<StatusReader> reader) : reader_(std::move(reader)) {}

  HRESULT STDMETHODCALLTYPE Read(BSTR name, BSTR type, LONG zero, VARIANT* value) override;

 private:
  std::shared_ptr<StatusReader> reader_;
};

class DataDictionaryObject final : public DualObject<DataDictionaryObject, IDataDictionary> {
 public:
  explicit DataDictionaryObject(std::shared_ptr<DataDictionary> dictionary)
      : dictionary_(std::move(dictionary)) {}

  HRESULT STDMETHODCALLTYPE Initialize() override;
  HRESULT STDMETHODCALLTYPE GetSetpointTable(ISetpointTable** table) override;
  HRESULT STDMETHODCALLTYPE GetConfigObject(ISpectrumDisplay** display) override;
  HRESULT STDMETHODCALLTYPE GetFlagKey(BSTR* key) override;
  HRESULT STDMETHODCALLTYPE GetTimeValue(double* time_s) override;
  HRESULT STDMETHODCALLTYPE GetAcqStartTime(LONG* start_us) override;
  HRESULT STDMETHODCALLTYPE GetAcqEndTime(LONG* end_us) override;
  HRESULT STDMETHODCALLTYPE GetStatusReader(IStatusReader** reader) override;
  HRESULT STDMETHODCALLTYPE GetModeName(BSTR* mode_name) override;
  HRESULT STDMETHODCALLTYPE ModeUsesRfSetpoints(BSTR mode_name, VARIANT_BOOL* uses) override;

 private:
  std::shared_ptr<DataDictionary> dictionary_;
  KeptTypes<ISetpointTable, ISpectrumDisplay, IStatusReader> handed_out_;
};

class AcqControllerObject final : public DualObject<AcqControllerObject, IAcqController> {
 public:
  explicit AcqControllerObject(std::shared_ptr<AcqController> controller)
      : controller_(std::move(controller)) {}

  HRESULT STDMETHODCALLTYPE InitializeController(LONG zero) override;
  HRESULT STDMETHODCALLTYPE InitializeAcquisition(LONG zero) override;
  HRESULT STDMETHODCALLTYPE PrepareSetpointAccess(VARIANT* answer) override;
  HRESULT STDMETHODCALLTYPE PrepareSetpointTable(VARIANT* answer) override;
  HRESULT STDMETHODCALLTYPE IsAbortRequested(VARIANT_BOOL* requested) override;
  HRESULT STDMETHODCALLTYPE GetScaleFactor(double* factor) override;
  HRESULT STDMETHODCALLTYPE GetCurrentMassCalObject(IMassCalCoefficients** coefficients) override;
  HRESULT STDMETHODCALLTYPE GetCurrentA(double* a_per_ns) override;
  HRESULT STDMETHODCALLTYPE
  GetDefaultCalibCoefficients(IMassCalCoefficients** coefficients) override;
  HRESULT STDMETHODCALLTYPE SetCalibCoefficients(IMassCalCoefficients* coefficients) override;
  HRESULT STDMETHODCALLTYPE SetLikelyAAndT0(double a_per_us, double t0_us) override;
  HRESULT STDMETHODCALLTYPE GetColumnStatistics(VARIANT values, VARIANT* averages,
                                                VARIANT* standard_deviations) override;
  HRESULT STDMETHODCALLTYPE EndAIC() override;
  HRESULT STDMETHODCALLTYPE ReadSetpoint(LONG id, VARIANT* value) override;
  HRESULT STDMETHODCALLTYPE GetConfigurationName(BSTR* name) override;
  HRESULT STDMETHODCALLTYPE GetCalibrantMasses(LONG setpoint117, BSTR mode_name,
                                               BSTR configuration_name, VARIANT* masses) override;

 private:
  std::shared_ptr<AcqController> controller_;
  KeptTypes<IMassCalCoefficients> handed_out_;
};

class SpecParserObject final : public DualObject<SpecParserObject, ISpecParser> {
 public:
  explicit SpecParserObject(std::shared_ptr<SpecParser> parser) : parser_(std::move(parser)) {}

  HRESULT STDMETHODCALLTYPE GetCalibrantPeakAttributes(VARIANT masses, double peak_find_window,
                                                       VARIANT* attributes) override;
  HRESULT STDMETHODCALLTYPE GetPeakAttribute(::PeakCalculationtype kind, double mass,
                                             double tolerance, double* value) override;
  HRESULT STDMETHODCALLTYPE FindPeaks(double start_ns, double end_ns, LONG peaks_sought,
                                      LONG* count, IPeakList** list) override;
  HRESULT STDMETHODCALLTYPE ShouldAvoidAIC(VARIANT masses, double* peak_find_width,
                                           VARIANT_BOOL* avoid) override;
  HRESULT STDMETHODCALLTYPE SearchTargetAbundance(double mass, double tolerance) override;

 private:
  std::shared_ptr<SpecParser> parser_;
  KeptTypes<IPeakList> handed_out_;
};

class TuneFlagsObject final : public DualObject<TuneFlagsObject, ITuneFlags> {
 public:
  explicit TuneFlagsObject(std::shared_ptr<TuneFlags> flags) : flags_(std::move(flags)) {}

  HRESULT STDMETHODCALLTYPE GetFlag(BSTR key, LONG minus_one, BSTR* text) override;

 private:
  std::shared_ptr<TuneFlags> flags_;
};

class CalibSettingsObject final : public DualObject<CalibSettingsObject, ICalibSettings> {
 public:
  explicit CalibSettingsObject(std::shared_ptr<CalibSettings> settings)
      : settings_(std::move(settings)) {}

  HRESULT STDMETHODCALLTYPE GetValue(BSTR section, BSTR key, LONG zero, double* value) override;

 private:
  std::shared_ptr<CalibSettings> settings_;
};

class TextStreamObject final : public DualObject<TextStreamObject, ILogTextStream> {
 public:
  explicit TextStreamObject(std::shared_ptr<TextStream> stream) : stream_(std::move(stream)) {}

  HRESULT STDMETHODCALLTYPE WriteLine(BSTR text) override;
  HRESULT STDMETHODCALLTYPE Close() override;

 private:
  std::shared_ptr<TextStream> stream_;
};

class CalibLogFilesObject final : public DualObject<CalibLogFilesObject, ICalibLogFiles> {
 public:
  explicit CalibLogFilesObject(std::shared_ptr<CalibLogFiles> files) : files_(std::move(files)) {}

  HRESULT STDMETHODCALLTYPE OpenLogFile(BSTR prefix, BSTR header, BSTR extension,
                                        IDispatch** stream) override;
  HRESULT STDMETHODCALLTYPE JoinAsCsvLine(VARIANT values, BSTR* line) override;

 private:
  std::shared_ptr<CalibLogFiles> files_;
  KeptTypes<ILogTextStream> handed_out_;
};

class InstrumentPathsObject final : public DualObject<InstrumentPathsObject, IInstrumentPaths> {
 public:
  explicit InstrumentPathsObject(std::shared_ptr<InstrumentPaths> paths)
      : paths_(std::move(paths)) {}

  HRESULT STDMETHODCALLTYPE GetBaseFolder(BSTR* folder) override;

 private:
  std::shared_ptr<InstrumentPaths> paths_;
};

}  // namespace tof::com
