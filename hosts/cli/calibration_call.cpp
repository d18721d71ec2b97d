#include "hosts/cli/calibration_call.h"

#include <utility>

#include "component/automation/error.h"
#include "component/trace/trace.h"

namespace tof::cli {
namespace {

class LastStatus : public StatusEvents {
 public:
  void evtNewStatus(std::int32_t lStatus, const std::string& strMessage) override {
    status_ = Status{lStatus, strMessage};
  }
  const std::optional<Status>& status() const { return status_; }

 private:
  std::optional<Status> status_;
};

}  // namespace

RunOutcome Calibrate(CalibrationCall call, InstrumentFactory& instrument, HostServices& host) {
  RunOutcome outcome;
  outcome.masses = std::move(call.masses);
  outcome.spectra = call.spectra;
  LastStatus events;
  const ModuleStateScope own_state;  // the trace component is that of this call's host
  try {
    TofCalibrator calibrator(instrument, host, events);
    outcome.has_coefficients =
        calibrator.calibrateTOFMassAxis(outcome.spectra, Variant::DoubleArray(outcome.masses),
                                        outcome.averaged_times, call.suppress_aic,
                                        call.optional) != nullptr;
    outcome.failure = events.status();
    outcome.peaks = calibrator.Peaks();
  } catch (const AutomationError& error) {
    outcome.failure = Status{error.number(), error.description()};
  }
  return outcome;
}

}  // namespace tof::cli
