#include "hosts/report/logs/log_page.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace tof::report {
namespace {

constexpr double kPpm = 1e6;

std::optional<double> MeanOf(const std::vector<double>& values) {
  if (values.empty()) return std::nullopt;
  const double sum = std::accumulate(values.begin(), values.end(), 0.0);
  const double mean = sum / static_cast<double>(values.size());
  if (std::isnan(mean)) return std::nullopt;
  return mean;
}

template <class Row>
const Row* At(const std::vector<Row>& rows, std::size_t index) {
  return index < rows.size() ? &rows[index] : nullptr;
}

const CollectedTimes& TimesOf(const LoggedRun& run) {
  static const CollectedTimes none;
  if (run.data && !run.data->times_ns.empty()) return run.data->times_ns;
  if (run.aic_log && !run.aic_log->times_ns.empty()) return run.aic_log->times_ns;
  return run.data_set ? run.data_set->times_ns : none;
}

const std::vector<double>* AbundancesOf(const LoggedRun& run, std::size_t mass) {
  if (run.data_set && mass < run.data_set->abundances.size()) {
    return &run.data_set->abundances[mass];
  }
  return run.aic_log ? At(run.aic_log->abundances, mass) : nullptr;
}

std::size_t MassesOf(const LoggedRun& run) {
  std::size_t masses = TimesOf(run).size();
  if (run.aic_log && !run.aic_log->survey.empty()) {
    masses = std::max(masses, run.aic_log->survey.front().masses.size());
  }
  return masses;
}

// What the mass and its error came from. The log's fifteen digits are enough for eight decimals.
std::optional<double> ExpectedMass(const CalibrationDataContent& data, std::size_t mass) {
  const auto* const masses = At(data.masses, mass);
  const auto* const errors = At(data.errors_ppm, mass);
  if (masses == nullptr || errors == nullptr) return std::nullopt;
  constexpr double kDecimals = 1e8;
  for (std::size_t i = 0; i < std::min(masses->size(), errors->size()); ++i) {
    const double expected = (*masses)[i] / (1.0 + (*errors)[i] / kPpm);
    if (std::isfinite(expected)) return std::round(expected * kDecimals) / kDecimals;
  }
  return std::nullopt;
}

// With A and t0 alone; higher terms need the acquisition window, which no log tells.
std::optional<double> MassBy(const CoefficientRecord& c, double time_ns) {
  if (std::any_of(c.begin() + 2, c.end(), [](double term) { return term != 0.0; })) {
    return std::nullopt;
  }
  const double root = c[0] * (time_ns - c[1]);
  return root * root;
}

std::optional<double> ErrorBefore(const LoggedRun& run, const Calibrant& of, std::size_t mass) {
  if (of.expected && of.time_ns && !run.passes.empty()) {
    const auto before = MassBy(run.passes.back().start.coefficients, *of.time_ns);
    if (before) return (*before - *of.expected) / *of.expected * kPpm;
  }
  if (!run.tune_report) return std::nullopt;
  const double* const reported = At(run.tune_report->errors_before, mass);
  return reported == nullptr ? std::nullopt : std::optional<double>(*reported);
}

std::vector<Measurement> MeasurementsOf(const LoggedRun& run, std::size_t mass) {
  std::vector<Measurement> measurements;
  const std::vector<double>* const times = At(TimesOf(run), mass);
  if (times == nullptr) return measurements;
  const std::vector<double>* const abundances = AbundancesOf(run, mass);
  for (std::size_t k = 0; k < times->size(); ++k) {
    Measurement one;
    one.number = static_cast<std::int32_t>(k + 1);
    if (std::isfinite((*times)[k])) one.time_ns = (*times)[k];
    if (abundances != nullptr && k < abundances->size()) one.abundance = (*abundances)[k];
    measurements.push_back(one);
  }
  return measurements;
}

void AddFromAicLog(const AicLogContent& log, std::size_t mass, Calibrant& of) {
  if (const double* const voltage = At(log.voltages, mass)) of.voltage = *voltage;
  for (const AicLogSurveyLine& line : log.survey) {
    const AicLogReading* const reading = At(line.masses, mass);
    if (reading) of.survey.push_back({line.voltage, reading->time_ns, reading->abundance});
  }
  const double* const scalar = At(log.scalars, mass);
  if (log.threshold) of.band_high = *log.threshold * (scalar ? *scalar : 1.0);
  for (const AicLogOutside& outside : log.outside) {
    if (outside.mass == mass) of.remark = outside.remark;
  }
  // A search does not say which mass it is for; it ends at the mass's voltage.
  for (const std::vector<SurveyPoint>& search : log.searches) {
    if (!search.empty() && of.voltage && search.back().voltage == *of.voltage) of.choosing = search;
  }
}

Calibrant CalibrantOf(const LoggedRun& run, std::size_t mass) {
  Calibrant of;
  if (run.data) {
    of.expected = ExpectedMass(*run.data, mass);
    if (const auto* const masses = At(run.data->masses, mass)) of.calculated = MeanOf(*masses);
    if (const auto* const errors = At(run.data->errors_ppm, mass)) of.error_ppm = MeanOf(*errors);
  }
  if (const auto* const times = At(TimesOf(run), mass)) of.time_ns = MeanOf(*times);
  if (const auto* const abundances = AbundancesOf(run, mass)) of.abundance = MeanOf(*abundances);
  if (run.aic_log) AddFromAicLog(*run.aic_log, mass, of);
  of.error_before_ppm = ErrorBefore(run, of, mass);
  of.measurements = MeasurementsOf(run, mass);
  return of;
}

void AddErrorFigures(ReportPage& page) {
  double squares = 0.0;
  double largest = 0.0;
  double count = 0.0;
  for (const Calibrant& of : page.calibrants) {
    if (!of.error_ppm) continue;
    squares += *of.error_ppm * *of.error_ppm;
    largest = std::max(largest, std::abs(*of.error_ppm));
    count += 1.0;
  }
  if (count == 0.0) return;
  page.rms_ppm = std::sqrt(squares / count);
  page.max_ppm = largest;
}

void AddCoefficients(const LoggedRun& run, ReportPage& page) {
  page.before_means =
      "\"Before\" are the coefficients that the fit started from: A and t0 as estimated for this "
      "calibration, not those that were in force earlier, which no log records.";
  if (run.passes.empty()) return;
  page.coefficients.before = run.passes.front().start.coefficients;
  if (!run.passes.back().fitted) return;
  page.coefficients.after = run.passes.back().fitted->coefficients;
  page.coefficients.terms = run.passes.back().fitted->terms;
  if (!run.data)
    page.before_means += " \"After\" is what was fitted; it is not known to be in force.";
}

// Of a run without calibration data.
std::string ReasonOf(const LoggedRun& run) {
  if (run.passes.empty()) {
    return "there is no calibration data log of it, and no coefficients are logged";
  }
  if (!run.passes.back().fitted) {
    return "it broke off before new coefficients were fitted, and no log says why";
  }
  if (run.passes.size() > 1) return "the coefficients were bad twice";
  return "coefficients were fitted, but no calibration data log was written, and no log says why";
}

void AddVerdict(const LoggedRun& run, ReportPage& page) {
  if (run.data) {
    page.outcome = Outcome::kCalibrated;
  } else {
    page.outcome = run.passes.empty() ? Outcome::kUnknown : Outcome::kFailed;
    page.reason = ReasonOf(run);
  }
  const bool fit_is_missing = run.data && !run.passes.empty() && !run.passes.back().fitted;
  if (!run.passes.empty() && !fit_is_missing) {
    page.passes = static_cast<std::int32_t>(run.passes.size());
  }
  if (run.aic_log || run.data_set) {
    page.aic = true;
  } else if (run.data) {
    // Every abundance-immune run that collected its points has written rows of the data set.
    page.aic = false;
  }
}

void AddEffect(ReportPage& page) {
  std::vector<AbundancePoint> points;
  for (std::size_t i = 0; i < page.calibrants.size(); ++i) {
    for (const SurveyPoint& point : page.calibrants[i].survey) {
      if (point.time_ns && point.abundance > 0.0) {
        points.push_back({i, *point.time_ns, point.abundance});
      }
    }
  }
  const auto& record = page.coefficients.after ? page.coefficients.after : page.coefficients.before;
  std::optional<double> t0_ns;
  if (record) t0_ns = (*record)[1];
  page.effect = AbundanceEffectOf(points, page.calibrants.size(), t0_ns);
}

std::vector<std::string> FilesOf(const LoggedRuns& logged, const LoggedRun& run) {
  std::vector<std::string> files;
  const auto add = [&](const std::string& name) {
    if (!name.empty()) files.push_back((logged.folder / name).string());
  };
  if (run.aic_log) add(run.aic_log->file);
  add(run.calibration_log);
  if (run.tune_report) add("TuneReportCalibData.txt");
  if (run.data_set) add("AbImmunecalib_SpotFireDataSetLog.csv");
  if (run.data) add(run.data->file);
  return files;
}

std::vector<CountRow> CountsOf(const LoggedRun& run) {
  std::optional<std::int64_t> surveyed;
  if (run.aic_log) surveyed = static_cast<std::int64_t>(run.aic_log->survey.size());
  std::optional<std::int64_t> measured;
  if (!TimesOf(run).empty()) measured = static_cast<std::int64_t>(TimesOf(run).front().size());
  return {{"surveyed", "voltages of the survey that are logged", surveyed},
          {"measured", "measurements per mass that are logged", measured},
          {"spectra", "spectra taken", std::nullopt},
          {"setpoint_writes", "setpoints written", std::nullopt},
          {"setpoint_reads", "setpoints read", std::nullopt},
          {"settle_calls", "waits for the instrument to settle", std::nullopt},
          {"settle_slices", "slices of these waits", std::nullopt}};
}

std::string Told(const LoggedRun& run) {
  std::string text = run.data ? "calibrated" : "not calibrated, as far as is known";
  if (run.aic_log) text += ", AIC log";
  if (!run.aic_log && run.data_set) text += ", abundance-immune without an AIC log";
  if (run.passes.empty()) text += ", no coefficients";
  if (run.passes.size() > 1) text += fmt::format(", {} fitting passes", run.passes.size());
  return text;
}

std::string WhenText(const LoggedRun& run) {
  return run.began.empty() ? "When it began is not recorded" : "Began " + run.began;
}

}  // namespace

std::vector<RunRow> RunRowsOf(const LoggedRuns& logged, std::size_t shown) {
  std::vector<RunRow> rows;
  for (const LoggedRun& run : logged.runs) {
    const std::size_t index = rows.size();
    rows.push_back(
        {index + 1, run.began.empty() ? "not recorded" : run.began, Told(run), index == shown});
  }
  return rows;
}

ReportPage LogPageOf(const LoggedRuns& logged, std::size_t shown) {
  const LoggedRun& run = logged.runs.at(shown);
  ReportPage page;
  page.source = "From the log files in " + logged.folder.string();
  page.moment = WhenText(run);
  AddCoefficients(run, page);
  AddVerdict(run, page);
  for (std::size_t m = 0; m < MassesOf(run); ++m) page.calibrants.push_back(CalibrantOf(run, m));
  AddErrorFigures(page);
  AddEffect(page);
  page.counts = CountsOf(run);
  page.files = FilesOf(logged, run);
  page.problems = logged.problems;
  page.runs = RunRowsOf(logged, shown);
  return page;
}

}  // namespace tof::report
