#include "component/aic/set_and_measure.h"

#include <cmath>
#include <random>
#include <string>
#include <utility>

#include "component/aic/spectrum_showing.h"
#include "component/automation/number_text.h"
#include "component/trace/guarded.h"

namespace tof {
namespace {

using VisitingOrder = BoundedArray<std::int32_t>;

constexpr double kParsersOwnWindow = -1.0;

VisitingOrder AscendingOrder(const Survey& survey) {
  VisitingOrder order(0, survey.UBound());
  for (std::int32_t i = survey.LBound(); i <= survey.UBound(); ++i) order(i) = i;
  return order;
}

// The extra ", " before the first element is deliberate.
std::string Listed(const char* label, const VisitingOrder& order) {
  std::string text = label;
  for (const std::int32_t index : order) text += ", " + std::to_string(index);
  return text;
}

// Fills the point and answers its line for the log.
std::string MeasurePoint(Instrument& instrument, TraceObj& trace, const Variant& expected_masses,
                         VoltageSurveyPoint& point) {
  const PeakAttribsTable parsed =
      instrument.spec_parser->GetCalibrantPeakAttributes(expected_masses, kParsersOwnWindow);
  std::string line = NumberText(point.Voltage);
  for (std::int32_t m = parsed.LBound(2); m <= parsed.UBound(2); ++m) {
    trace.TracePrint("massIdx = ", m);
    point.Times(m) = parsed(0, m).time;
    point.Abundances(m) = ToInt32(parsed(0, m).abundance);
    line += ", [" + NumberText(point.Times(m)) + ", " + std::to_string(point.Abundances(m)) + "]";
  }
  return line;
}

// Uniform in [0, 1), single precision: the upper 24 bits of the generator.
float UniformSingle(std::mt19937& generator) {
  return static_cast<float>(generator() >> 8) * 0x1p-24F;
}

}  // namespace

void SetTheseVoltagesAndGetTimesAndAbundances(Instrument& instrument, HostServices& host,
                                              const RfVoltage& rf, const Variant& expected_masses,
                                              AicLog& aic_log, Survey& survey) {
  constexpr Routine kRoutine{.name = "SetTheseVoltagesAndGetTimesAndAbundances",
                             .on_error = OnError::kSwallow};
  Guarded(kRoutine, [&](TraceObj& trace) {
    VisitingOrder order = AscendingOrder(survey);
    WriteToAICLog(instrument, aic_log, "");
    const std::string original = Listed("Original Idx Array: ", order);
    if (FlagIs(instrument, "ObfuscateCalibAlg", "2")) {
      WriteToAICLog(instrument, aic_log, original);
      RandomizeThisArray(host, order);
      WriteToAICLog(instrument, aic_log, Listed("Randomized Array: ", order));
    }
    WriteToAICLog(instrument, aic_log, "");
    WriteToAICLog(instrument, aic_log, "Survey: Voltage, [Time, Abundance]s ");
    std::int32_t display_counter = 0;
    for (const std::int32_t i : order) {
      ShowSpectrumPeriodically(instrument, host, rf, aic_log, display_counter);
      rf.Write(survey(i).Voltage);
      rf.Settle();
      WriteToAICLog(instrument, aic_log,
                    MeasurePoint(instrument, trace, expected_masses, survey(i)));
    }
  });
}

void RandomizeThisArray(HostServices& host, BoundedArray<std::int32_t>& values) {
  constexpr Routine kRoutine{.name = "RandomizeThisArray", .on_error = OnError::kSwallow};
  Guarded(kRoutine, [&](TraceObj&) {
    std::mt19937 generator(host.RandomSeed());
    const std::int32_t lo = values.LBound();
    const std::int32_t hi = values.UBound();
    const double n = double{1} + hi - lo;
    for (std::int32_t i = lo; i <= hi; ++i) {
      const auto j = static_cast<std::int32_t>(std::floor(UniformSingle(generator) * n + lo));
      std::swap(values(i), values(j));
    }
  });
}

}  // namespace tof
