#include "component/aic/below_minimum.h"

#include <string>

#include "component/automation/number_text.h"
#include "component/trace/guarded.h"

namespace tof {
namespace {

void ReplaceIfBelowMinimum(const TargetSearch& search, const Survey& survey, double stepSize,
                           PeakTable& peaks, std::int32_t massIdx) {
  // Compared unscaled, deliberately.
  if (peaks(massIdx).Abundance >= AIC_TargetMinAb(search.instrument)) return;
  if (!bThisMassHasHadAnAbundanceAboveTheMin(search.instrument, search.aic_log, survey, massIdx)) {
    return;
  }
  const CalibMassPeakData& record = peaks(massIdx);
  WriteToAICLog(search.instrument, search.aic_log,
                "replacing optimal voltage for mass[" + std::to_string(massIdx) + "], time[" +
                    NumberText(record.SpectrumAttribs(0, 0).time) + "] and abundance[" +
                    std::to_string(record.Abundance) + "]");
  FindRFVoltageCloserToTargetAbundance(search, peaks, massIdx, stepSize);
}

}  // namespace

void ReplaceAnyVoltagesForAbundancesBelowMinimum(const TargetSearch& search, const Survey& survey,
                                                 double stepSize, PeakTable& peaks) {
  constexpr Routine kRoutine{.name = "ReplaceAnyVoltagesForAbundancesBelowMinimum",
                             .on_error = OnError::kSwallow};
  Guarded(kRoutine, [&](TraceObj&) {
    const auto log = [&](const std::string& line) {
      WriteToAICLog(search.instrument, search.aic_log, line);
    };
    const std::int32_t first = peaks.LBound();
    const std::int32_t last = peaks.UBound();
    log("");
    log("Replacing target values with abundances that are below ab min target...");
    for (std::int32_t m = first; m <= last; ++m) {
      ReplaceIfBelowMinimum(search, survey, stepSize, peaks, m);
    }
    log("");
    log("Final chosen voltages and abundances: [MassIdx, Voltage, Ab]");
    for (std::int32_t m = first; m <= last; ++m) {
      log("[" + std::to_string(m) + ", " + WholeNumberText(peaks(m).Voltage) + ", " +
          WholeNumberText(peaks(m).Abundance) + "]");
    }
  });
}

}  // namespace tof
