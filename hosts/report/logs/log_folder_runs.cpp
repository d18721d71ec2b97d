#include "hosts/report/logs/log_folder_runs.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <deque>
#include <fstream>
#include <tuple>
#include <utility>

#include "hosts/report/logs/log_lines.h"

namespace tof::report {
namespace {

namespace fs = std::filesystem;

constexpr const char* kDataSetName = "AbImmunecalib_SpotFireDataSetLog.csv";
constexpr const char* kTuneReportName = "TuneReportCalibData.txt";

// Data-set runs that no other log knows are kept up to this number, the newest.
constexpr std::size_t kMostLoneDataSetRuns = 20;

// When a file says it was made: "YYYYMMDD hh:mm:ss" from "..._YYYYMMDD_HHmmss[_N].TXT", and N,
// which tells files of the same second apart.
struct Stamp {
  std::string moment;
  int number = 1;
  friend bool operator<(const Stamp& a, const Stamp& b) {
    return std::tie(a.moment, a.number) < std::tie(b.moment, b.number);
  }
};

bool AreDigits(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(),
                                      [](unsigned char c) { return std::isdigit(c) != 0; });
}

std::string MomentText(const std::string& date, const std::string& time) {
  return date + " " + time.substr(0, 2) + ":" + time.substr(2, 2) + ":" + time.substr(4, 2);
}

Stamp StampOf(const fs::path& file) {
  constexpr std::size_t kDateDigits = 8;
  constexpr std::size_t kTimeDigits = 6;
  const std::string stem = file.stem().string();
  for (std::size_t at = stem.find('_'); at != std::string::npos; at = stem.find('_', at + 1)) {
    const std::string date = stem.substr(at + 1, kDateDigits);
    if (date.size() < kDateDigits || !AreDigits(date)) continue;
    if (stem.size() < at + 2 + kDateDigits + kTimeDigits) continue;
    const std::string time = stem.substr(at + 2 + kDateDigits, kTimeDigits);
    if (stem[at + 1 + kDateDigits] != '_' || !AreDigits(time)) continue;
    Stamp stamp{MomentText(date, time), 1};
    const std::string rest = stem.substr(at + 2 + kDateDigits + kTimeDigits);
    constexpr std::size_t kMostDigits = 6;
    if (rest.size() > 1 && rest.size() <= kMostDigits && rest[0] == '_' &&
        AreDigits(std::string_view(rest).substr(1))) {
      stamp.number = std::stoi(rest.substr(1));
    }
    return stamp;
  }
  return {};
}

enum class LogKind { kNone, kCalibrationLog, kCalibrationData, kAicLog };

// By the first line. A log that was cut within it is told by its name.
LogKind KindOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string start(24, '\0');
  stream.read(start.data(), static_cast<std::streamsize>(start.size()));
  start.resize(static_cast<std::size_t>(stream.gcount()));
  if (StartsWith(start, "===CALIBRATION DATA ")) return LogKind::kCalibrationData;
  if (StartsWith(start, "===CALIBRATION ") && start.size() >= 20) return LogKind::kCalibrationLog;
  if (StartsWith(start, "===AIC ")) return LogKind::kAicLog;
  const std::string name = file.filename().string();
  if (StartsWith(name, "CalibrationLog_")) return LogKind::kCalibrationLog;
  if (StartsWith(name, "CalibrationData")) return LogKind::kCalibrationData;
  if (StartsWith(name, "AIC")) return LogKind::kAicLog;
  return LogKind::kNone;
}

std::vector<fs::path> FilesIn(const fs::path& folder) {
  std::vector<fs::path> files;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end(), [](const fs::path& a, const fs::path& b) {
    const Stamp of_a = StampOf(a);
    const Stamp of_b = StampOf(b);
    if (of_a < of_b || of_b < of_a) return of_a < of_b;
    return a < b;
  });
  return files;
}

bool SameNumber(double a, double b) {
  return a == b || (std::isnan(a) && std::isnan(b));
}

bool SameTimes(const CollectedTimes& a, const CollectedTimes& b) {
  if (a.empty()) return false;
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const std::vector<double>& x, const std::vector<double>& y) {
                      return std::equal(x.begin(), x.end(), y.begin(), y.end(), SameNumber);
                    });
}

const CollectedTimes* TimesOf(const LoggedRun& run) {
  if (run.data && !run.data->times_ns.empty()) return &run.data->times_ns;
  if (run.aic_log && !run.aic_log->times_ns.empty()) return &run.aic_log->times_ns;
  if (run.data_set) return &run.data_set->times_ns;
  return nullptr;
}

