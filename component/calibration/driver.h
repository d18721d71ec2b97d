// The calibration of the mass axis, from the stored instrument state to the restored one.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "component/acquisition/averaged_times.h"
#include "component/acquisition/instrument_state.h"
#include "component/calibration/tune_setpoints.h"
#include "component/calibrator/aic_log.h"

namespace tof {

// What the caller of a calibration passes.
struct CalibrationArguments {
  std::int16_t nAvgSpectra = 0;       // spectra averaged per mass
  const Variant& varExpectedMasses;   // calibrant masses, m/z
  Variant& varAveragedMeasuredTimes;  // out: averaged flight times in ns, per mass from 0
  bool bSuppressAbImmuneCalib = false;
  bool bThisIsAManualCalibration = false;
  double dTradWeighting = -1.0;  // -1: not given
  double& dPeakFindTimeWindow;   // in and out; -1: replaced by the instrument's setting
};

// What outlives one calibration. Each part says who writes it.
struct CalibrationState {
  SavedInstrumentState instrument_state;
  SavedTuneSetpoints tune_setpoints;
  CalibrantData data;
  AicLog aic_log;
  std::int32_t oct_rf_setpoint_id = 0;  // written by the driver when it decides on AIC
};

// Where the one event of the component goes: the number and description of the error that ended a
// calibration.
class StatusEvents {
 public:
  virtual ~StatusEvents() = default;
  virtual void evtNewStatus(std::int32_t lStatus, const std::string& strMessage) = 0;
};

// Writes the stored instrument state back; with `bRecalibrate` one further calibration follows.
void RestoreInstrumentState(Instrument& instrument, HostServices& host, CalibrationState& state,
                            StatusEvents& events, bool bRecalibrate);

// The coefficients object, fitted and in force, or none. Never raises: after a failure the
// setpoints are put back, coefficients that do not verify are replaced by the defaults, and the
// event is raised with the error. None without an event when autotune calibrations are switched
// off; the instrument state stored at the start then stays as it is.
std::shared_ptr<MassCalCoefficients> calibrateTOFMassAxis(Instrument& instrument,
                                                          HostServices& host,
                                                          CalibrationState& state,
                                                          const CalibrationArguments& arguments,
                                                          StatusEvents& events);

}  // namespace tof
