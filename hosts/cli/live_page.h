// The report page of a calibration that was watched.
#pragma once

#include <cstdint>
#include <map>

#include "hosts/cli/calibration_report.h"
#include "hosts/report/observation.h"
#include "hosts/report/report_page.h"
#include "instruments/standin/instrument.h"

namespace tof::cli {

// What was seen of a run, and what the instrument was before it.
struct Watched {
  const report::Observation& seen;
  const CoefficientRecord& coefficients_before;
  const std::map<std::int32_t, description::Setpoint>& setpoints_before;
};

// Everything but the moment. `instrument` is as the run left it.
report::ReportPage LivePageOf(const CalibrationReport& report, const Watched& watched,
                              const standin::StandInInstrument& instrument);

// The setpoint whose voltage an abundance-immune calibration moves.
std::int32_t MovedSetpointOf(const standin::InstrumentState& state);

}  // namespace tof::cli
