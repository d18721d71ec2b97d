// Collecting the measurements of every calibrant at its chosen voltage, for averaging.
#pragma once

#include "component/aic/rf_voltage.h"
#include "component/calibrator/aic_log.h"
#include "component/calibrator/peak_records.h"

namespace tof {

// Both fill the measurements of every mass, as many as mass 0 has, and write them to the AIC log. A
// window of exactly -1 is replaced in the caller's variable. A failure is passed on: records
// already filled keep their values, the log texts are not written. The RF voltage is left at the
// last mass's.

// All measurements of a mass before the next: one voltage change a mass, four settle periods after
// it.
void CollectAdditionalPointsForPurposesOfAveraging_byMass(Instrument& instrument,
                                                          HostServices& host, const RfVoltage& rf,
                                                          const Variant& expected_masses,
                                                          AicLog& aic_log, PeakTable& peaks,
                                                          double& dPeakFindTimeWindow);

// One measurement of every mass before the next, which spreads each mass over the whole collection
// time: one voltage change and one settle period a spectrum.
void CollectAdditionalPointsForPurposesOfAveraging_byMeasurement(
    Instrument& instrument, HostServices& host, const RfVoltage& rf, const Variant& expected_masses,
    AicLog& aic_log, PeakTable& peaks, double& dPeakFindTimeWindow);

}  // namespace tof
