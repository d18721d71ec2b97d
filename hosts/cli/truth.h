// The true errors of a calibration of the virtual instrument.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "hosts/cli/calibration_report.h"
#include "instruments/standin/instrument.h"

namespace tof::cli {

// Judges the coefficients in force by the instrument's true law, over masses that are log-spaced
// between the lightest and the heaviest of `rows`, which carry the mean time and abundance of
// `spectra` spectra of each mass. The law is that of the time in which the last `collected` spectra
// were taken. None for a recorded instrument, and when fewer than two masses were measured.
std::optional<Truth> TruthOf(const standin::StandInInstrument& instrument,
                             const std::vector<MassRow>& rows, std::int64_t spectra,
                             std::int64_t collected);

}  // namespace tof::cli
