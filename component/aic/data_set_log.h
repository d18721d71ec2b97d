// The data-set file of abundance-immune calibrations, for study in an outside analysis tool.
#pragma once

#include "component/calibrator/instrument.h"
#include "component/calibrator/peak_records.h"

namespace tof {

// Appends one row per mass and measurement to "\Logfiles\AbImmunecalib_SpotFireDataSetLog.csv",
// with a header line when the file is new. Never raises; rows written before a failure stay.
void WriteDataToSpotFireLog(Instrument& instrument, HostServices& host, const PeakTable& peaks);

}  // namespace tof
