#include "component/aic/point_collection.h"

#include <string>

#include "component/acquisition/store_attributes.h"
#include "component/aic/spectrum_showing.h"
#include "component/automation/number_text.h"
#include "component/trace/guarded.h"

namespace tof {
namespace {

constexpr const char* kLineEnd = "\r\n";
constexpr int kSettlePeriodsPerMass = 4;

Bounds Measurements(const PeakTable& peaks) {
  const auto& attribs = peaks(0).SpectrumAttribs;  // mass 0's range serves all masses
  return {attribs.LBound(1), attribs.UBound(1)};
}

void TakeWindow(Instrument& instrument, TraceObj& trace, double& dPeakFindTimeWindow) {
  ReplaceDefaultPeakFindWindow(instrument, dPeakFindTimeWindow);
  trace.TracePrint("dPeakFindTimeWindow = ", dPeakFindTimeWindow);
}

std::string MassAndVoltage(std::int32_t mass_index, const CalibMassPeakData& record) {
  return std::to_string(mass_index) + ", " + NumberText(record.Voltage);
}

std::string FlightTimes(const PeakTable& peaks, const Bounds& measurements) {
  std::string text;
  for (std::int32_t m = peaks.LBound(); m <= peaks.UBound(); ++m) {
    text += MassAndVoltage(m, peaks(m));
    for (std::int32_t k = measurements.lower; k <= measurements.upper; ++k) {
      text += ", " + NumberText(peaks(m).SpectrumAttribs(k, 0).time);
    }
    text += kLineEnd;
  }
  return text;
}

}  // namespace

void CollectAdditionalPointsForPurposesOfAveraging_byMass(Instrument& instrument,
                                                          HostServices& host, const RfVoltage& rf,
                                                          const Variant& expected_masses,
                                                          AicLog& aic_log, PeakTable& peaks,
                                                          double& dPeakFindTimeWindow) {
  constexpr Routine kRoutine{.name = "CollectAdditionalPointsForPurposesOfAveraging_byMass",
                             .on_error = OnError::kTraceAndRaise};
  Guarded(kRoutine, [&](TraceObj& trace) {
    TakeWindow(instrument, trace, dPeakFindTimeWindow);
    std::string flight_times;
    std::string abundances;
    for (std::int32_t m = peaks.LBound(); m <= peaks.UBound(); ++m) {
      flight_times += MassAndVoltage(m, peaks(m));
      abundances += MassAndVoltage(m, peaks(m));
      // Starts anew for every mass, so that the display is never shown here: deliberate.
      std::int32_t display_counter = 0;
      ShowSpectrumPeriodically(instrument, host, rf, aic_log, display_counter);
      rf.Write(peaks(m).Voltage);
      for (int i = 0; i < kSettlePeriodsPerMass; ++i) rf.Settle();
      // Asked for here, not before: without masses there is no mass 0 to ask.
      const Bounds measurements = Measurements(peaks);
      for (std::int32_t k = measurements.lower; k <= measurements.upper; ++k) {
        const PeakAttribsTable parsed = instrument.spec_parser->GetCalibrantPeakAttributes(
            expected_masses, dPeakFindTimeWindow);
        StoreAttributes(parsed, m, k, peaks(m));
        flight_times += ", " + NumberText(parsed(0, m).time);
        abundances += ", " + NumberText(parsed(0, m).abundance);
      }
      flight_times += kLineEnd;
      abundances += kLineEnd;
    }
    WriteToAICLog(instrument, aic_log, "");
    WriteToAICLog(instrument, aic_log, "Collecting tofs for Averaging...");
    WriteToAICLog(instrument, aic_log, "TOFs [MassIdx, OctRF voltage, tofs]");
    WriteToAICLog(instrument, aic_log, flight_times);
    WriteToAICLog(instrument, aic_log, "Abundances [MassIdx, OctRF voltage, Abundances]");
    WriteToAICLog(instrument, aic_log, abundances);
  });
}

void CollectAdditionalPointsForPurposesOfAveraging_byMeasurement(
    Instrument& instrument, HostServices& host, const RfVoltage& rf, const Variant& expected_masses,
    AicLog& aic_log, PeakTable& peaks, double& dPeakFindTimeWindow) {
  constexpr Routine kRoutine{.name = "CollectAdditionalPointsForPurposesOfAveraging_byMeasurement",
                             .on_error = OnError::kTraceAndRaise};
  Guarded(kRoutine, [&](TraceObj& trace) {
    TakeWindow(instrument, trace, dPeakFindTimeWindow);
    const Bounds measurements = Measurements(peaks);
    std::int32_t display_counter = 0;
    std::string abundances;
    for (std::int32_t k = measurements.lower; k <= measurements.upper; ++k) {
      abundances += std::to_string(k);
      for (std::int32_t m = peaks.LBound(); m <= peaks.UBound(); ++m) {
        ShowSpectrumPeriodically(instrument, host, rf, aic_log, display_counter);
        rf.Write(peaks(m).Voltage);
        rf.Settle();
        const PeakAttribsTable parsed = instrument.spec_parser->GetCalibrantPeakAttributes(
            expected_masses, dPeakFindTimeWindow);
        StoreAttributes(parsed, m, k, peaks(m));
        abundances += ", " + NumberText(parsed(0, m).abundance);
      }
      abundances += kLineEnd;
    }
    const std::string flight_times = FlightTimes(peaks, measurements);
    WriteToAICLog(instrument, aic_log, "");
    WriteToAICLog(instrument, aic_log, "Collecting additional tofs for Averaging...");
    WriteToAICLog(instrument, aic_log, "TOFs [MassIdx, OctRF voltage, TOFs]");
    WriteToAICLog(instrument, aic_log, flight_times);
    WriteToAICLog(instrument, aic_log,
                  "Abundances [MeasurementIdx, Abundances (in massIdx order)]");
    WriteToAICLog(instrument, aic_log, abundances);
  });
}

}  // namespace tof
