// The public object of the component.
#pragma once

#include <cstdint>
#include <memory>

#include "component/calibration/driver.h"
#include "component/calibrator/instrument.h"
#include "component/calibrator/peak_records.h"

namespace tof {

// The arguments of a calibration that a caller may leave out.
struct OptionalCalibrationArguments {
  bool bOKtoFail = false;  // accepted and never read
  bool bThisIsAManualCalibration = false;
  double dTradWeighting = -1.0;       // -1: not given
  double dPeakFindTimeWindow = -1.0;  // -1: from the settings; comes back as the value used
};

// Calibrates the mass axis of a time-of-flight mass spectrometer through the collaborators that a
// factory creates. Members persist between calls: what one call measured is read by the next.
//
// One thread, the host's; a host must not call it again from a message handler while a call runs.
// Factory, host services and event sink must outlive the object.
class TofCalibrator {
 public:
  // Creates the collaborators in their fixed order and reads the settle time. A failure is raised
  // as an AutomationError; there is no object then.
  TofCalibrator(InstrumentFactory& factory, HostServices& host, StatusEvents& events);
  ~TofCalibrator();
  TofCalibrator(const TofCalibrator&) = delete;
  TofCalibrator& operator=(const TofCalibrator&) = delete;

  // Appends the data of the last abundance-immune calibration to its data-set file.
  void WriteDataToSpotFireLog();

  // A test hook: announces itself to the trace and returns.
  void TestNewStuff();

  // Averaged flight times (doubles in ns from 0, one per mass) of the calibrants, as the masses of
  // the last calibration sized the store. Empty when the measurement failed or was aborted, which
  // is reported by that alone; NaN for a mass whose peak was missing or whose average was not
  // reached. `varExpectedMasses`: one-dimensional array of m/z, any lower bound; not looked at with
  // AIC, which measures the masses of the last calibration. `dPeakFindWindow`: per cent of the
  // flight time; -1 is replaced by the settings' value, in the caller's variable.
  Variant GetAveragedTimesForCalibration(const Variant& varExpectedMasses,
                                         std::int16_t& nAvgSpectra, bool& bEnableAbImmuneCalib,
                                         double& dPeakFindWindow);
  Variant GetAveragedTimesForCalibration(const Variant& varExpectedMasses,
                                         std::int16_t& nAvgSpectra, bool& bEnableAbImmuneCalib);

  // Calibrates: see calibration/driver.h. The coefficients object now in force, or none.
  std::shared_ptr<MassCalCoefficients> calibrateTOFMassAxis(std::int16_t& nAvgSpectra,
                                                            const Variant& varExpectedMasses,
                                                            Variant& varAveragedMeasuredTimes,
                                                            bool& bSuppressAbImmuneCalib,
                                                            OptionalCalibrationArguments& optional);
  std::shared_ptr<MassCalCoefficients> calibrateTOFMassAxis(std::int16_t& nAvgSpectra,
                                                            const Variant& varExpectedMasses,
                                                            Variant& varAveragedMeasuredTimes,
                                                            bool& bSuppressAbImmuneCalib);

  // A finishing step for abundance-immune measurements, which no calibration takes by itself: moves
  // the chosen voltage of each mass below the target minimum to a better one within the step above
  // it, if `survey` saw the mass above the minimum. `stepSize`: volts between the survey's points.
  // Never raises. Not a part of the automation interface.
  void ReplaceAnyVoltagesForAbundancesBelowMinimum(const Survey& survey, double stepSize);

  // What the last acquisition knows of each mass, for a host that shows it: the voltage (chosen by
  // an abundance-immune acquisition alone, else 0) and, after a complete one, the averages.
  const PeakTable& Peaks() const { return state_.data.peaks; }

 private:
  HostServices& host_;
  StatusEvents& events_;
  Instrument instrument_;
  CalibrationState state_;
};

}  // namespace tof
