#include "component/acquisition/time_spanned_peak_times.h"

#include "component/trace/guarded.h"

namespace tof {
namespace {

constexpr std::int32_t kActionNotSupported = 445;

}  // namespace

Variant GetTimeSpannedCalibrantPeakTimes(std::int16_t /*nAvgSpectra*/,
                                         double& /*dPeakFindWindow*/) {
  constexpr Routine kRoutine{.name = "GetTimeSpannedCalibrantPeakTimes",
                             .on_error = OnError::kSwallow};
  return Guarded(kRoutine, [](TraceObj&) -> Variant {
    throw AutomationError(kActionNotSupported,
                          "Abundance-immune calibration is not available in this version");
  });
}

}  // namespace tof
