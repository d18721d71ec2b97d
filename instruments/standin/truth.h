// The true errors of a calibration of the virtual instrument.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "instruments/standin/instrument.h"

namespace tof::standin {

// True errors, which only a virtual instrument knows; `common` is the mean over the masses.
struct TruthFigures {
  double rms_ppm = 0.0;
  double common_ppm = 0.0;
  double mass_dependent_ppm = 0.0;
  double max_ppm = 0.0;
};
struct Truth {
  TruthFigures at_calibration;
  TruthFigures in_band;
  TruthFigures weak;
  double limit_ppm = 0.0;  // what the ion statistics allow
};

// A calibrant as it was measured. What is not known is absent.
struct MeasuredMass {
  double expected = 0.0;                 // m/z
  std::optional<double> time_ns = {};    // the mean
  std::optional<double> abundance = {};  // likewise
};

// Judges the coefficients in force by the instrument's true law, over masses that are log-spaced
// between the lightest and the heaviest of the `measured`, which carry the mean time and abundance
// of `spectra` spectra of each mass. The law is that of the time in which the last `collected`
// spectra were taken. None for a recorded instrument, and when fewer than two masses were measured.
std::optional<Truth> TruthOf(const StandInInstrument& instrument,
                             const std::vector<MeasuredMass>& measured, std::int64_t spectra,
                             std::int64_t collected);

}  // namespace tof::standin