// Whether the coefficients give the masses that a calibration data log has. Only those without
// higher terms can be tried: these need the acquisition window, which no log tells.
enum class Fits { kYes, kNo, kCannotTell };

Fits FitsTo(const CoefficientDump& fitted, const CalibrationDataContent& data) {
  const CoefficientRecord& c = fitted.coefficients;
  if (std::any_of(c.begin() + 2, c.end(), [](double term) { return term != 0.0; })) {
    return Fits::kCannotTell;
  }
  // The log has eleven digits of A and t0.
  constexpr double kRelative = 1e-8;
  for (std::size_t m = 0; m < data.masses.size() && m < data.times_ns.size(); ++m) {
    if (data.masses[m].empty() || data.times_ns[m].empty()) continue;
    const double root = c[0] * (data.times_ns[m][0] - c[1]);
    const double mass = data.masses[m][0];
    if (std::isnan(mass)) continue;
    return std::abs(root * root - mass) <= kRelative * mass ? Fits::kYes : Fits::kNo;
  }
  return Fits::kCannotTell;
}

// Brings the files of each run together.
class Assembly {
 public:
  explicit Assembly(LoggedRuns& result) : result_(result) {}

  void ReadAll(const std::vector<fs::path>& files) {
    for (const fs::path& file : files) {
      if (KindOf(file) == LogKind::kCalibrationData) AddData(file);
    }
    for (const fs::path& file : files) {
      if (KindOf(file) == LogKind::kAicLog) AddAicLog(file);
    }
    for (const fs::path& file : files) {
      if (KindOf(file) == LogKind::kCalibrationLog) AddCalibrationLog(file);
    }
    const fs::path data_set = result_.folder / kDataSetName;
    if (fs::exists(data_set)) AddDataSet(data_set);
    const fs::path tune_report = result_.folder / kTuneReportName;
    if (fs::exists(tune_report)) AddTuneReport(tune_report);
    std::stable_sort(result_.runs.begin(), result_.runs.end(),
                     [](const LoggedRun& a, const LoggedRun& b) {
                       return std::tie(a.began, a.order) < std::tie(b.began, b.order);
                     });
  }

 private:
  LoggedRun& NewRun(std::string began) {
    LoggedRun& run = result_.runs.emplace_back();
    run.began = std::move(began);
    return run;
  }

  template <class Condition>
  LoggedRun* Find(Condition condition) {
    const auto found = std::find_if(result_.runs.begin(), result_.runs.end(), condition);
    return found == result_.runs.end() ? nullptr : &*found;
  }

  // Reads a log by its reader; nothing, with a complaint, when it cannot be opened.
  template <class ReadLog>
  void WithLog(const fs::path& file, ReadLog read) {
    std::ifstream bytes(file, std::ios::binary);
    if (bytes) {
      read(LogSource{bytes, file.filename().string()});
    } else {
      result_.problems.push_back({file.filename().string(), 0, "cannot be opened"});
    }
  }

  void AddData(const fs::path& file) {
    WithLog(file, [&](const LogSource& source) {
      NewRun(StampOf(file).moment).data = ReadCalibrationData(source, result_.problems);
    });
  }

  void AddAicLog(const fs::path& file) {
    WithLog(file, [&](const LogSource& source) {
      AttachAicLog(ReadAicLog(source, result_.problems), StampOf(file).moment);
    });
  }

  void AttachAicLog(AicLogContent log, const std::string& moment) {
    LoggedRun* run = Find([&](const LoggedRun& of) {
      return of.data && !of.aic_log && SameTimes(of.data->times_ns, log.times_ns);
    });
    if (run == nullptr) run = &NewRun(moment);
    // It is opened at the beginning of its run.
    if (!moment.empty()) run->began = moment;
    run->aic_log = std::move(log);
  }

  void AddCalibrationLog(const fs::path& file) {
    WithLog(file, [&](const LogSource& source) {
      for (const CalibrationLogPart& part : ReadCalibrationLog(source, result_.problems)) {
        AttachPart(part);
      }
    });
  }

  void AttachPart(const CalibrationLogPart& part) {
    std::vector<FittingPass> passes;
    for (FittingPass& pass : PassesOf(part.dumps)) {
      passes.push_back(std::move(pass));
      LoggedRun* const run = SucceededWith(passes.back());
      // A run ends when it succeeds, breaks off, or was bad twice.
      if (run == nullptr && passes.back().fitted && passes.size() < 2) continue;
      Attach(part, std::exchange(passes, {}), run);
    }
    if (!passes.empty()) Attach(part, std::move(passes), nullptr);
  }

