#include "hosts/drift/data_set_reader.h"

#include <csv.h>
#include <fmt/format.h>

#include <atomic>
#include <charconv>
#include <chrono>
#include <cmath>
#include <fstream>
#include <memory>
#include <optional>
#include <string_view>

#include "instruments/spectra/input_error.h"
#include "instruments/spectra/input_file.h"

namespace tof::drift {
namespace {

using spectra::InputError;
using spectra::Quoted;

constexpr std::string_view kFirstHeading = "Acq Date";
constexpr std::uint64_t kLinesToFindARow = 1000;
constexpr std::uint64_t kRowsBetweenProgress = 1U << 18U;
constexpr std::int64_t kSecondsPerDay = 86'400;

// Gives the CSV reader its bytes; it asks for them in a thread of its own.
class FileBytes : public io::ByteSourceBase {
 public:
  FileBytes(const std::filesystem::path& path, std::shared_ptr<std::atomic<std::uint64_t>> count)
      : file_(spectra::OpenForReading(path)), path_(path), count_(std::move(count)) {}

  int read(char* buffer, int size) override {
    file_.read(buffer, size);
    if (file_.bad()) throw InputError({path_.string()}, "a read that failed", "a readable file");
    const auto got = static_cast<int>(file_.gcount());
    *count_ += static_cast<std::uint64_t>(got);
    return got;
  }

