// What a fault, or an abort, in a whole abundance-immune calibration must leave behind.
//
// A fault ends the routine that it hits and every routine around it, up to one that keeps errors to
// itself; behind that one the run goes on. Nothing that AIC has changed on the way is put back: the
// RF voltage, the display and the AIC log stay as the last call that worked has left them, and the
// end of AIC is not announced. That is deliberate: the operator sees where it stopped.
#pragma once

#include <string_view>

namespace tof::fakes::aic_fault_table {

enum class Ends {
  // Passed on to the routine around it.
  kNothingItself,
  // Swallowed, and the calibration does without: its result is as if nothing had happened.
  kItself,
  // Swallowed; the flight time of a mass that is not averaged is not a number, which the fit
  // refuses
  // with error 5. Behind the last average it costs nothing.
  kTheAveraging,
  // Swallowed, with a message box; no likely A is error -822.
  kTheEstimate,
  // Swallowed; no times have no bounds: error 13 in the driver, or the abort that it asks for.
  kTheAcquisition,
  // The calibration, with the event of this very error.
  kTheCalibration,
};

struct RoutineRow {
  std::string_view routine;
  Ends ends;
  std::string_view reason;
};

using enum Ends;

inline constexpr RoutineRow kRows[] = {
    {"calibrateTOFMassAxis", kTheCalibration, "its failure path restores and reports"},
    {"ApplyLikelyAAt0Coefficients", kNothingItself, "no calibration without starting values"},
    {"CalculateLikelyAAndt0Values", kTheEstimate, "answers that there is none"},
    {"TraceDumpCoefficients", kNothingItself, "the calibration log is not optional"},
    {"EnsureProperInstrumentStateForCalibration", kItself, "a correction is left out"},
    {"GetAveragedTimesForCalibration", kTheAcquisition, "an acquisition answers Empty"},
    {"GetTimeSpannedCalibrantPeakTimes", kTheAcquisition, "an acquisition answers Empty"},
    {"InitializeTimesArray", kNothingItself, "no store, no acquisition"},
    {"ReadAbundanceScalarsFromXML", kNothingItself, "no profile, no survey"},
    {"UseFirstSpectrumToFindTimesAndVoltages", kNothingItself, "no voltages, no collection"},
    {"GetAveragedPeakAbundance", kNothingItself, "the adjustment cannot go on"},
    {"SetTheseVoltagesAndGetTimesAndAbundances", kItself,
     "the survey is for the log; the walk chooses"},
    {"RandomizeThisArray", kItself, "whatever the order, each step is visited once"},
    {"ShowSpectrum", kItself, "showing is a courtesy"},
    {"CollectAdditionalPointsForPurposesOfAveraging_byMass", kNothingItself,
     "a point that is missing would be averaged"},
    {"CollectAdditionalPointsForPurposesOfAveraging_byMeasurement", kNothingItself,
     "a point that is missing would be averaged"},
    {"AverageThePeakAttributes", kTheAveraging, "averages and tune report"},
    {"WriteDataToSpotFireLog", kItself, "the data set never costs a calibration"},
    {"WriteCalibrationLoggingInfo", kNothingItself, "the data log is not optional"},
};

}  // namespace tof::fakes::aic_fault_table
