#include "component/calibration/driver.h"

#include "component/automation/arithmetic.h"
#include "component/automation/convert.h"
#include "component/calibration/coefficient_verification.h"
#include "component/calibration/likely_a.h"
#include "component/calibration/logging_info.h"
#include "component/trace/calibration_log.h"
#include "component/trace/guarded.h"

namespace tof {
namespace {

using Coefficients = std::shared_ptr<MassCalCoefficients>;

constexpr double kNanosecondsPerSecond = 1e9;

// Only with a weighting of exactly 0 or 1 do the settings choose which terms are fitted.
bool TakesTermsFromSettings(double dTradWeighting) {
  return dTradWeighting == 0.0 || dTradWeighting == 1.0;
}

constexpr const char* kLoadingDefaults =
    "Loading default calib coefficients because alg seems to have chosen really bad ones.";

// Doubles from index 0; a list that is no list of masses stays as the caller passed it.
Variant RebasedIfUsable(const Variant& masses) {
  try {
    return MassesFromCaller(masses);
  } catch (const AutomationError&) {
    return masses;
  }
}

// The mean raw flight time of each mass, in the time field that held its assigned mass.
void AverageMeasuredTimes(const MeasuredTimes& times, PeakTable& peaks) {
  const double n_spectra = double{1} + times.UBound(1) - times.LBound(1);
  for (std::int32_t m = peaks.LBound(); m <= peaks.UBound(); ++m) {
    if (!peaks(m).AveragedAttribs.IsDimensioned()) continue;
    double& mean = peaks(m).AveragedAttribs(1).time;
    mean = 0.0;
    for (std::int32_t s = times.LBound(1); s <= times.UBound(1); ++s) mean = Add(mean, times(s, m));
    mean = Divide(mean, n_spectra);
  }
}

// One calibration as it runs: what its steps share, and the steps in the order they are taken.
class Calibration {
 public:
  Calibration(Instrument& instrument, HostServices& host, CalibrationState& state,
              const CalibrationArguments& arguments, StatusEvents& events, TraceObj& trace)
      : instrument_(instrument),
        host_(host),
        state_(state),
        arguments_(arguments),
        events_(events),
        trace_(trace) {}

  Coefficients Run();

 private:
  bool IsSwitchedOff();
  void DecideOnAic();
  void PrepareAic();
  void ReplaceDefaultWindow();
  bool FittingPass();
  void PrepareForFit();
  void MeasureAveragedTimes();
  void Fit(const BoundedArray<double>& masses);
  void PutInForce();
  void EndAic();
  void Dump();

  Instrument& instrument_;
  HostServices& host_;
  CalibrationState& state_;
  const CalibrationArguments& arguments_;
  StatusEvents& events_;
  TraceObj& trace_;

