// From the calibrator's answer and the instrument's state to the report.
#pragma once

#include "hosts/cli/calibration_report.h"
#include "hosts/cli/run_outcome.h"
#include "hosts/native/portable_host.h"
#include "instruments/standin/instrument.h"

namespace tof::cli {

// Everything but `wall_seconds`.
CalibrationReport BuildReport(const RunOutcome& outcome,
                              const standin::StandInInstrument& instrument,
                              const native::PortableHost& host);

}  // namespace tof::cli
