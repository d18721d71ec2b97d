// The true errors of the coefficients in force, by the names of tofcal's JSON.
#pragma once

#include <string>
#include <vector>

#include "instruments/standin/instrument.h"
#include "instruments/standin/truth.h"

namespace tof::com {

struct TruthQuestion {
  std::string figure;  // as IInstrumentControl::TrueError names it
  std::vector<standin::MeasuredMass> calibrants;
  std::int64_t spectra = 1;
  bool aic = false;
};

// In ppm. Raises error 445 for a recorded instrument, else 5 for what can't be answered.
double TrueErrorOf(const standin::StandInInstrument& instrument, const TruthQuestion& question);

}  // namespace tof::com
