#include "hosts/cli/calibration_call.h"

#include <utility>

#include "component/automation/error.h"
#include "component/trace/trace.h"
#include "hosts/recording/taped_calibrator.h"

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

// `Calibrator` is the component's own or the one on a tape.
template <class Calibrator>
void Ask(Calibrator& calibrator, CalibrationCall& call, RunOutcome& outcome) {
  outcome.has_coefficients =
      calibrator.calibrateTOFMassAxis(outcome.spectra, Variant::DoubleArray(outcome.masses),
                                      outcome.averaged_times, call.suppress_aic,
                                      call.optional) != nullptr;
  outcome.peaks = calibrator.Peaks();
}

}  // namespace

RunOutcome Calibrate(CalibrationCall call, InstrumentFactory& instrument, HostServices& host,
                     recording::Tape* tape) {
  RunOutcome outcome;
  outcome.masses = std::move(call.masses);
  outcome.spectra = call.spectra;
  LastStatus events;
  const ModuleStateScope own_state;  // the trace component is that of this call's host
  try {
    if (tape != nullptr) {
      recording::TapedCalibrator calibrator(*tape, &instrument, &host, &events);
      Ask(calibrator, call, outcome);
    } else {
      TofCalibrator calibrator(instrument, host, events);
      Ask(calibrator, call, outcome);
    }
    outcome.failure = events.status();
  } catch (const AutomationError& error) {
    outcome.failure = Status{error.number(), error.description()};
  }
  return outcome;
}

}  // namespace tof::cli
