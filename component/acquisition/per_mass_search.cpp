#include "component/acquisition/per_mass_search.h"

#include <limits>
#include <string>

#include "component/acquisition/abundance.h"
#include "component/acquisition/store_attributes.h"
#include "component/automation/arithmetic.h"
#include "component/automation/number_text.h"

namespace tof {
namespace {

// Twice the tolerance of every other reading, deliberately: the first look at a mass.
constexpr double kFirstReadingTolerance = 0.4;
constexpr double kReadingTolerance = 0.2;
constexpr double kSearchTolerance = 0.1;
constexpr double kLinearStep = 0.1;
constexpr std::int32_t kSpectraPerAveragedAbundance = 3;
constexpr double kHalfFirmwareWindowNs = 15.0;
// As many as a ramp can have: a lower limit that is never reached must not keep the search going.
constexpr std::int32_t kMostLinearSteps = std::numeric_limits<std::int16_t>::max();

// One mass on its way to its voltage.
struct Searched {
  std::int32_t index = 0;
  double mass = 0.0;
  double setpoint_value = 0.0;
  double abundance = 0.0;
};

double ReadAbundance(Instrument& instrument, double mass, double tolerance) {
  return instrument.spec_parser->GetPeakAttribute(PeakCalculationtype::abund, mass, tolerance);
}

void TraceAndLog(const SurveyContext& context, TraceObj& trace, const std::string& line) {
  trace.TracePrint(line);
  WriteToAICLog(context.instrument, context.aic_log, line);
}

void SearchByFirmware(const SurveyContext& context, TraceObj& trace,
                      const std::shared_ptr<MassCalCoefficients>& coefficients,
                      Searched& searched) {
  Instrument& instrument = context.instrument;
  const double speed_up = CalibrationSetting(instrument, "AIC_SearchSpeedUpFactor");
  const double minimum = AIC_TargetMinAb(instrument);
  const double maximum = AIC_TargetMaxAb(instrument);
  const double expected_ns = Need(coefficients).MassToTime(searched.mass);
  searched.setpoint_value =
      Need(instrument.factory->GetFirmwareLibrary())
          .BinarySearchForTargetAb(22, ToSingle(minimum), ToSingle(maximum), ToSingle(speed_up),
                                   0.1F, 20.0F, 160.0F, 1,
                                   ToSingle(Subtract(expected_ns, kHalfFirmwareWindowNs)),
                                   ToSingle(Add(expected_ns, kHalfFirmwareWindowNs)));
  // The setpoint to apply it to is read again rather than remembered.
  const RfVoltage to_use(instrument, context.host,
                         ToInt32(CalibrationSetting(instrument, "AIC_SetpointToUse")));
  trace.TracePrint("BinarySearched; found Setpoint for mass[", searched.index,
                   "] = ", searched.setpoint_value);
  to_use.Write(searched.setpoint_value);
  to_use.Settle();
  searched.abundance = ReadAbundance(instrument, searched.mass, kReadingTolerance);
}

void SearchByParser(const SurveyContext& context, TraceObj& trace, Searched& searched) {
  Instrument& instrument = context.instrument;
  trace.TracePrint("Binary Searching Targeted Abundance...");
  instrument.spec_parser->SearchTargetAbundance(searched.mass, kSearchTolerance);
  RaiseIfAborted(instrument);
  searched.abundance = ReadAbundance(instrument, searched.mass, kReadingTolerance);
  searched.setpoint_value = context.rf.Read();
}

void AdjustLinearly(const SurveyContext& context, TraceObj& trace, const PerMassSearch& search,
                    Searched& searched) {
  Instrument& instrument = context.instrument;
  const auto measure = [&] {
    return GetAveragedPeakAbundance(instrument, searched.mass, kSpectraPerAveragedAbundance);
  };
  double value = context.rf.Read();
  std::int32_t abundance = measure();
  TraceAndLog(context, trace,
              "starting SP Value[" + NumberText(value) + "], dMassAbundance[" +
                  std::to_string(abundance) + "]");
  // The measurement below the limit is the last; a limit that is no number allows no step.
  std::int32_t steps = 0;
  while (abundance > search.max_allowable_abundance && value >= search.lower_limit) {
    if (++steps > kMostLinearSteps) Raise(RunTimeError::kOverflow);
    TraceAndLog(context, trace, "dMassAbundance = " + std::to_string(abundance));
    value = Subtract(value, kLinearStep);
    context.rf.Write(value);
    context.rf.Settle();
    abundance = measure();
    TraceAndLog(context, trace,
                "dMassAbundance[" + std::to_string(abundance) + "] ==> New SP Value[" +
                    NumberText(value) + "]");
  }
  searched.setpoint_value = value;
  searched.abundance = abundance;
}

void Search(const SurveyContext& context, TraceObj& trace, const PerMassSearch& search,
            const std::shared_ptr<MassCalCoefficients>& coefficients, Searched& searched) {
  if (FlagIs(context.instrument, "AIC_RunFastVersion", "Yes")) {
    SearchByFirmware(context, trace, coefficients, searched);
  } else {
    SearchByParser(context, trace, searched);
  }
  if (FlagIs(context.instrument, "AIC_SkipFinalLinearAbAdj", "Yes")) return;
  AdjustLinearly(context, trace, search, searched);
}

void StoreMass(const SurveyContext& context, TraceObj& trace, const PerMassSearch& search,
               const Searched& searched) {
  const PeakAttribsTable parsed = context.instrument.spec_parser->GetCalibrantPeakAttributes(
      context.data.expected_masses, search.peak_find_window);
  CalibMassPeakData& record = context.data.peaks(searched.index);
  const std::int32_t abundance = ToInt32(searched.abundance);
  StoreAttributes(parsed, searched.index, 0, record);
  record.Voltage = searched.setpoint_value;
  record.Abundance = abundance;
  // The blank behind the first bracket is deliberate.
  trace.TracePrint("Final SPValue,Ab for MassIdx[ ", searched.index, "] = [",
                   searched.setpoint_value, ", ", abundance, "]");
  trace.TracePrint("massIdx[", searched.index, "] SPValue,Ab = [", searched.setpoint_value, ", ",
                   abundance, "]");
  LogIfOutsideBand(context.instrument, context.aic_log, searched.index, record,
                   searched.abundance > search.max_allowable_abundance);
}

void FindVoltage(const SurveyContext& context, TraceObj& trace, const PerMassSearch& search,
                 const std::shared_ptr<MassCalCoefficients>& coefficients, Searched& searched) {
  Instrument& instrument = context.instrument;
  RaiseIfAborted(instrument);
  // The search of the mass before has moved the setpoint: each mass is judged at the value at
  // entry.
  context.rf.Write(search.entry_value);
  context.rf.Settle();
  trace.TracePrint("varCalibrantMasses(massIdx) = ", searched.mass);
  searched.abundance = ReadAbundance(instrument, searched.mass, kFirstReadingTolerance);
  trace.TracePrint(
      "SpecParser.GetPeakAttribute(PeakCalculationtype.abund, (varCalibrantMasses(massIdx)))[",
      searched.abundance, "] > MaxAllowableAbundance[", search.max_allowable_abundance, "]");
  if (searched.abundance > search.max_allowable_abundance) {
    Search(context, trace, search, coefficients, searched);
    return;
  }
  trace.TracePrint("else");
  // Says ">" although the abundance is not above the maximum here: deliberate.
  trace.TracePrint("Not Adjusting Ab: dMassAbundance[", searched.abundance,
                   "] > MaxAllowableAbundance[", search.max_allowable_abundance, "]");
  searched.setpoint_value = context.rf.Read();
}

}  // namespace

void SearchPerMass(const SurveyContext& context, TraceObj& trace, const PerMassSearch& search) {
  // Used by the firmware's search alone: without it, an instrument that has none is no error.
  const auto coefficients = context.instrument.acq_controller->GetCurrentMassCalObject();
  const BoundedArray<double>& masses = AsDoubleArray(context.data.expected_masses);
  for (std::int32_t m = masses.LBound(); m <= masses.UBound(); ++m) {
    Searched searched{.index = m, .mass = masses(m)};
    FindVoltage(context, trace, search, coefficients, searched);
    StoreMass(context, trace, search, searched);
  }
}

}  // namespace tof