  bool bEnableAbImmuneCalib_ = false;
  double peak_find_width_ = 10.0;
  Coefficients coefficients_;
};

Coefficients Calibration::Run() {
  StorePreAutotuneInstrumentState(instrument_, state_.instrument_state);
  state_.data.expected_masses = RebasedIfUsable(arguments_.varExpectedMasses);
  // Leaves the state stored above as it is, deliberately: nothing has been changed yet. An unusable
  // list is no error here either, as nothing uses it.
  if (IsSwitchedOff()) return nullptr;
  state_.data.expected_masses = MassesFromCaller(state_.data.expected_masses);
  DecideOnAic();
  EnsureProperInstrumentStateForCalibration(instrument_, !bEnableAbImmuneCalib_);
  if (bEnableAbImmuneCalib_) PrepareAic();
  RaiseIfAborted(instrument_);
  ReplaceDefaultWindow();
  ApplySmallMoleculeCalibSetpoints(instrument_, state_.tune_setpoints);

  if (!FittingPass()) {
    trace_.TracePrint("Calibrate() returned bad coefficients.  Re-attempting calibration");
    if (!FittingPass()) {
      trace_.TracePrint("Calibrate() returned bad coefficients twice.  Reporting error...");
      trace_.TracePrint(kLoadingDefaults);
      LoadDefaultCalibCoefficients(instrument_);
      throw AutomationError(-1, "Calibration failed: bad coefficients returned.");
    }
  }
  PutInForce();
  trace_.TracePrint("8");
  trace_.TracePrint("9");
  if (bEnableAbImmuneCalib_) EndAic();
  trace_.TracePrint("11");
  RestoreSmallMoleculeCalibSetpoints(instrument_, state_.tune_setpoints);
  RestoreInstrumentState(instrument_, host_, state_, events_, false);
  return coefficients_;
}

bool Calibration::IsSwitchedOff() {
  if (!FlagIs(instrument_, "SkipTOFCalibrationDuringAutotunes", "Yes")) return false;
  trace_.TracePrint("1");
  if (arguments_.bThisIsAManualCalibration) return false;
  trace_.TracePrint("2");
  return true;
}

void Calibration::DecideOnAic() {
  trace_.TracePrint("0.4");
  const std::string key = instrument_.data_dictionary->GetFlagKey();
  const bool allowed = FlagIs(instrument_, key, "No");
  const bool always = FlagIs(instrument_, "AIC_AlwaysRunOnly", "Yes");
  const bool avoid =
      instrument_.spec_parser->ShouldAvoidAIC(state_.data.expected_masses, peak_find_width_);
  bEnableAbImmuneCalib_ = always || (allowed && !arguments_.bSuppressAbImmuneCalib && !avoid);
  trace_.TracePrint("bEnableAbImmuneCalib[", bEnableAbImmuneCalib_, "]");
  trace_.TracePrint("0.5");
}

void Calibration::PrepareAic() {
  state_.oct_rf_setpoint_id = ToInt32(CalibrationSetting(instrument_, "AIC_SetpointToUse"));
  if (AicLoggingEnabled(instrument_)) OpenAicLog(instrument_, host_, state_.aic_log);
}

void Calibration::ReplaceDefaultWindow() {
  double& window = arguments_.dPeakFindTimeWindow;
  if (window == -1.0) {
    // The width keeps 10, or what the parser left in it, when the instrument has no such setting.
    instrument_.calib_settings->GetValue("PeakHandling", "PeakFindWindowInPercentT", 0,
                                         peak_find_width_);
    window = peak_find_width_;
  }
  trace_.TracePrint("dPeakFindTimeWindow = ", window);
}

// True when the fitted coefficients are good.
bool Calibration::FittingPass() {
  ApplyLikelyAAt0Coefficients(instrument_, host_, arguments_.bThisIsAManualCalibration,
                              state_.data.expected_masses);
  coefficients_ = instrument_.acq_controller->GetCurrentMassCalObject();
  Dump();
  trace_.TracePrint("pLocalCopyOfCurrentMTCalcObjFromDD.BinWidth = ", coefficients_->GetBinWidth());
  const BoundedArray<double> masses = AsDoubleArray(state_.data.expected_masses);
  PrepareForFit();
  trace_.TracePrint("1.1");
  RaiseIfAborted(instrument_);
  trace_.TracePrint("1.2");
  if (FlagIs(instrument_, "TriggerError_caliblib_calibrateTOFMassAxis", "Yes")) {
    throw AutomationError(-666, "Debug Error Raised");
  }
  trace_.TracePrint("1.3");
  if (!FlagIs(instrument_, "UseCalibrationAlgInMTObj", "Yes")) {
    // Says so and goes on regardless.
    trace_.TracePrint("ERROR:  the option to run the old calibration wrapper has been disabled.");
  }
  MeasureAveragedTimes();
  Fit(masses);
  if (!Calibration_VerifyCalibCoefficients(instrument_, coefficients_)) return false;
  trace_.TracePrint("Calibrate() returned good looking coefficients.");
  return true;
}

void Calibration::PrepareForFit() {
  CalInfo info = coefficients_->GetCalInfo();
  const std::int32_t power_flag = TakesTermsFromSettings(arguments_.dTradWeighting)
                                      ? ToInt32(CalibrationSetting(instrument_, "UseThisPowerFlag"))
                                      : 0;
  info.time_ns = Multiply(instrument_.data_dictionary->GetTimeValue(), kNanosecondsPerSecond);
  info.setpoint119 = ToInt32(ReadSetpoint(instrument_, setpoint::k119));
  info.PolyTermPowerUseFlag = power_flag;
  coefficients_->SetCalInfo(info);
  trace_.TracePrint("calInfo.PolyTermPowerUseFlag = ", power_flag);
}

void Calibration::MeasureAveragedTimes() {
  trace_.TracePrint("1.4");
  const std::int32_t last_mass = AsDoubleArray(state_.data.expected_masses).UBound();
  state_.data.measured_times.ReDim({0, arguments_.nAvgSpectra - 1}, {0, last_mass});
  Variant& averaged = arguments_.varAveragedMeasuredTimes;
  averaged = Variant::Array(0, last_mass);

  trace_.TracePrint("1.5");
  averaged = GetAveragedTimesForCalibration(instrument_, host_, state_.oct_rf_setpoint_id,
                                            state_.aic_log, state_.data,
                                            state_.data.expected_masses, arguments_.nAvgSpectra,
                                            bEnableAbImmuneCalib_, arguments_.dPeakFindTimeWindow);
  if (averaged.IsEmpty()) {
    // The acquisition keeps its error to itself: an abort is asked for once more, so that the host
    // hears of it; anything else has left no times, and no bounds to walk.
    RaiseIfAborted(instrument_);
    Raise(RunTimeError::kTypeMismatch);
  }
  const auto& times = AsDoubleArray(averaged);
  for (std::int32_t i = times.LBound(); i <= times.UBound(); ++i) {
    trace_.TracePrint("AveragedMeasuredCalibrantTime[", i, "]: ", times(i));
  }
}

void Calibration::Fit(const BoundedArray<double>& masses) {
  trace_.TracePrint("1.6");
  const auto& averaged = AsDoubleArray(arguments_.varAveragedMeasuredTimes);
  BoundedArray<double> times(0, masses.UBound());
  for (std::int32_t i = 0; i <= times.UBound(); ++i) times(i) = averaged(i);
  trace_.TracePrint("1.7");
  Dump();
  trace_.TracePrint("Calling Calibrate()");
  coefficients_->Calibrate(masses, times);
  trace_.TracePrint("Back from Calibrate()");
  Dump();
  trace_.TracePrint("1.8");
}

void Calibration::PutInForce() {
  trace_.TracePrint("1.9");
  instrument_.acq_controller->SetCalibCoefficients(coefficients_);
  if (!FlagIs(instrument_, "UseCalibrationAlgInMTObj", "Yes")) return;
  AverageMeasuredTimes(state_.data.measured_times, state_.data.peaks);
  if (TakesTermsFromSettings(arguments_.dTradWeighting)) {
    CalInfo info = coefficients_->GetCalInfo();
    info.PolyTermPowerUseFlag = 0;
    coefficients_->SetCalInfo(info);
  }
  WriteCalibrationLoggingInfo(instrument_, host_, coefficients_, state_.data.expected_masses,
                              state_.data.measured_times);
}

void Calibration::EndAic() {
  trace_.TracePrint("10");
  if (AicLoggingEnabled(instrument_)) {
    Need(state_.aic_log.stream).Close();
    state_.aic_log.stream = nullptr;
  }
  instrument_.acq_controller->EndAIC();
}

void Calibration::Dump() {
  TraceDumpCoefficients(instrument_, host_, coefficients_, false);
}

// Puts back what the calibration changed. Every step is taken, whatever becomes of the others.
void RunFailurePath(Instrument& instrument, HostServices& host, CalibrationState& state,
                    StatusEvents& events, TraceObj& trace, const AutomationError& error) {
  IgnoringErrors([&] { RestoreSmallMoleculeCalibSetpoints(instrument, state.tune_setpoints); });
  IgnoringErrors([&] { RestoreInstrumentState(instrument, host, state, events, false); });
  // A check that itself fails counts as not good.
  Coefficients current;
  bool good = false;
  IgnoringErrors([&] { current = instrument.acq_controller->GetCurrentMassCalObject(); });
  IgnoringErrors([&] { good = Calibration_VerifyCalibCoefficients(instrument, current); });
  if (!good) {
    IgnoringErrors([&] { TraceDumpCoefficients(instrument, host, current, false); });
    IgnoringErrors([&] { trace.TracePrint(kLoadingDefaults); });
    IgnoringErrors([&] { LoadDefaultCalibCoefficients(instrument); });
  }
  IgnoringErrors([&] { events.evtNewStatus(error.number(), error.description()); });
}

}  // namespace

void RestoreInstrumentState(Instrument& instrument, HostServices& host, CalibrationState& state,
                            StatusEvents& events, bool bRecalibrate) {
  const auto recalibrate = [&](const Variant& masses, std::int16_t n_spectra) {
    Variant measured_times;
    double window = -1.0;
    calibrateTOFMassAxis(instrument, host, state,
                         {.nAvgSpectra = n_spectra,
                          .varExpectedMasses = masses,
                          .varAveragedMeasuredTimes = measured_times,
                          .dPeakFindTimeWindow = window},
                         events);
  };
  RestorePreAutotuneInstrumentState(instrument, state.instrument_state, bRecalibrate,
                                    state.data.expected_masses, state.data.measured_times,
                                    recalibrate);
}

Coefficients calibrateTOFMassAxis(Instrument& instrument, HostServices& host,
                                  CalibrationState& state, const CalibrationArguments& arguments,
                                  StatusEvents& events) {
  constexpr Routine kRoutine{
      .name = "calibrateTOFMassAxis", .on_error = OnError::kSwallow, .level = 4};
  return Guarded(
      kRoutine,
      [&](TraceObj& trace) {
        return Calibration(instrument, host, state, arguments, events, trace).Run();
      },
      [&](const AutomationError& error, TraceObj& trace) {
        RunFailurePath(instrument, host, state, events, trace, error);
      });
}

}  // namespace tof
