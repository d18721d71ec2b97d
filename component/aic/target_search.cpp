#include "component/aic/target_search.h"

#include <string>

#include "component/automation/arithmetic.h"
#include "component/automation/number_text.h"
#include "component/trace/guarded.h"

namespace tof {
namespace {

constexpr double kParsersOwnWindow = -1.0;
constexpr double kAllowanceAboveMaximum = 1.1;  // used in this search only

using AbundanceByVolt = BoundedArray<std::int32_t>;

void MeasureVolts(const TargetSearch& search, TraceObj& trace, std::int32_t massIdx,
                  std::int32_t first_volt, AbundanceByVolt& abundances) {
  // Counted in 64 bits, as the last volt may be the last 32-bit number.
  for (std::int64_t v = first_volt; v <= abundances.UBound(); ++v) {
    const auto volt = static_cast<std::int32_t>(v);
    trace.TracePrint("4");
    search.rf.Write(volt);
    trace.TracePrint("5");
    search.rf.Settle();
    trace.TracePrint("6");
    const PeakAttribsTable parsed = search.instrument.spec_parser->GetCalibrantPeakAttributes(
        search.expected_masses, kParsersOwnWindow);
    search.host.ProcessPendingMessages();
    trace.TracePrint("7");
    abundances(volt) = ToInt32(parsed(0, massIdx).abundance);
    trace.TracePrint("8");
    WriteToAICLog(
        search.instrument, search.aic_log,
        "RF voltage, Ab: " + std::to_string(volt) + ", " + std::to_string(abundances(volt)));
    trace.TracePrint("9");
  }
}

void ChooseVolt(const TargetSearch& search, TraceObj& trace, std::int32_t massIdx,
                const AbundanceByVolt& abundances, CalibMassPeakData& record) {
  for (std::int64_t v = abundances.LBound(); v <= abundances.UBound(); ++v) {
    const auto volt = static_cast<std::int32_t>(v);
    const std::int32_t abundance = abundances(volt);
    trace.TracePrint("arrAbundances(lVoltage) = ", abundance);
    const double ceiling =
        Multiply(Multiply(AIC_TargetMaxAb(search.instrument), search.ab_scalars(massIdx)),
                 kAllowanceAboveMaximum);
    if (abundance > record.Abundance && abundance <= ceiling) {
      trace.TracePrint(">>arrAbundances(lVoltage) > existing; replacing with ==> ", abundance);
      record.Voltage = volt;
      record.Abundance = abundance;
    }
  }
}

std::string Pair(double voltage, std::int32_t abundance) {
  return "[" + NumberText(voltage) + ", " + std::to_string(abundance) + "]";
}

std::string Outcome(std::int32_t massIdx, double old_voltage, std::int32_t old_abundance,
                    const CalibMassPeakData& record) {
  if (record.Voltage == old_voltage) {
    return "No replacement for mass[" + std::to_string(massIdx) + "]";
  }
  return "for mass[" + std::to_string(massIdx) +
         "], we replaced [voltage,ab]=" + Pair(old_voltage, old_abundance) + " with " +
         Pair(record.Voltage, record.Abundance);
}

}  // namespace

void FindRFVoltageCloserToTargetAbundance(const TargetSearch& search, PeakTable& peaks,
                                          std::int32_t massIdx, double stepSize) {
  constexpr Routine kRoutine{.name = "FindRFVoltageCloserToTargetAbundance",
                             .on_error = OnError::kSwallow,
                             .error_line = ErrorLine::kNumberOnly};
  Guarded(kRoutine, [&](TraceObj& trace) {
    // Not used further; a negative step ends the search here.
    ToInt32(SquareRoot(stepSize));
    trace.TracePrint("1");
    CalibMassPeakData& record = peaks(massIdx);
    const double end = Subtract(Add(record.Voltage, stepSize), 1);
    // Two blanks before the first equals sign: deliberate.
    trace.TracePrint("m_PeakAttribsOfCalibMassesAtTargetVoltages(massIdx).Voltage  = ",
                     record.Voltage);
    trace.TracePrint(
        "m_PeakAttribsOfCalibMassesAtTargetVoltages(massIdx).Voltage + stepSize - 1 = ", end);
    AbundanceByVolt abundances(ToInt32(record.Voltage), ToInt32(end));
    trace.TracePrint("2");
    abundances(abundances.LBound()) = record.Abundance;
    trace.TracePrint("3");
    MeasureVolts(search, trace, massIdx, ToInt32(Add(record.Voltage, 1)), abundances);
    trace.TracePrint("10");
    const double old_voltage = record.Voltage;
    const std::int32_t old_abundance = record.Abundance;
    trace.TracePrint("LBound(arrAbundances), UBound(arrAbundances) = ", abundances.LBound(), ", ",
                     abundances.UBound());
    ChooseVolt(search, trace, massIdx, abundances, record);
    WriteToAICLog(search.instrument, search.aic_log,
                  Outcome(massIdx, old_voltage, old_abundance, record));
    trace.TracePrint("11");
  });
}

bool bThisMassHasHadAnAbundanceAboveTheMin(Instrument& instrument, AicLog& aic_log,
                                           const Survey& survey, std::int32_t massIdx) {
  constexpr Routine kRoutine{.name = "bThisMassHasHadAnAbundanceAboveTheMin",
                             .on_error = OnError::kSwallow,
                             .error_line = ErrorLine::kNumberOnly};
  return Guarded(kRoutine, [&](TraceObj&) {
    bool found = false;
    for (std::int32_t i = survey.UBound(); i >= survey.LBound() && !found; --i) {
      // The minimum is not scaled here, deliberately.
      const double minimum = AIC_TargetMinAb(instrument);
      found = survey(i).Abundances(massIdx) >= minimum;
    }
    const std::string mass = "mass[" + std::to_string(massIdx) + "]";
    WriteToAICLog(instrument, aic_log,
                  mass + (found ? " has had an abundance above the min, so let's go search for a "
                                  "better abundance"
                                : " has never had an abundance above the min, so we won't search "
                                  "for a better abundance"));
    return found;
  });
}

}  // namespace tof
