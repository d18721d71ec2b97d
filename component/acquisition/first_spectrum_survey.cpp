#include "component/acquisition/first_spectrum_survey.h"

#include <string>

#include "component/acquisition/per_mass_search.h"
#include "component/acquisition/voltage_ramp.h"
#include "component/trace/guarded.h"

namespace tof {
namespace {

constexpr std::int32_t kSetpointWithPerMassSearch = 83;
constexpr std::int32_t kPluggedAbundance = 200000;

void Plug(Instrument& instrument, PeakTable& peaks, std::int32_t first, std::int32_t last) {
  for (std::int32_t m = first; m <= last; ++m) {
    peaks(m).Abundance = kPluggedAbundance;
    peaks(m).Voltage =
        CalibrationSetting(instrument, "AICAltSPPlugValueForMass" + std::to_string(m + 1));
  }
}

// At least six masses are assumed, ten as soon as there are more: with fewer the bounds check ends
// it. Masses from the eleventh on keep what they had. Both deliberate.
void UsePlugValues(Instrument& instrument, const BoundedArray<double>& masses, PeakTable& peaks) {
  Plug(instrument, peaks, 0, 5);
  if (masses.UBound() < 6) return;
  Plug(instrument, peaks, 6, 9);
}

}  // namespace

void UseFirstSpectrumToFindTimesAndVoltages(const SurveyContext& context, const RfRange& range,
                                            std::int32_t max_allowable_abundance,
                                            double& dPeakFindWindow) {
  constexpr Routine kRoutine{.name = "UseFirstSpectrumToFindTimesAndVoltages",
                             .on_error = OnError::kTraceAndRaise};
  Guarded(kRoutine, [&](TraceObj& trace) {
    Instrument& instrument = context.instrument;
    const double entry_value = context.rf.Read();
    ReplaceDefaultPeakFindWindow(instrument, dPeakFindWindow);
    trace.TracePrint("dPeakFindTimeWindow = ", dPeakFindWindow);
    if (FlagIs(instrument, "EnableAICAltSPPlugValues", "Yes")) {
      UsePlugValues(instrument, AsDoubleArray(context.data.expected_masses), context.data.peaks);
      return;
    }
    // Read in their place; nothing uses them.
    CalibrationSetting(instrument, "AIC_LowQuadAMUStartValue");
    CalibrationSetting(instrument, "AIC_LowQuadAMUStopValue");
    if (context.rf.setpoint_id() == kSetpointWithPerMassSearch) {
      SearchPerMass(context, trace,
                    {.entry_value = entry_value,
                     .lower_limit = range.low,
                     .max_allowable_abundance = max_allowable_abundance,
                     .peak_find_window = dPeakFindWindow});
    } else {
      RampVoltage(context, trace, range, max_allowable_abundance, dPeakFindWindow);
    }
  });
}

}  // namespace tof