 private:
  std::ifstream file_;
  std::filesystem::path path_;
  std::shared_ptr<std::atomic<std::uint64_t>> count_;
};

// Why a line is no row.
class NoRow : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

template <typename Number>
Number Parsed(std::string_view text, const char* column, const char* expected) {
  Number value{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error == std::errc() && stop == end) return value;
  throw NoRow(fmt::format("{}: found {}, expected {}", column, Quoted(text), expected));
}

// The digits of a date or a time, two or four of them.
int Digits(std::string_view text, std::size_t at, std::size_t count) {
  int value = 0;
  for (const char digit : text.substr(at, count)) value = value * 10 + (digit - '0');
  return value;
}

bool AllDigits(std::string_view text, std::size_t count) {
  return text.size() == count && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// Rows of one calibration share date and time: each text is looked at once.
class MomentParser {
 public:
  std::int64_t Moment(std::string_view date, std::string_view time) {
    if (date != date_) {
      day_start_ = DayStart(date);
      date_ = date;
    }
    if (time != time_) {
      second_ = SecondOfDay(time);
      time_ = time;
    }
    return day_start_ + second_;
  }

 private:
  static std::int64_t DayStart(std::string_view text) {
    if (AllDigits(text, 8)) {
      const std::chrono::year_month_day date{
          std::chrono::year(Digits(text, 0, 4)),
          std::chrono::month(static_cast<unsigned>(Digits(text, 4, 2))),
          std::chrono::day(static_cast<unsigned>(Digits(text, 6, 2)))};
      if (date.ok()) return std::chrono::sys_days(date).time_since_epoch().count() * kSecondsPerDay;
    }
    throw NoRow(fmt::format("Acq Date: found {}, expected YYYYMMDD", Quoted(text)));
  }
  static std::int64_t SecondOfDay(std::string_view text) {
    if (AllDigits(text, 6)) {
      const int hour = Digits(text, 0, 2);
      const int minute = Digits(text, 2, 2);
      const int second = Digits(text, 4, 2);
      if (hour < 24 && minute < 60 && second < 60) return hour * 3600 + minute * 60 + second;
    }
    throw NoRow(fmt::format("Acq Time: found {}, expected HHmmss", Quoted(text)));
  }

  std::string date_;
  std::string time_;
  std::int64_t day_start_ = 0;
  std::int64_t second_ = 0;
};

struct Columns {
  char* date = nullptr;
  char* time = nullptr;
  char* mass = nullptr;
  char* measurement = nullptr;
  char* flight_time = nullptr;
  char* abundance = nullptr;
};

DataRow RowOf(const Columns& columns, MomentParser& moments) {
  DataRow row;
  row.moment = moments.Moment(columns.date, columns.time);
  row.mass = Parsed<std::int32_t>(columns.mass, "MassIdx", "an index");
  row.measurement = Parsed<std::int32_t>(columns.measurement, "MeasurementIdx", "an index");
  row.time_ns = Parsed<double>(columns.flight_time, "TOF", "a flight time in ns");
  row.abundance = Parsed<double>(columns.abundance, "Abundance", "an abundance");
  if (row.mass < 0 || row.mass > kLargestMassIndex) {
    throw NoRow(fmt::format("MassIdx: found {}, expected 0 to {}", row.mass, kLargestMassIndex));
  }
  if (!std::isfinite(row.time_ns) || row.time_ns <= 0.0) {
    throw NoRow(fmt::format("TOF: found {}, expected a positive flight time", row.time_ns));
  }
  if (!std::isfinite(row.abundance)) {
    throw NoRow(fmt::format("Abundance: found {}, expected a finite one", row.abundance));
  }
  return row;
}

class Reading {
 public:
  Reading(const std::filesystem::path& path, const std::function<void(const DataRow&)>& on_row)
      : path_(path.string()),
        on_row_(on_row),
        lines_(path_, std::make_unique<FileBytes>(path, bytes_read_)) {
    lines_.set_header("Acq Date", "Acq Time", "MassIdx", "MeasurementIdx", "TOF", "Abundance");
  }

  ReadingResult Run(const std::function<void(std::uint64_t)>& progress) {
    while (ReadLine()) {
      if ((result_.rows + result_.bad_rows) % kRowsBetweenProgress == 0) progress(*bytes_read_);
      if (result_.rows > 0 || result_.bad_rows < kLinesToFindARow) continue;
      const BadRow& first = result_.first_bad_rows.front();
      throw InputError({path_, static_cast<std::size_t>(first.line), 1},
                       fmt::format("no row in {} lines ({})", kLinesToFindARow, first.why),
                       "a data-set file of abundance-immune calibrations");
    }
    return std::move(result_);
  }

 private:
  // False at the end of the file.
  bool ReadLine() {
    Columns columns;
    try {
      if (!lines_.read_row(columns.date, columns.time, columns.mass, columns.measurement,
                           columns.flight_time, columns.abundance)) {
        return false;
      }
      if (columns.date == kFirstHeading) return true;
      on_row_(RowOf(columns, moments_));
      ++result_.rows;
    } catch (const NoRow& problem) {
      Note(problem.what());
    } catch (const io::error::too_few_columns&) {
      Note("fewer than 6 columns");
    } catch (const io::error::too_many_columns&) {
      Note("more than 6 columns");
    } catch (const io::error::line_length_limit_exceeded&) {
      throw InputError({path_, lines_.get_file_line(), 1}, "a line of more than 16 MB",
                       "rows of six columns");
    }
    return true;
  }

  void Note(std::string why) {
    ++result_.bad_rows;
    if (result_.first_bad_rows.size() == kBadRowsShown) return;
    result_.first_bad_rows.push_back({lines_.get_file_line(), std::move(why)});
  }

  std::string path_;
  const std::function<void(const DataRow&)>& on_row_;
  std::shared_ptr<std::atomic<std::uint64_t>> bytes_read_ =
      std::make_shared<std::atomic<std::uint64_t>>(0);
  io::CSVReader<6, io::trim_chars<' ', '\t'>> lines_;
  MomentParser moments_;
  ReadingResult result_;
};

}  // namespace

ReadingResult ReadDataSet(const std::filesystem::path& path,
                          const std::function<void(const DataRow&)>& on_row,
                          const std::function<void(std::uint64_t)>& progress) {
  return Reading(path, on_row).Run(progress);
}

std::string MomentText(std::int64_t moment) {
  const std::chrono::sys_seconds seconds{std::chrono::seconds(moment)};
  const auto day = std::chrono::floor<std::chrono::days>(seconds);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss time(seconds - day);
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", static_cast<int>(date.year()),
                     static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                     time.hours().count(), time.minutes().count(), time.seconds().count());
}

}  // namespace tof::drift
