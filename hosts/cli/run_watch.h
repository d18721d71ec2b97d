// Watches a calibration for its report page.
#pragma once

#include <memory>
#include <string>

#include "hosts/cli/calibration_report.h"
#include "hosts/native/portable_host.h"
#include "hosts/report/observing_instrument.h"
#include "hosts/report/report_page.h"
#include "instruments/standin/instrument.h"

namespace tof::cli {

class RunWatch {
 public:
  // Begins now. The host's trace component, if it has one, keeps getting every call. Instrument and
  // host outlive the watch.
  RunWatch(standin::StandInInstrument& instrument, native::PortableHost& host);

  // What the calibrator is to work with in place of the instrument.
  InstrumentFactory& Instrument() { return observing_; }

  report::ReportPage PageOf(const CalibrationReport& report);

 private:
  standin::StandInInstrument& instrument_;
  std::string began_;
  CoefficientRecord coefficients_before_;
  std::map<std::int32_t, description::Setpoint> setpoints_before_;
  report::Observation seen_;
  std::function<report::Moment()> now_;
  std::shared_ptr<report::StageClock> stages_;
  report::ObservingInstrument observing_;
};

}  // namespace tof::cli
