#include "component/acquisition/abundance.h"

#include <string>

#include "component/automation/arithmetic.h"
#include "component/automation/convert.h"
#include "component/automation/number_text.h"
#include "component/trace/guarded.h"

namespace tof {
namespace {

constexpr double kMassTolerance = 0.2;

}  // namespace

void ReadAbundanceScalarsFromXML(Instrument& instrument, AicLog& aic_log,
                                 BoundedArray<double>& ab_scalars) {
  constexpr Routine kRoutine{.name = "ReadAbundanceScalarsFromXML",
                             .on_error = OnError::kTraceAndRaise};
  Guarded(kRoutine, [&](TraceObj&) {
    const BoundedArray<double> calibrants = InstrumentCalibrantMasses(instrument);
    ab_scalars.ReDim(0, calibrants.UBound());
    std::string message = "Scalars for Ab Profile";
    for (std::int32_t i = calibrants.LBound(); i <= calibrants.UBound(); ++i) {
      const bool use = FlagIs(instrument, "AIC_UseAbScalars", "Yes");
      ab_scalars(i) =
          use ? CalibrationSetting(instrument, "AIC_ScalarForMass" + std::to_string(i)) : 1.0;
      message += ", " + NumberText(ab_scalars(i));
    }
    WriteToAICLog(instrument, aic_log, message);
  });
}

std::int32_t GetAveragedPeakAbundance(Instrument& instrument, double dMass, std::int32_t nSpectra) {
  constexpr Routine kRoutine{.name = "GetAveragedPeakAbundance", .on_error = OnError::kRaise};
  return Guarded(kRoutine, [&](TraceObj&) {
    double sum = 0.0;
    for (std::int32_t i = 1; i <= nSpectra; ++i) {
      sum = Add(sum, instrument.spec_parser->GetPeakAttribute(PeakCalculationtype::abund, dMass,
                                                              kMassTolerance));
    }
    return ToInt32(Divide(sum, nSpectra));
  });
}

void LogIfOutsideBand(Instrument& instrument, AicLog& aic_log, std::int32_t massIdx,
                      const CalibMassPeakData& record, bool above_maximum) {
  if (aic_log.stream == nullptr || !AicLogTakesLines(instrument, aic_log)) return;
  const bool below_minimum = record.Abundance < AIC_TargetMinAb(instrument);
  if (!below_minimum && !above_maximum) return;
  WriteToAICLog(instrument, aic_log,
                "mass[" + std::to_string(massIdx) + "] stays " +
                    (above_maximum ? "above the maximum" : "below the minimum") +
                    ", [voltage,ab]=[" + NumberText(record.Voltage) + ", " +
                    std::to_string(record.Abundance) + "]");
}

}  // namespace tof
