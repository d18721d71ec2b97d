#include "component/calibration/likely_a.h"

#include <cmath>
#include <limits>
#include <string>

#include "component/automation/arithmetic.h"
#include "component/automation/convert.h"
#include "component/automation/number_text.h"
#include "component/calibration/peak_lists.h"
#include "component/trace/guarded.h"

namespace tof {
namespace {

constexpr std::int32_t kReadyPollMs = 1000;
constexpr std::int32_t kFewestPeaks = 3;
constexpr std::int16_t kFewestCandidates = 3;
constexpr std::int32_t kRunning = 2;

// Counting with 16 bits: error 6 beyond 32,767.
std::int16_t Next(std::int32_t counter) {
  return ToInt16(counter + 1.0);
}

// What a pass over the candidates accepted.
struct Accepted {
  double sum_of_a = 0.0;
  std::int16_t count = 0;
  std::string listing;  // for the trace, built only while it is on

  void Accept(double a) {
    sum_of_a = Add(sum_of_a, a);
    count = Next(count);
  }
};

bool CalibrationIsSkipped(Instrument& instrument, TraceObj& trace) {
  if (!FlagIs(instrument, "SkipTOFCalibrationDuringAutotunes", "Yes")) return false;
  trace.TracePrint("Skipping Calibration based on XML flag being set");
  return true;
}

void SetScintillatorToZero(Instrument& instrument, TraceObj& trace) {
  if (EqualsNumber(ReadSetpoint(instrument, setpoint::kScintillator), 0)) return;
  trace.TracePrint("Scint NOT not TTI mode; setting scint=0");
  WriteSetpoint(instrument, setpoint::kScintillator, ValueType::kDouble, Variant(0.0));
}

Variant ReadStatus(Instrument& instrument, const std::string& name) {
  return Need(instrument.data_dictionary->GetStatusReader()).Read(name, "VARIANT", 0);
}

// Deliberately without a limit and without an abort test: only the instrument ends this wait.
void WaitForReadyInstrument(Instrument& instrument, HostServices& host, TraceObj& trace) {
  Variant ready;
  Variant run_state;
  const auto read_and_trace = [&](const char* when) {
    ready = ReadStatus(instrument, "ACTUAL.NDR[NRDYSTATE]");
    run_state = ReadStatus(instrument, "REG[ACTUAL].OBJ[1].NDR[RUNSTATE]");
    trace.TracePrint(when, " While: NReady[", ready, "], RunState[", run_state, "]");
  };
  read_and_trace("Before");
  // Ready is any value that is not negative, not 0 alone.
  while (ToDouble(ready) < 0 || !EqualsNumber(run_state, kRunning)) {
    host.Sleep(kReadyPollMs);
    read_and_trace("In");
  }
}

std::int32_t NumberOfPeaksSought(Instrument& instrument, const BoundedArray<double>& masses) {
  if (FlagIs(instrument, "CalcLikelyA_OverrideNumPeaksSought", "Yes")) {
    return ToInt32(CalibrationSetting(instrument, "CalcLikelyA_NumPeaksSought"));
  }
  return masses.UBound() + 3;
}

void TraceMasses(TraceObj& trace, const BoundedArray<double>& masses) {
  trace.TracePrint("Calibrant Masses...");
  for (std::int32_t i = masses.LBound(); i <= masses.UBound(); ++i) {
    trace.TracePrint("Calibrant[", i, "] = ", masses(i));
  }
}

void TracePeaks(TraceObj& trace, PeakList& peaks) {
  trace.TracePrint("Dumping peaklist...");
  const std::int32_t n_peaks = peaks.Count();
  for (std::int32_t i = 0; i < n_peaks; ++i) {
    const PeakRecord peak = peaks.GetRecord(i);
    trace.TracePrint("Peak[", i, "]: Mass, Height[", peak.position, ", ", peak.height, "]");
  }
}

void AppendToListing(const TraceObj& trace, Accepted& accepted, const char* mark,
                     const Candidate& row) {
  if (!trace.IsOn()) return;
  accepted.listing += std::string("\r\n") + mark + " AssumedMass[" + NumberText(row.assumed_mass) +
                      "], Time[" + NumberText(row.time_ns) + "], A[" + NumberText(row.a) +
                      "], Goodness[" + NumberText(row.goodness) + "]";
}

// Accepts rows whose A is near that of the coefficients in force. The number of peaks, not of rows,
// bounds the pass, and row 0 is never read: both deliberate.
Accepted FirstPass(TraceObj& trace, const CandidateTable& Data, std::int32_t n_peaks,
                   double dTargetA, double dAllowablePercentError) {
  Accepted accepted;
  accepted.listing = "Top candidates:LBound(Data, 1)[" + std::to_string(Data.LBound()) +
                     "]; UBound(Data, 1)[" + std::to_string(Data.UBound()) +
                     "]; peakListInNanoseconds.PeakCount[" + std::to_string(n_peaks) + "]\r\n";
  for (std::int32_t idx = Data.LBound() + 1; idx <= n_peaks - 1; ++idx) {
    const Candidate& row = Data(idx);
    trace.TracePrint(
        "Abs(dTargetA - Data(idx, A)) < Abs(dTargetA * dAllowablePercentError) ==> Abs(", dTargetA,
        " - ", row.a, ") < Abs(", dTargetA, " * ", dAllowablePercentError, ")");
    const bool near = std::fabs(Subtract(dTargetA, row.a)) <
                      std::fabs(Multiply(dTargetA, dAllowablePercentError));
    AppendToListing(trace, accepted, near ? "[x]" : "[ ]", row);
    if (near) accepted.Accept(row.a);
  }
  trace.TracePrint(accepted.listing);
  return accepted;
}

// Accepts rows that agree with the two behind them, among the ten of the densest cluster. A table
// with fewer than 13 rows is a subscript error: deliberate, it ends the estimate.
Accepted LoosenedPass(TraceObj& trace, const CandidateTable& Data, double dAllowablePercentError) {
  constexpr std::int32_t kRows = 10;
  constexpr double kLoosening = 1.5;
  Accepted accepted;
  for (std::int32_t idx = Data.LBound() + 1; idx <= Data.LBound() + kRows; ++idx) {
    const Candidate& row = Data(idx);
    const double mean3 = Add(Add(row.a, Data(idx + 1).a), Data(idx + 2).a) / 3.0;
    const double tolerance = Multiply(Multiply(dAllowablePercentError, kLoosening), row.a);
    const bool near = std::fabs(Subtract(row.a, mean3)) < std::fabs(tolerance);
    // No blank between the brackets here, unlike the first pass.
    AppendToListing(trace, accepted, near ? "[x]" : "[]", row);
    if (near) accepted.Accept(row.a);
  }
  trace.TracePrint(accepted.listing);
  return accepted;
}

// The mean A of the accepted candidates. False when they are too few or too far from the A in
// force.
bool AverageCandidates(Instrument& instrument, TraceObj& trace, const CandidateTable& Data,
                       std::int32_t n_peaks, double& dLikelyA) {
  const double dTargetA = Multiply(instrument.acq_controller->GetCurrentA(), 1000.0);
  trace.TracePrint("dTargetA = ", dTargetA);
  const double dAllowablePercentError =
      CalibrationSetting(instrument, "TargetAPercentError" + FpsSuffix(instrument));

  Accepted accepted = FirstPass(trace, Data, n_peaks, dTargetA, dAllowablePercentError);
  if (accepted.count < kFewestCandidates) {
    trace.TracePrint("3 likely candidates not found; loosening criteria...");
    accepted = LoosenedPass(trace, Data, dAllowablePercentError);
  }
  dLikelyA = accepted.sum_of_a;
  if (accepted.count < kFewestCandidates) return false;
  dLikelyA /= accepted.count;
  const double distance = Divide(std::fabs(Subtract(dTargetA, dLikelyA)), dTargetA);
  return !(Multiply(2, dAllowablePercentError) < distance);
}

bool EstimateLikelyA(Instrument& instrument, TraceObj& trace, double& dLikelyA, double dt0,
                     const BoundedArray<double>& masses, std::int32_t nNumPeaksSought) {
  std::shared_ptr<PeakList> peakListInNanoseconds;
  std::shared_ptr<PeakList> peakList;
  GetPeakListsForLikelyACalculation(instrument, peakListInNanoseconds, peakList, nNumPeaksSought,
                                    masses);
  if (Need(peakList).Count() < kFewestPeaks) {
    trace.TracePrint("Peakfinder found less than 3 peaks in the spectrum; returning...");
    return false;
  }
  const std::int32_t n_peaks = Need(peakListInNanoseconds).Count();
  CandidateTable Data = DimensionCandidates(masses.UBound() + 1, n_peaks);
  trace.TracePrint("Initialization complete");
  if (n_peaks != 0) TracePeaks(trace, *peakList);
  trace.TracePrint("Moving on...");

  CalibrateProcedureA(instrument, Data, *peakListInNanoseconds, masses, dt0);
  CalibrateProcedureB(Data);
  FillGoodness(Data);
  CalibrateProcedureC(Data);
  return AverageCandidates(instrument, trace, Data, n_peaks, dLikelyA);
}

Routine PairingStep(std::string_view name) {
  return {.name = name, .on_error = OnError::kSwallow, .error_line = ErrorLine::kNameFirst};
}

bool LikelyAAndT0(Instrument& instrument, HostServices& host, TraceObj& trace, double& dLikelyA,
                  double& dt0, const Variant& varExpectedMasses, bool& skipped) {
  SetScintillatorToZero(instrument, trace);
  const bool missing = varExpectedMasses.As<Variant::Missing>() != nullptr;
  const BoundedArray<double> masses =
      missing ? InstrumentCalibrantMasses(instrument) : MassesFromCaller(varExpectedMasses);
  skipped = CalibrationIsSkipped(instrument, trace);
  if (skipped) return false;
  if (FlagIs(instrument, "SkipCalcLikelyABeforeCalibration", "Yes")) {
    trace.TracePrint("Skipping LikelyA based on XML flag being set");
    dLikelyA = TextToDouble(Flag(instrument, "SkipCalcLikelyABeforeCalibration_LikelyA"));
    dt0 = TextToDouble(Flag(instrument, "SkipCalcLikelyABeforeCalibration_t0"));
    return true;
  }
  const std::int32_t nNumPeaksSought = NumberOfPeaksSought(instrument, masses);
  WaitForReadyInstrument(instrument, host, trace);
  TraceMasses(trace, masses);
  dt0 = TextToDouble(Flag(instrument, "Calibration_t0ToUseToStartLookingforA_usec"));
  const double start_ns = instrument.data_dictionary->GetAcqStartTime() * 1000.0;
  const double end_ns = instrument.data_dictionary->GetAcqEndTime() * 1000.0;
  trace.TracePrint("PeakFindin between dSearchStartTimeInNS[", start_ns, "], dSearchEndTimeInNS[",
                   end_ns, "]");
  if (!EstimateLikelyA(instrument, trace, dLikelyA, dt0, masses, nNumPeaksSought)) return false;
  trace.TracePrint("LikelyA[", dLikelyA, "], t0[", dt0, "]");
  trace.TracePrint("Successful: LikelyA[", dLikelyA, "], t0[", dt0, "]");
  return true;
}

}  // namespace

bool CalculateLikelyAAndt0Values(Instrument& instrument, HostServices& host, double& dLikelyA,
                                 double& dt0, const Variant& varExpectedMasses, bool* bSkipped) {
  constexpr Routine kRoutine{.name = "CalculateLikelyAAndt0Values",
                             .on_error = OnError::kSwallow,
                             .error_line = ErrorLine::kNameFirst,
                             .level = 2,
                             .name_in_error_line = "CalculateLIkelyAAndt0Values"};
  bool skipped = false;
  const bool found = Guarded(
      kRoutine,
      [&](TraceObj& trace) {
        return LikelyAAndT0(instrument, host, trace, dLikelyA, dt0, varExpectedMasses, skipped);
      },
      [&](const AutomationError&, TraceObj&) { host.ShowMessageBox("Error"); });
  if (bSkipped != nullptr) *bSkipped = skipped;
  return found;
}

void CalibrateProcedureA(Instrument& instrument, CandidateTable& Data,
                         PeakList& peakListInNanoseconds, const BoundedArray<double>& masses,
                         double dt0) {
  Guarded(PairingStep("CalibrateProcedureA"), [&](TraceObj& trace) {
    if (CalibrationIsSkipped(instrument, trace)) return;
    const std::int32_t n_peaks = peakListInNanoseconds.Count();
    std::int32_t row = 0;
    // Masses and peaks are counted with 16 bits. What was paired before a counter passes 32,767
    // stays.
    for (std::int32_t m = masses.LBound(); m <= masses.UBound(); m = Next(m)) {
      for (std::int32_t p = 0; p < n_peaks; p = Next(p)) {
        const double time_ns = peakListInNanoseconds.GetRecord(p).position;
        const double flight_us = Subtract(time_ns / 1000.0, dt0);
        Candidate& candidate = Data(row);
        candidate.assumed_mass = masses(m);
        candidate.time_ns = time_ns;
        candidate.a = SquareRoot(Divide(masses(m), Multiply(flight_us, flight_us)));
        ++row;
      }
    }
  });
}

void CalibrateProcedureB(CandidateTable& Data) {
  Guarded(PairingStep("CalibrateProcedureB"), [&](TraceObj&) { SortByA(Data); });
}

void CalibrateProcedureC(CandidateTable& Data) {
  Guarded(PairingStep("CalibrateProcedureC"), [&](TraceObj&) { SortByGoodness(Data); });
}

void ApplyLikelyAAt0Coefficients(Instrument& instrument, HostServices& host,
                                 bool bThisIsAManualCalibration, const Variant& varExpectedMasses) {
  constexpr Routine kRoutine{.name = "ApplyLikelyAAt0Coefficients",
                             .on_error = OnError::kTraceAndRaise};
  Guarded(kRoutine, [&](TraceObj&) {
    double dLikelyA = 0.0;
    double dt0 = 0.0;
    bool skipped = false;
    if (CalculateLikelyAAndt0Values(instrument, host, dLikelyA, dt0, varExpectedMasses, &skipped)) {
      instrument.acq_controller->SetLikelyAAndT0(dLikelyA, dt0);
    } else if (!(bThisIsAManualCalibration && skipped)) {
      throw AutomationError(-822, "Failed to find a Likely A and t0 value", "calibrateTOFMassAxis");
    }
    // In a manual calibration under the flag that skips autotune calibrations the estimate is
    // skipped: the run goes on from the coefficients in force.
    RaiseIfAborted(instrument);
  });
}

}  // namespace tof
