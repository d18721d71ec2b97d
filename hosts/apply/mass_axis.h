// Flight times turned into m/z, with a count of what a user should know of them.
#pragma once

#include <cstdint>

#include "hosts/apply/applied_calibration.h"

namespace tof::apply {

struct ConversionCounts {
  std::uint64_t spectra = 0;
  std::uint64_t bins = 0;
  std::uint64_t outside_window = 0;  // where no calibrant has tied the terms down
  std::uint64_t before_t0 = 0;       // where no ion can arrive; m/z is negative there
  std::uint64_t stale_mz_terms = 0;  // "base peak m/z" and its like, kept as they were
};

class MassAxis {
 public:
  explicit MassAxis(const AppliedCalibration& calibration)
      : model_(calibration.model), has_window_(calibration.has_window) {}

  double MassOf(double time_ns) {
    const double mass = masstime::TimeToMass(model_, time_ns);
    ++counts_.bins;
    if (mass < 0.0) ++counts_.before_t0;
    const auto& [start_ns, end_ns] = model_.window;
    if (has_window_ && (time_ns < start_ns || time_ns > end_ns)) ++counts_.outside_window;
    return mass;
  }
  void CountSpectrum() { ++counts_.spectra; }
  void CountStaleTerm() { ++counts_.stale_mz_terms; }

  const ConversionCounts& Counts() const { return counts_; }

 private:
  masstime::MassTimeModel model_;
  bool has_window_;
  ConversionCounts counts_;
};

}  // namespace tof::apply
