#include "hosts/cli/report_builder.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "component/automation/convert.h"
#include "hosts/cli/coefficient_names.h"
#include "instruments/masstime/fit.h"
#include "instruments/standin/instrument_access.h"

namespace tof::cli {
namespace {

// Nothing but settle waits sleeps for this time.
constexpr std::int32_t kSettleSliceMilliseconds = 400;

// In the order of the masses; empty where nothing was measured.
BoundedArray<double> TimesOf(const Variant& averaged_times) {
  if (const auto* const doubles = averaged_times.As<Variant::DoubleArray>()) return *doubles;
  BoundedArray<double> times(std::vector<double>{});
  if (const auto* const variants = averaged_times.As<Variant::Array>()) {
    times.ReDim(variants->LBound(), variants->UBound(), IfEmpty::kIsAllowed);
    std::transform(variants->begin(), variants->end(), times.begin(),
                   [](const Variant& time) { return ToDouble(time); });
  }
  return times;
}

// None for a mass without a peak, whose time is NaN.
std::optional<double> TimeAt(const BoundedArray<double>& times_ns, std::int32_t index) {
  if (index > times_ns.UBound() || !std::isfinite(times_ns(index))) return std::nullopt;
  return times_ns(index);
}

// Judged as the calibrator does, by the reading that it chose the voltage by.
std::optional<BandSide> OutsideOf(const standin::AbundanceBand& band, std::int32_t abundance) {
  if (abundance < band.minimum) return BandSide::kBelow;
  if (abundance > ToInt32(band.maximum)) return BandSide::kAbove;
  return std::nullopt;
}

// The voltages are those of an abundance-immune acquisition.
std::vector<MassRow> RowsOf(const RunOutcome& outcome, bool aic,
                            const standin::AbundanceBand& band) {
  const BoundedArray<double> times_ns = TimesOf(outcome.averaged_times);
  std::vector<MassRow> rows;
  for (const double mass : outcome.masses) {
    const auto index = static_cast<std::int32_t>(rows.size());
    MassRow row;
    row.expected = mass;
    row.time_ns = TimeAt(times_ns, index);
    // Without times nothing was averaged either.
    if (index <= times_ns.UBound()) {
      const CalibMassPeakData& peak = outcome.peaks(index);
      row.abundance = peak.AveragedAttribs(1).abundance;
      if (aic) {
        row.voltage = peak.Voltage;
        row.outside_band = OutsideOf(band, peak.Abundance);
      }
    }
    rows.push_back(row);
  }
  return rows;
}

void AddErrors(const masstime::MassTimeModel& model, CalibrationReport& report) {
  std::vector<double> errors_ppm;
  for (MassRow& row : report.masses) {
    if (!row.time_ns) continue;
    row.calculated = masstime::TimeToMass(model, *row.time_ns);
    row.error_ppm = (*row.calculated - row.expected) / row.expected * 1e6;
    errors_ppm.push_back(*row.error_ppm);
  }
  if (errors_ppm.empty()) return;
  report.rms_ppm = masstime::RootMeanSquare(errors_ppm);
  report.max_ppm = 0.0;
  for (const double error : errors_ppm) {
    report.max_ppm = std::max(*report.max_ppm, std::abs(error));
  }
}

std::vector<standin::MeasuredMass> CalibrantsOf(const std::vector<MassRow>& rows) {
  std::vector<standin::MeasuredMass> calibrants;
  calibrants.reserve(rows.size());
  for (const MassRow& row : rows) calibrants.push_back({row.expected, row.time_ns, row.abundance});
  return calibrants;
}

// The same fit as the instrument's, for its leave-one-out figure. None when there are too few
// masses to leave one out.
std::optional<double> LeaveOneOutPpm(const std::vector<MassRow>& rows,
                                     const masstime::AcquisitionWindow& window,
                                     masstime::TermSet terms) {
  std::vector<double> masses;
  std::vector<double> times_ns;
  for (const MassRow& row : rows) {
    if (!row.time_ns) continue;
    masses.push_back(row.expected);
    times_ns.push_back(*row.time_ns);
  }
  try {
    return masstime::FitTerms({masses, times_ns}, window, terms, masstime::Weighting::kRelativeMass)
        .loo_rms_ppm;
  } catch (const masstime::FitError&) {
    return std::nullopt;
  }
}

// A settle wait is made of as many slices as the setting says; one that was cut short by an abort
// counts. Waits without a slice leave no trace and are not counted.
std::int64_t SettleCalls(std::int64_t slices, const standin::InstrumentState& state) {
  if (slices == 0) return 0;
  const std::int64_t slices_per_call =
      ToInt32(standin::CalibrationSettingOf(state, "AICSettlingTime_sec"));
  return (slices + slices_per_call - 1) / slices_per_call;
}

Counts CountsOf(const standin::StandInInstrument& instrument, const native::PortableHost& host) {
  const standin::Counters counted = instrument.Counted();
  const std::int64_t slices = host.SleepsOf(kSettleSliceMilliseconds);
  return {counted.spectra, counted.setpoint_writes, counted.setpoint_reads,
          SettleCalls(slices, instrument.State()), slices};
}

}  // namespace

std::int64_t SpectraCollected(const RunOutcome& outcome, bool aic) {
  return outcome.spectra * (aic ? std::ssize(outcome.masses) : 1);
}

CalibrationReport BuildReport(const RunOutcome& outcome,
                              const standin::StandInInstrument& instrument,
                              const native::PortableHost& host) {
  const standin::InstrumentState& state = instrument.State();
  CalibrationReport report;
  report.ok = outcome.has_coefficients && !outcome.failure;
  report.skipped = !outcome.has_coefficients && !outcome.failure;
  if (outcome.failure) {
    report.status_number = outcome.failure->number;
    report.status_message = outcome.failure->message;
  }
  report.aic = state.gate.Calls(standin::Operation::kAcqControllerEndAIC) > 0;
  report.spectra = outcome.spectra;
  report.masses = RowsOf(outcome, report.aic, standin::TargetBandOf(state));
  if (report.ok) {
    const auto terms = static_cast<masstime::TermSet>(state.in_force.info.PolyTermsFlags);
    report.coefficients = state.in_force.coefficients;
    report.window = WindowOf(state);
    report.terms = NamesOfFitted(terms);
    AddErrors({state.in_force.coefficients, report.window}, report);
    report.loo_ppm = LeaveOneOutPpm(report.masses, report.window, terms);
    report.truth = standin::TruthOf(instrument, CalibrantsOf(report.masses), outcome.spectra,
                                    SpectraCollected(outcome, report.aic));
  }
  report.counts = CountsOf(instrument, host);
  report.instrument_seconds = state.clock->Seconds();
  report.files = host.Files().written;
  return report;
}

}  // namespace tof::cli
