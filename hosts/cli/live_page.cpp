#include "hosts/cli/live_page.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <tuple>
#include <utility>

#include "component/automation/convert.h"
#include "component/calibrator/instrument.h"
#include "hosts/cli/coefficient_names.h"
#include "instruments/masstime/mass_time_model.h"
#include "instruments/standin/instrument_access.h"

namespace tof::cli {
namespace {

using report::Observation;
using report::ReportPage;
using report::SpectrumReading;
using report::Stage;

constexpr double kPpm = 1e6;

struct NamedSetpoint {
  std::int32_t id;
  const char* name;
};
constexpr std::array<NamedSetpoint, 10> kSetpointNames{{
    {setpoint::kSampleRate, "sample rate"},
    {setpoint::kScintillator, "scintillator"},
    {setpoint::kCollisionCellVoltage, "collision cell voltage"},
    {setpoint::kFragmentor, "fragmentor"},
    {setpoint::kCalibrantSelection, "calibrant selection"},
    {setpoint::kGainChannelSelect, "gain channel"},
    {setpoint::kHighResEnabled, "high resolution"},
    {setpoint::kFpsMode, "FPS mode"},
    {setpoint::kHighPressureRf, "high-pressure RF"},
    {setpoint::kLowPressureRf, "low-pressure RF"},
}};

std::string NameOfSetpoint(std::int32_t id, std::int32_t moved) {
  if (id == moved) return "RF voltage that abundance-immune calibration moves";
  const auto* const found = std::find_if(kSetpointNames.begin(), kSetpointNames.end(),
                                         [id](const auto& named) { return named.id == id; });
  return found == kSetpointNames.end() ? "" : found->name;
}

const char* NameOf(Stage stage) {
  switch (stage) {
    case Stage::kPreparing:
      return "preparing the instrument";
    case Stage::kEstimating:
      return "estimating A and t0";
    case Stage::kSurveying:
      return "surveying the voltages";
    case Stage::kChoosing:
      return "choosing the voltages";
    case Stage::kCollecting:
      return "collecting flight times";
    case Stage::kAveraging:
      return "averaging";
    case Stage::kFitting:
      return "fitting";
    case Stage::kChecking:
      return "checking the coefficients";
    case Stage::kRecording:
      return "putting the coefficients in force and logging them";
    case Stage::kRestoring:
      return "restoring the instrument";
  }
  return "";
}

// What was measured in the last pass, which is the one that the result is from.
std::vector<const SpectrumReading*> ReadingsOf(const Observation& seen, Stage stage) {
  std::vector<const SpectrumReading*> readings;
  for (const SpectrumReading& reading : seen.spectra) {
    if (reading.pass == seen.passes && reading.stage == stage) readings.push_back(&reading);
  }
  return readings;
}

std::vector<report::SurveyPoint> SurveyOf(const Observation& seen, Stage stage, std::size_t mass) {
  std::vector<report::SurveyPoint> points;
  for (const SpectrumReading* const reading : ReadingsOf(seen, stage)) {
    if (!reading->voltage || mass >= reading->peaks.size()) continue;
    const report::PeakReading& peak = reading->peaks[mass];
    points.push_back({*reading->voltage, peak.time_ns, peak.abundance.value_or(0.0)});
  }
  return points;
}

// The readings that a search for this mass alone was led by.
std::vector<report::SurveyPoint> SearchOf(const Observation& seen, double mass) {
  std::vector<report::SurveyPoint> points;
  for (const report::AbundanceReading& reading : seen.abundances) {
    if (reading.pass != seen.passes || reading.mass != mass || !reading.voltage) continue;
    points.push_back({*reading.voltage, std::nullopt, reading.abundance});
  }
  return points;
}

struct Collection {
  std::vector<const SpectrumReading*> readings;
  bool by_mass = false;
  bool of_all_masses = false;  // each spectrum counts for every mass
  std::size_t spectra = 0;     // per mass
};

Collection CollectionOf(const Observation& seen, bool aic, std::size_t spectra) {
  Collection collection;
  collection.readings = ReadingsOf(seen, Stage::kCollecting);
  collection.spectra = spectra;
  collection.of_all_masses = !aic;
  // The first one of a traditional acquisition is not kept.
  if (!aic && !collection.readings.empty()) {
    collection.readings.erase(collection.readings.begin());
  }
  collection.by_mass =
      !collection.readings.empty() && collection.readings.front()->routine ==
                                          "CollectAdditionalPointsForPurposesOfAveraging_byMass";
  return collection;
}

// The place of `mass` and `measurement` in the order of collection.
std::size_t IndexIn(const Collection& collection, std::size_t mass, std::size_t measurement,
                    std::size_t masses) {
  if (collection.of_all_masses) return measurement;
  return collection.by_mass ? mass * collection.spectra + measurement : measurement * masses + mass;
}

std::vector<report::Measurement> MeasurementsOf(const Collection& collection, std::size_t mass,
                                                std::size_t masses) {
  std::vector<report::Measurement> measurements;
  for (std::size_t k = 0; k < collection.spectra; ++k) {
    const std::size_t index = IndexIn(collection, mass, k, masses);
    if (index >= collection.readings.size()) break;
    const SpectrumReading& reading = *collection.readings[index];
    if (mass >= reading.peaks.size()) break;
    const report::PeakReading& peak = reading.peaks[mass];
    measurements.push_back(
        {static_cast<std::int32_t>(k + 1), peak.time_ns, peak.abundance, reading.at_seconds});
  }
  return measurements;
}

std::string RemarkOn(const MassRow& row) {
  if (!row.time_ns) return "no peak";
  if (!row.outside_band) return "";
  return *row.outside_band == BandSide::kBelow ? "below the band" : "above the band";
}

void AddCalibrants(const CalibrationReport& report, const Watched& watched,
                   const standin::InstrumentState& state, ReportPage& page) {
  const masstime::MassTimeModel before{watched.coefficients_before, standin::WindowOf(state)};
  const standin::AbundanceBand band = standin::TargetBandOf(state);
  const Collection collection = CollectionOf(watched.seen, page.aic.value_or(false),
                                             static_cast<std::size_t>(report.spectra));
  for (const MassRow& row : report.masses) {
    const std::size_t index = page.calibrants.size();
    report::Calibrant& of = page.calibrants.emplace_back();
    of.expected = row.expected;
    of.time_ns = row.time_ns;
    of.calculated = row.calculated;
    of.error_ppm = row.error_ppm;
    of.voltage = row.voltage;
    of.abundance = row.abundance;
    if (report.ok) of.remark = RemarkOn(row);
    if (row.time_ns) {
      const double mass = masstime::TimeToMass(before, *row.time_ns);
      of.error_before_ppm = (mass - row.expected) / row.expected * kPpm;
    }
    of.measurements = MeasurementsOf(collection, index, report.masses.size());
    if (!page.aic.value_or(false)) continue;
    of.band_low = band.minimum;
    of.band_high = band.maximum;
    of.survey = SurveyOf(watched.seen, Stage::kSurveying, index);
    of.choosing = SurveyOf(watched.seen, Stage::kChoosing, index);
    const auto search = SearchOf(watched.seen, row.expected);
    of.choosing.insert(of.choosing.end(), search.begin(), search.end());
  }
}

// A search per mass takes no survey, but a spectrum at each voltage that it chose.
const std::vector<report::SurveyPoint>& SpectraOf(const report::Calibrant& of) {
  return of.survey.empty() ? of.choosing : of.survey;
}

report::AbundanceEffect EffectOf(const ReportPage& page, double t0_ns) {
  std::vector<report::AbundancePoint> points;
  for (std::size_t i = 0; i < page.calibrants.size(); ++i) {
    for (const report::SurveyPoint& point : SpectraOf(page.calibrants[i])) {
      if (point.time_ns && point.abundance > 0.0) {
        points.push_back({i, *point.time_ns, point.abundance});
      }
    }
  }
  if (points.empty() && page.aic == false) {
    report::AbundanceEffect effect;
    effect.not_measured = "a traditional calibration surveys no voltages";
    return effect;
  }
  return report::AbundanceEffectOf(points, page.calibrants.size(), t0_ns);
}

// The values a setpoint had, few of them one by one, many as their range.
std::string WrittenValues(const std::vector<const Variant*>& values) {
  constexpr std::size_t kFew = 4;
  if (values.empty()) return "not written";
  if (values.size() <= kFew) {
    std::string text;
    for (const Variant* const value : values) text += (text.empty() ? "" : ", ") + ToText(*value);
    return text;
  }
  double lowest = ToDouble(*values.front());
  double highest = lowest;
  for (const Variant* const value : values) {
    lowest = std::min(lowest, ToDouble(*value));
    highest = std::max(highest, ToDouble(*value));
  }
  return fmt::format("{} to {} ({} writes)", NumberText(lowest), NumberText(highest),
                     values.size());
}

std::vector<report::SetpointRow> SetpointsOf(const Watched& watched,
                                             const standin::InstrumentState& state) {
  const std::int32_t moved = description::OwnSetpointId(state.description, MovedSetpointOf(state));
  std::vector<report::SetpointRow> rows;
  for (const auto& [id, before] : watched.setpoints_before) {
    std::vector<const Variant*> written;
    for (const report::SetpointWrite& write : watched.seen.writes) {
      if (description::OwnSetpointId(state.description, write.id) == id) {
        written.push_back(&write.value);
      }
    }
    const Variant& after = standin::SetpointOf(state, id).value;
    rows.push_back({std::to_string(id), NameOfSetpoint(id, moved), ToText(before.value),
                    WrittenValues(written), ToText(after), after == before.value});
  }
  return rows;
}

std::string RestoredClause(const std::vector<report::SetpointRow>& rows) {
  std::string changed;
  for (const report::SetpointRow& row : rows) {
    if (row.as_before) continue;
    changed += changed.empty() ? "" : ", ";
    changed += fmt::format("setpoint {} is {} and was {}", row.id, row.after, row.before);
  }
  return changed.empty() ? "every setpoint is as it was before"
                         : "the instrument is not as it was: " + changed;
}

std::string InForceClause(const CalibrationReport& report, const Watched& watched,
                          const standin::InstrumentState& state) {
  const CoefficientRecord& now = state.in_force.coefficients;
  if (report.ok) return "the new coefficients are in force";
  if (now == watched.coefficients_before) return "the coefficients from before are in force";
  if (state.description.default_coefficients && now == *state.description.default_coefficients) {
    return "the default coefficients are in force";
  }
  return "new coefficients are in force all the same";
}

void AddVerdict(const CalibrationReport& report, const Watched& watched,
                const standin::InstrumentState& state, ReportPage& page) {
  page.outcome = report.ok        ? report::Outcome::kCalibrated
                 : report.skipped ? report::Outcome::kSkipped
                                  : report::Outcome::kFailed;
  if (page.outcome == report::Outcome::kFailed) {
    page.reason = fmt::format("[{}] {}", report.status_number, report.status_message);
    if (watched.seen.failed_in) page.stage = NameOf(*watched.seen.failed_in);
  }
  page.passes = watched.seen.passes;
  page.restored = RestoredClause(*page.setpoints);
  page.in_force = InForceClause(report, watched, state);
}

void AddEffort(const CalibrationReport& report, const Observation& seen, ReportPage& page) {
  const Counts& counts = report.counts;
  page.counts = {{"spectra", "spectra taken", counts.spectra},
                 {"setpoint_writes", "setpoints written", counts.setpoint_writes},
                 {"setpoint_reads", "setpoints read", counts.setpoint_reads},
                 {"settle_calls", "waits for the instrument to settle", counts.settle_calls},
                 {"settle_slices", "slices of these waits", counts.settle_slices}};
  page.instrument_seconds = report.instrument_seconds;
  page.wall_seconds = report.wall_seconds;
  page.stages.emplace();
  std::vector<report::StageTime> times = seen.stages;
  std::sort(times.begin(), times.end(), [](const auto& a, const auto& b) {
    return std::tie(a.pass, a.stage) < std::tie(b.pass, b.stage);
  });
  for (const report::StageTime& time : times) {
    if (time.instrument_seconds == 0.0 && time.wall_seconds == 0.0) continue;
    page.stages->push_back(
        {time.pass, NameOf(time.stage), time.instrument_seconds, time.wall_seconds, time.spectra});
  }
}

}  // namespace

std::int32_t MovedSetpointOf(const standin::InstrumentState& state) {
  return ToInt32(standin::CalibrationSettingOf(state, "AIC_SetpointToUse"));
}

report::ReportPage LivePageOf(const CalibrationReport& report, const Watched& watched,
                              const standin::StandInInstrument& instrument) {
  const standin::InstrumentState& state = instrument.State();
  ReportPage page;
  page.instrument = state.description.name;
  page.source = "Watched while it ran";
  page.program = "tofcal " TOF_VERSION;
  page.aic = watched.seen.aic;
  page.before_means =
      "\"Before\" are the coefficients that were in force when the calibration began, \"after\" "
      "those in force at its end.";
  page.setpoints = SetpointsOf(watched, state);
  AddVerdict(report, watched, state, page);
  AddCalibrants(report, watched, state, page);
  page.rms_ppm = report.rms_ppm;
  page.max_ppm = report.max_ppm;
  page.loo_ppm = report.loo_ppm;
  page.coefficients.before = watched.coefficients_before;
  page.coefficients.after = state.in_force.coefficients;
  if (report.ok) page.coefficients.terms = state.in_force.info.PolyTermsFlags;
  page.effect = EffectOf(page, state.in_force.coefficients[masstime::kT0]);
  AddEffort(report, watched.seen, page);
  page.files = report.files;
  return page;
}

}  // namespace tof::cli
