#include "component/acquisition/voltage_ramp.h"

#include "component/acquisition/abundance.h"
#include "component/acquisition/store_attributes.h"
#include "component/aic/set_and_measure.h"
#include "component/automation/arithmetic.h"

namespace tof {
namespace {

// What the walk has found for a mass so far.
struct Choice {
  bool stored = false;       // an eligible reading: below the maximum
  bool has_nearest = false;  // any reading above it
};
using Choices = BoundedArray<Choice>;

Survey PlannedSurvey(const RfRange& range, std::int32_t last_mass) {
  const std::int32_t n_steps = ToInt16(Divide(Subtract(range.high, range.low), range.step));
  Survey survey(0, n_steps);
  double voltage = range.low;
  for (std::int32_t step = 0; step <= n_steps; ++step) {
    if (step != 0) voltage = Add(voltage, range.step);
    survey(step).Voltage = voltage;
    survey(step).Times.ReDim(0, last_mass);
    survey(step).Abundances.ReDim(0, last_mass);
  }
  return survey;
}

void Store(const PeakAttribsTable& parsed, std::int32_t mass_index, double voltage,
           std::int32_t abundance, CalibMassPeakData& record) {
  record.Voltage = voltage;
  record.Abundance = abundance;
  StoreAttributes(parsed, mass_index, 0, record);
}

void TraceStored(TraceObj& trace, const char* what, std::int32_t mass_index, double time_ns,
                 std::int32_t abundance) {
  trace.TracePrint(what, " mass at massIdx[", mass_index, "], time[", time_ns, "] and abundance[",
                   abundance, "]");
}

void ExamineMass(TraceObj& trace, const PeakAttribsTable& parsed, std::int32_t m, double voltage,
                 double maximum, double scalar, Choice& choice, CalibMassPeakData& record) {
  const double time_ns = parsed(0, m).time;
  const std::int32_t abundance = ToInt32(parsed(0, m).abundance);
  if (!(abundance < Multiply(maximum, scalar))) {
    // Kept in case no step is eligible, so that no mass is measured at 0 V.
    const bool nearer = !choice.has_nearest || abundance < record.Abundance;
    if (!choice.stored && nearer) Store(parsed, m, voltage, abundance, record);
    choice.has_nearest = true;
    return;
  }
  if (!choice.stored) {
    choice.stored = true;
    Store(parsed, m, voltage, abundance, record);
    TraceStored(trace, "Storing", m, time_ns, abundance);
  } else if (Multiply(abundance, scalar) > record.Abundance) {
    // The scaled reading against the stored, unscaled one: deliberate.
    Store(parsed, m, voltage, abundance, record);
    TraceStored(trace, "Storing BETTER", m, time_ns, abundance);
  }
}

}  // namespace

void RampVoltage(const SurveyContext& context, TraceObj& trace, const RfRange& range,
                 std::int32_t max_allowable_abundance, double peak_find_window) {
  Instrument& instrument = context.instrument;
  CalibrantData& data = context.data;
  const std::int32_t last_mass = AsDoubleArray(data.expected_masses).UBound();
  Survey survey = PlannedSurvey(range, last_mass);
  SetTheseVoltagesAndGetTimesAndAbundances(instrument, context.host, context.rf,
                                           data.expected_masses, context.aic_log, survey);
  WriteToAICLog(instrument, context.aic_log, "");
  trace.TracePrint("Seeking target values...");
  Choices choices(0, last_mass);
  for (std::int32_t step = survey.LBound(); step <= survey.UBound(); ++step) {
    const double voltage = survey(step).Voltage;
    trace.TracePrint("RampStepIdx, Voltage = ", step, ", ", voltage);
    RaiseIfAborted(instrument);
    context.rf.Write(voltage);
    context.rf.Settle();
    const PeakAttribsTable parsed =
        instrument.spec_parser->GetCalibrantPeakAttributes(data.expected_masses, peak_find_window);
    for (std::int32_t m = 0; m <= last_mass; ++m) {
      ExamineMass(trace, parsed, m, voltage, max_allowable_abundance, data.ab_scalars(m),
                  choices(m), data.peaks(m));
    }
  }
  for (std::int32_t m = 0; m <= last_mass; ++m) {
    LogIfOutsideBand(instrument, context.aic_log, m, data.peaks(m), !choices(m).stored);
  }
}

}  // namespace tof
