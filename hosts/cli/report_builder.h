// From the calibrator's answer and the instrument's state to the report.
#pragma once

#include <cstdint>

#include "hosts/cli/calibration_report.h"
#include "hosts/cli/run_outcome.h"
#include "hosts/native/portable_host.h"
#include "instruments/standin/instrument.h"

namespace tof::cli {

// Everything but `wall_seconds`.
CalibrationReport BuildReport(const RunOutcome& outcome,
                              const standin::StandInInstrument& instrument,
                              const native::PortableHost& host);

// How many spectra the averaged times are from: the last ones that were taken. An abundance-immune
// acquisition takes as many for each mass as a traditional one in all.
std::int64_t SpectraCollected(const RunOutcome& outcome, bool aic);

}  // namespace tof::cli
