// Masses and times from the peaks of a spectrum.
#pragma once

#include <vector>

#include "hosts/cli/masses.h"
#include "hosts/cli/options.h"
#include "instruments/masstime/mass_time_model.h"

namespace tof::cli {

struct SpectrumPairs {
  MassesAndTimes found;
  std::vector<double> masses_without_peak;
  masstime::AcquisitionWindow window;  // the spectrum's first to last time
};

// Reads the spectrum and seeks the peaks of the masses around the times that A and t0 of `options`
// give them. Raises an InputError for a file that can't be used.
SpectrumPairs PairsFromSpectrum(const FitOptions& options);

}  // namespace tof::cli
