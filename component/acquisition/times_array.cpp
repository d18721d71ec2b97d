#include "component/acquisition/times_array.h"

#include "component/automation/convert.h"
#include "component/trace/guarded.h"

namespace tof {

void InitializeTimesArray(std::int32_t nAvgSpectra, const Variant& expected_masses,
                          PeakTable& peaks) {
  constexpr Routine kRoutine{.name = "InitializeTimesArray", .on_error = OnError::kRaise};
  Guarded(kRoutine, [&](TraceObj&) {
    const auto& masses = AsDoubleArray(expected_masses);
    peaks.ReDim(0, masses.UBound(), IfEmpty::kIsAllowed);
    for (std::int32_t i = masses.LBound(); i <= masses.UBound(); ++i) {
      peaks(i).SpectrumAttribs.ReDim({0, nAvgSpectra - 1}, {0, 1}, IfEmpty::kIsAllowed);
      peaks(i).AveragedAttribs.ReDim(0, 1);
    }
  });
}

}  // namespace tof
