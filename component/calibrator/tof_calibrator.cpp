#include "component/calibrator/tof_calibrator.h"

#include "component/aic/below_minimum.h"
#include "component/aic/data_set_log.h"
#include "component/trace/guarded.h"

namespace tof {
namespace {

// In the order in which the instrument's software expects its objects to be made.
Instrument CreateInstrument(InstrumentFactory& factory) {
  Instrument instrument;
  instrument.factory = &factory;
  instrument.data_dictionary = factory.CreateDataDictionary();
  Need(instrument.data_dictionary).Initialize();
  instrument.acq_controller = factory.CreateAcqController();
  instrument.spec_parser = factory.CreateSpecParser();
  instrument.calib_log_files = factory.CreateCalibLogFiles();
  instrument.tune_flags = factory.CreateTuneFlags();
  instrument.calib_settings = factory.CreateCalibSettings();
  Need(instrument.acq_controller).InitializeController(0);
  instrument.acq_controller->InitializeAcquisition(0);
  return instrument;
}

}  // namespace

TofCalibrator::TofCalibrator(InstrumentFactory& factory, HostServices& host, StatusEvents& events)
    : host_(host), events_(events) {
  CreateTraceObject(host_, "vorntofcaliblib");
  instrument_ = CreateInstrument(factory);
  if (instrument_.data_dictionary->GetConfigObject() != nullptr) {
    instrument_.settling_time_sec = CalibrationSetting(instrument_, "AICSettlingTime_sec");
  }
}

TofCalibrator::~TofCalibrator() {
  try {
    TraceObj trace;
    trace.TraceEntry(9, "Class_Terminate");
    instrument_.calib_log_files = nullptr;
  } catch (...) {
    // Nothing may leave a destructor; the members are released all the same.
  }
}

void TofCalibrator::WriteDataToSpotFireLog() {
  tof::WriteDataToSpotFireLog(instrument_, host_, state_.data.peaks);
}

void TofCalibrator::TestNewStuff() {
  constexpr Routine kRoutine{.name = "TestNewStuff",
                             .on_error = OnError::kSwallow,
                             .error_line = ErrorLine::kCapitalized,
                             .level = 1};
  Guarded(kRoutine, [](TraceObj&) {});
}

Variant TofCalibrator::GetAveragedTimesForCalibration(const Variant& varExpectedMasses,
                                                      std::int16_t& nAvgSpectra,
                                                      bool& bEnableAbImmuneCalib,
                                                      double& dPeakFindWindow) {
  return tof::GetAveragedTimesForCalibration(instrument_, host_, state_.oct_rf_setpoint_id,
                                             state_.aic_log, state_.data, varExpectedMasses,
                                             nAvgSpectra, bEnableAbImmuneCalib, dPeakFindWindow);
}

Variant TofCalibrator::GetAveragedTimesForCalibration(const Variant& varExpectedMasses,
                                                      std::int16_t& nAvgSpectra,
                                                      bool& bEnableAbImmuneCalib) {
  double dPeakFindWindow = -1.0;
  return GetAveragedTimesForCalibration(varExpectedMasses, nAvgSpectra, bEnableAbImmuneCalib,
                                        dPeakFindWindow);
}

std::shared_ptr<MassCalCoefficients> TofCalibrator::calibrateTOFMassAxis(
    std::int16_t& nAvgSpectra, const Variant& varExpectedMasses, Variant& varAveragedMeasuredTimes,
    bool& bSuppressAbImmuneCalib, OptionalCalibrationArguments& optional) {
  const CalibrationArguments arguments{
      .nAvgSpectra = nAvgSpectra,
      .varExpectedMasses = varExpectedMasses,
      .varAveragedMeasuredTimes = varAveragedMeasuredTimes,
      .bSuppressAbImmuneCalib = bSuppressAbImmuneCalib,
      .bThisIsAManualCalibration = optional.bThisIsAManualCalibration,
      .dTradWeighting = optional.dTradWeighting,
      .dPeakFindTimeWindow = optional.dPeakFindTimeWindow};
  return tof::calibrateTOFMassAxis(instrument_, host_, state_, arguments, events_);
}

std::shared_ptr<MassCalCoefficients> TofCalibrator::calibrateTOFMassAxis(
    std::int16_t& nAvgSpectra, const Variant& varExpectedMasses, Variant& varAveragedMeasuredTimes,
    bool& bSuppressAbImmuneCalib) {
  OptionalCalibrationArguments optional;
  return calibrateTOFMassAxis(nAvgSpectra, varExpectedMasses, varAveragedMeasuredTimes,
                              bSuppressAbImmuneCalib, optional);
}

void TofCalibrator::ReplaceAnyVoltagesForAbundancesBelowMinimum(const Survey& survey,
                                                                double stepSize) {
  const RfVoltage rf(instrument_, host_, state_.oct_rf_setpoint_id);
  const TargetSearch search{.instrument = instrument_,
                            .host = host_,
                            .rf = rf,
                            .expected_masses = state_.data.expected_masses,
                            .ab_scalars = state_.data.ab_scalars,
                            .aic_log = state_.aic_log};
  tof::ReplaceAnyVoltagesForAbundancesBelowMinimum(search, survey, stepSize, state_.data.peaks);
}

}  // namespace tof
