// What came out of one call of the calibrator, as it gave it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "component/automation/variant.h"
#include "component/calibrator/peak_records.h"

namespace tof::cli {

struct Status {
  std::int32_t number = 0;
  std::string message;
};

struct RunOutcome {
  std::vector<double> masses;  // as they were asked for
  std::int16_t spectra = 0;
  Variant averaged_times;         // an array of doubles, or Empty
  PeakTable peaks;                // what the acquisition knows of each mass
  bool has_coefficients = false;  // a coefficients object came back
  std::optional<Status> failure;  // the event, or the error that kept the object from being made
};

}  // namespace tof::cli
