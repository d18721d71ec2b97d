// The first stage of abundance-immune calibration: an RF voltage for every calibrant at which its
// abundance lies in the target band.
#pragma once

#include <cstdint>

#include "component/acquisition/averaged_times.h"
#include "component/aic/rf_voltage.h"
#include "component/calibrator/aic_log.h"

namespace tof {

// The RF voltages to search.
struct RfRange {
  double low = 0.0;
  double high = 0.0;
  double step = 0.0;
};

// What the survey reads, moves and writes.
struct SurveyContext {
  Instrument& instrument;
  HostServices& host;
  const RfVoltage& rf;
  AicLog& aic_log;
  CalibrantData& data;  // Voltage, Abundance and measurement 0 of each mass are written
};

// Stores voltage, abundance and the attributes of the first measurement of every mass: from plugged
// settings without a look at a spectrum; by a search per mass when the setpoint is 83; by a ramp
// over the range at any other. A window of exactly -1 is replaced in the caller's variable. A
// failure is passed on; values stored for earlier masses stay.
void UseFirstSpectrumToFindTimesAndVoltages(const SurveyContext& context, const RfRange& range,
                                            std::int32_t max_allowable_abundance,
                                            double& dPeakFindWindow);

}  // namespace tof
