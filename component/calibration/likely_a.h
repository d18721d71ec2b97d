// The likely A and t0: starting values for the fit, from one spectrum of which nobody knows yet
// which peak belongs to which calibrant. m = A^2 (t - t0)^2, A in square-root mass per us, t and t0
// in us.
#pragma once

#include "component/calibration/candidate_table.h"
#include "component/calibrator/instrument.h"

namespace tof {

// True when a likely A was found, or is supplied by the flags that skip the estimate; `dLikelyA`
// and `dt0` then hold the values. False otherwise; `dLikelyA` then must not be used.
// `varExpectedMasses` may be missing: the instrument's own calibrants are used. A fault shows a
// message box and answers False. Waits for the instrument to be ready, without a limit. `bSkipped`
// tells the False of the flag that switches autotune calibrations off from any other.
bool CalculateLikelyAAndt0Values(Instrument& instrument, HostServices& host, double& dLikelyA,
                                 double& dt0, const Variant& varExpectedMasses,
                                 bool* bSkipped = nullptr);

// Pairs every mass with every peak, rows grouped by mass. A fault leaves the remaining rows as they
// are; more masses or peaks than 16 bits count are one, as soon as the count passes 32,767.
void CalibrateProcedureA(Instrument& instrument, CandidateTable& Data,
                         PeakList& peakListInNanoseconds, const BoundedArray<double>& masses,
                         double dt0);
// Sorts by A, and by goodness. Faults are swallowed.
void CalibrateProcedureB(CandidateTable& Data);
void CalibrateProcedureC(CandidateTable& Data);

// Hands the likely A and t0 to the acquisition controller. Error -822 when there are none, unless
// the estimate of a manual calibration was skipped by the flag that switches autotune calibrations
// off; error 1 when an abort was requested meanwhile.
void ApplyLikelyAAt0Coefficients(Instrument& instrument, HostServices& host,
                                 bool bThisIsAManualCalibration, const Variant& varExpectedMasses);

}  // namespace tof
