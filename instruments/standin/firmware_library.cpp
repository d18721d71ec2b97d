#include "instruments/standin/firmware_library.h"

#include <cmath>
#include <string>

#include "component/automation/error.h"
#include "component/automation/number_text.h"
#include "instruments/peaks/peak_finder.h"
#include "instruments/standin/abundance_search.h"

namespace tof::standin {
namespace {

constexpr double kCoarseStepVolts = 20.0;

void RequireWindow(double start_ns, double end_ns) {
  if (std::isfinite(start_ns) && std::isfinite(end_ns) && start_ns < end_ns) return;
  throw AutomationError(static_cast<std::int32_t>(RunTimeError::kInvalidCall),
                        "Can't search for an abundance: no peak lies between " +
                            NumberText(start_ns) + " and " + NumberText(end_ns) + " ns");
}

}  // namespace

float StandInFirmwareLibrary::BinarySearchForTargetAb(std::int32_t, float target_min_abundance,
                                                      float target_max_abundance,
                                                      float speed_up_factor, float precision_volts,
                                                      float low_volts, float high_volts,
                                                      std::int32_t, float window_start_ns,
                                                      float window_end_ns) {
  state_->gate.Enter(Operation::kFirmwareLibraryBinarySearchForTargetAb);
  RequireWindow(window_start_ns, window_end_ns);
  const auto abundance_in = [&](const spectra::Spectrum& spectrum) {
    return peaks::MeasureAbundanceBetween(spectrum, window_start_ns, window_end_ns,
                                          state_->description.finder);
  };
  const double speed_up = speed_up_factor > 0.0F ? double{speed_up_factor} : 1.0;
  const VoltageRange range{.low_volts = low_volts,
                           .high_volts = high_volts,
                           .coarse_step_volts = kCoarseStepVolts * speed_up,
                           .precision_volts = precision_volts};
  return static_cast<float>(SearchOnInstrument(
      *state_, "firmware", abundance_in, {target_min_abundance, target_max_abundance}, range));
}

}  // namespace tof::standin