  // The run whose calibration data were written with the fitted coefficients.
  LoggedRun* SucceededWith(const FittingPass& pass) {
    if (!pass.fitted) return nullptr;
    if (LoggedRun* const certain = Find([&](const LoggedRun& of) {
          return of.passes.empty() && of.data && FitsTo(*pass.fitted, *of.data) == Fits::kYes;
        })) {
      return certain;
    }
    return Find([&](const LoggedRun& of) {
      return of.passes.empty() && of.data && FitsTo(*pass.fitted, *of.data) == Fits::kCannotTell &&
             EndsAfter(of, *pass.fitted);
    });
  }

  // Within the time that writing a log takes; a log that doesn't say when it was made may be.
  static bool EndsAfter(const LoggedRun& run, const CoefficientDump& fitted) {
    const std::string ended = StampOf(run.data->file).moment;
    return ended.empty() ||
           (ended >= fitted.time && ended.substr(0, 8) == fitted.time.substr(0, 8));
  }

  void Attach(const CalibrationLogPart& part, std::vector<FittingPass> passes, LoggedRun* run) {
    const CoefficientDump& start = passes.front().start;
    if (run == nullptr && part.damaged) run = EndedAfter(start);
    if (run == nullptr) run = BrokenOffBefore(start.time);
    if (run == nullptr) run = &NewRun(start.time);
    if (!run->aic_log) run->began = start.time;
    run->order = ++logged_in_order_;
    run->calibration_log = part.file;
    run->passes = std::move(passes);
  }

  // A run that succeeded, whose fit a damaged log does not show.
  LoggedRun* EndedAfter(const CoefficientDump& start) {
    return Find(
        [&](const LoggedRun& of) { return of.passes.empty() && of.data && EndsAfter(of, start); });
  }

  // An abundance-immune run without calibration data that began last before `time`.
  LoggedRun* BrokenOffBefore(const std::string& time) {
    LoggedRun* last = nullptr;
    for (LoggedRun& run : result_.runs) {
      const bool lone = run.aic_log && !run.data && run.passes.empty();
      if (lone && run.began <= time && (last == nullptr || run.began > last->began)) last = &run;
    }
    return last;
  }

  void AddDataSet(const fs::path& file) {
    std::deque<DataSetRun> lone;
    const auto take = [&](DataSetRun rows) {
      LoggedRun* const run = Find([&](const LoggedRun& of) {
        const CollectedTimes* const times = TimesOf(of);
        return !of.data_set && times != nullptr && SameTimes(*times, rows.times_ns);
      });
      if (run != nullptr) {
        run->data_set = std::move(rows);
        return;
      }
      lone.push_back(std::move(rows));
      if (lone.size() > kMostLoneDataSetRuns) lone.pop_front();
    };
    WithLog(file, [&](const LogSource& source) { ReadDataSet(source, result_.problems, take); });
    for (DataSetRun& rows : lone) {
      const bool dated = AreDigits(rows.date) && rows.time.size() == 6 && AreDigits(rows.time);
      NewRun(dated ? MomentText(rows.date, rows.time) : "").data_set = std::move(rows);
    }
  }

  void AddTuneReport(const fs::path& file) {
    std::optional<TuneReportContent> report;
    WithLog(file,
            [&](const LogSource& source) { report = ReadTuneReport(source, result_.problems); });
    if (!report) return;
    LoggedRun* const run = Find([&](const LoggedRun& of) {
      const CollectedTimes* const times = TimesOf(of);
      return times != nullptr && !of.tune_report && AreAverages(*times, report->times_ns);
    });
    if (run != nullptr) {
      run->tune_report = *report;
    } else {
      result_.problems.push_back(
          {file.filename().string(), 0, "belongs to a run of which no flight times are logged"});
    }
  }

  static bool AreAverages(const CollectedTimes& times, const std::vector<double>& averages) {
    constexpr double kRelative = 1e-12;
    return std::equal(times.begin(), times.end(), averages.begin(), averages.end(),
                      [](const std::vector<double>& of_mass, double average) {
                        double sum = 0.0;
                        for (const double time : of_mass) sum += time;
                        const double mean = sum / static_cast<double>(of_mass.size());
                        return SameNumber(mean, average) ||
                               std::abs(mean - average) <= kRelative * std::abs(mean);
                      });
  }

  LoggedRuns& result_;
  std::size_t logged_in_order_ = 0;
};

}  // namespace

LoggedRuns RunsInFolder(const fs::path& folder) {
  LoggedRuns result;
  result.folder = fs::is_directory(folder / "Logfiles") ? folder / "Logfiles" : folder;
  Assembly(result).ReadAll(FilesIn(result.folder));
  return result;
}

}  // namespace tof::report
