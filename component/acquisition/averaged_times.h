// Averaged flight times of the calibrant peaks.
#pragma once

#include <cstdint>

#include "component/calibrator/aic_log.h"
#include "component/calibrator/peak_records.h"

namespace tof {

// What a calibration knows of its calibrants.
// Lives: with the object; what one call measured is read by the next.
struct CalibrantData {
  Variant expected_masses;  // doubles from 0; Empty until the driver stores them
  PeakTable peaks;
  MeasuredTimes measured_times;
  BoundedArray<double> ab_scalars;  // per mass of the instrument's calibrant list; AIC alone
};

// Averaged flight times (ns) of `varExpectedMasses`, one per mass from 0; Empty when the
// measurement failed or was aborted, with what was measured until then left in `data`. NaN for a
// mass whose peak was missing or whose average was not reached because the averaging was
// interrupted; without any spectra the times are the zeros of the store. The traditional path takes
// one spectrum that is not stored, then `nAvgSpectra` at the instrument's present settings; AIC
// hands over to GetTimeSpannedCalibrantPeakTimes, which measures the expected masses: the argument
// is then not looked at. A window of exactly -1 is replaced in the caller's variable.
Variant GetAveragedTimesForCalibration(Instrument& instrument, HostServices& host,
                                       std::int32_t oct_rf_setpoint_id, AicLog& aic_log,
                                       CalibrantData& data, const Variant& varExpectedMasses,
                                       std::int16_t nAvgSpectra, bool bEnableAbImmuneCalib,
                                       double& dPeakFindWindow);

}  // namespace tof
