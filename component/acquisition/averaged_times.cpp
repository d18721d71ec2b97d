#include "component/acquisition/averaged_times.h"

#include "component/acquisition/store_attributes.h"
#include "component/acquisition/time_spanned_peak_times.h"
#include "component/acquisition/times_array.h"
#include "component/aic/peak_averaging.h"
#include "component/automation/convert.h"
#include "component/trace/guarded.h"

namespace tof {
namespace {

constexpr std::int16_t kAllBitsSet = -1;

void StoreSpectrum(const PeakAttribsTable& parsed, std::int32_t spectrum, CalibrantData& data) {
  // A store with masses that were not parsed for belongs to another list of masses.
  if (parsed.UBound(2) < data.peaks.UBound()) Raise(RunTimeError::kSubscriptOutOfRange);
  for (std::int32_t k = parsed.LBound(2); k <= parsed.UBound(2); ++k) {
    data.measured_times(spectrum, k) = parsed(0, k).time;
    StoreAttributes(parsed, k, spectrum, data.peaks(k));
  }
}

// The last spectrum taken, for the bounds of its mass dimension.
PeakAttribsTable TakeSpectra(Instrument& instrument, const Variant& masses, double window,
                             std::int16_t n_spectra, CalibrantData& data) {
  // One spectrum is taken and not stored, deliberately: without further spectra it alone says how
  // many masses there are.
  PeakAttribsTable parsed = instrument.spec_parser->GetCalibrantPeakAttributes(masses, window);
  for (std::int32_t s = 0; s < n_spectra; ++s) {
    RaiseIfAborted(instrument);
    parsed = instrument.spec_parser->GetCalibrantPeakAttributes(masses, window);
    StoreSpectrum(parsed, s, data);
    // Unlike the check above this one fires on the full "true" only and names the driver: the two
    // are told apart by it.
    if (instrument.acq_controller->IsAbortRequested() == kAllBitsSet) {
      throw AutomationError(1, "User Aborted.", "calibrateTOFMassAxis()");
    }
  }
  return parsed;
}

// In the order of the masses parsed for.
BoundedArray<double> AveragedFlightTimes(const PeakAttribsTable& parsed, const PeakTable& peaks,
                                         std::int32_t n_averaged) {
  BoundedArray<double> times(0, parsed.UBound(2));
  for (std::int32_t k = parsed.LBound(2); k <= times.UBound(); ++k) {
    times(k) = AveragedTime(peaks, k, n_averaged);
  }
  return times;
}

}  // namespace

Variant GetAveragedTimesForCalibration(Instrument& instrument, HostServices& host,
                                       std::int32_t oct_rf_setpoint_id, AicLog& aic_log,
                                       CalibrantData& data, const Variant& varExpectedMasses,
                                       std::int16_t nAvgSpectra, bool bEnableAbImmuneCalib,
                                       double& dPeakFindWindow) {
  constexpr Routine kRoutine{.name = "GetAveragedTimesForCalibration",
                             .on_error = OnError::kSwallow};
  return Guarded(kRoutine, [&](TraceObj& trace) -> Variant {
    InitializeTimesArray(nAvgSpectra, data.expected_masses, data.peaks);
    ReplaceDefaultPeakFindWindow(instrument, dPeakFindWindow);
    trace.TracePrint("dPeakFindTimeWindow = ", dPeakFindWindow);
    if (bEnableAbImmuneCalib) {
      trace.TracePrint("Going to be saving to varAveragedMeasuredTimes");
      return GetTimeSpannedCalibrantPeakTimes(instrument, host, oct_rf_setpoint_id, aic_log, data,
                                              nAvgSpectra, dPeakFindWindow);
    }
    // Taken from the caller here alone: AIC measures the expected masses, whatever is passed.
    const Variant masses = MassesFromCaller(varExpectedMasses);
    const PeakAttribsTable parsed =
        TakeSpectra(instrument, masses, dPeakFindWindow, nAvgSpectra, data);
    const std::int32_t n_averaged =
        AverageThePeakAttributes(instrument, host, aic_log, data.expected_masses, data.peaks);
    return AveragedFlightTimes(parsed, data.peaks, n_averaged);
  });
}

}  // namespace tof
