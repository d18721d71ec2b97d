#include "component/acquisition/time_spanned_peak_times.h"

#include <string>

#include "component/acquisition/abundance.h"
#include "component/acquisition/first_spectrum_survey.h"
#include "component/acquisition/times_array.h"
#include "component/aic/data_set_log.h"
#include "component/aic/peak_averaging.h"
#include "component/aic/point_collection.h"
#include "component/automation/arithmetic.h"
#include "component/automation/number_text.h"
#include "component/trace/guarded.h"

namespace tof {
namespace {

// One AIC acquisition: what its steps share.
struct Acquisition {
  Instrument& instrument;
  HostServices& host;
  const RfVoltage& rf;
  AicLog& aic_log;
  CalibrantData& data;

  void Log(const std::string& line) const { WriteToAICLog(instrument, aic_log, line); }
};

RfRange ReadRange(Instrument& instrument) {
  RfRange range;
  range.high = CalibrationSetting(instrument, "AIC_RF_HighValue");
  range.low = CalibrationSetting(instrument, "AIC_RF_LowValue");
  range.step = CalibrationSetting(instrument, "AIC_RF_Step");
  return range;
}

void LogSteps(const Acquisition& run, const RfRange& range) {
  const std::string steps = NumberText(Divide(Subtract(range.high, range.low), range.step));
  run.Log("NumSteps calculated to be " + steps + "; ReDim(" + steps + ")");
}

// With "ObfuscateCalibAlg" at exactly "1" the operator does not see the spectra of the search.
void SetDisplay(const Acquisition& run, bool live, const char* log_line) {
  if (!FlagIs(run.instrument, "ObfuscateCalibAlg", "1")) return;
  Need(run.instrument.data_dictionary->GetConfigObject()).SetDisplayUpdate(live);
  run.Log(log_line);
}

std::int32_t ReadMaximumAllowableAbundance(const Acquisition& run) {
  run.Log("Abundance Threshold = " + NumberText(AIC_TargetMaxAb(run.instrument)));
  ReadAbundanceScalarsFromXML(run.instrument, run.aic_log, run.data.ab_scalars);
  return ToInt32(AIC_TargetMaxAb(run.instrument));
}

void Collect(const Acquisition& run, double& dPeakFindWindow) {
  const bool by_measurement =
      FlagIs(run.instrument, "AIC_MinimizeImpactOfDriftOnCalibPointCollection", "Yes");
  const auto collect = by_measurement ? CollectAdditionalPointsForPurposesOfAveraging_byMeasurement
                                      : CollectAdditionalPointsForPurposesOfAveraging_byMass;
  collect(run.instrument, run.host, run.rf, run.data.expected_masses, run.aic_log, run.data.peaks,
          dPeakFindWindow);
}

void StoreMeasuredTimes(const Acquisition& run) {
  run.Log("Stored raw measured times");
  const PeakTable& peaks = run.data.peaks;
  MeasuredTimes& times = run.data.measured_times;
  const auto& measurements = peaks(0).SpectrumAttribs;
  for (std::int32_t s = measurements.LBound(1); s <= measurements.UBound(1); ++s) {
    for (std::int32_t k = times.LBound(2); k <= times.UBound(2); ++k) {
      times(s, k) = peaks(k).SpectrumAttribs(s, 0).time;
    }
  }
}

BoundedArray<double> AveragedTimes(TraceObj& trace, const PeakTable& peaks, std::int32_t n_averaged,
                                   BoundedArray<double> result) {
  for (std::int32_t k = peaks.LBound(); k <= peaks.UBound(); ++k) {
    result(k) = AveragedTime(peaks, k, n_averaged);
  }
  trace.TracePrint("Saving varAveragedTimes[", result.LBound(), ", ", result.UBound(),
                   "] to GetTimeSpannedCalibrantPeakTimes[", result.LBound(), ", ", result.UBound(),
                   "]");
  trace.TracePrint("Successfully saved varAveragedTimes");
  return result;
}

}  // namespace

Variant GetTimeSpannedCalibrantPeakTimes(Instrument& instrument, HostServices& host,
                                         std::int32_t oct_rf_setpoint_id, AicLog& aic_log,
                                         CalibrantData& data, std::int16_t nAvgSpectra,
                                         double& dPeakFindWindow) {
  constexpr Routine kRoutine{.name = "GetTimeSpannedCalibrantPeakTimes",
                             .on_error = OnError::kSwallow};
  return Guarded(kRoutine, [&](TraceObj& trace) -> Variant {
    const RfVoltage rf(instrument, host, oct_rf_setpoint_id);
    const Acquisition run{instrument, host, rf, aic_log, data};
    const double entry_value = rf.Read();
    const RfRange range = ReadRange(instrument);
    ReplaceDefaultPeakFindWindow(instrument, dPeakFindWindow);
    trace.TracePrint("dPeakFindTimeWindow = ", dPeakFindWindow);
    LogSteps(run, range);
    SetDisplay(run, false, "Freeze");
    const std::int32_t last_mass = AsDoubleArray(data.expected_masses).UBound();
    InitializeTimesArray(nAvgSpectra, data.expected_masses, data.peaks);
    const std::int32_t max_allowable_abundance = ReadMaximumAllowableAbundance(run);
    UseFirstSpectrumToFindTimesAndVoltages({instrument, host, rf, aic_log, data}, range,
                                           max_allowable_abundance, dPeakFindWindow);
    Collect(run, dPeakFindWindow);
    StoreMeasuredTimes(run);
    rf.Write(entry_value);
    const BoundedArray<double> result(0, last_mass);
    const std::int32_t n_averaged =
        AverageThePeakAttributes(instrument, host, aic_log, data.expected_masses, data.peaks);
    WriteDataToSpotFireLog(instrument, host, data.peaks);
    trace.TracePrint("1.2.3");
    Variant times = AveragedTimes(trace, data.peaks, n_averaged, result);
    SetDisplay(run, true, "Unfreeze");
    return times;
  });
}

}  // namespace tof
