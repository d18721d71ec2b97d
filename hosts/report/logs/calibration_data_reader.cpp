#include "hosts/report/logs/calibration_data_reader.h"

#include <fmt/format.h>

#include <array>
#include <utility>

namespace tof::report {
namespace {

using Columns = std::vector<std::vector<double>>;

constexpr std::array<std::string_view, 3> kHeadings{"SpectrumIdx, Measured Flight Times",
                                                    "SpectrumIdx, Calculated Mass",
                                                    "SpectrumIdx, Mass Errors"};

class Reader {
 public:
  Reader(const LogSource& source, std::vector<Problem>& problems)
      : complaints_(source.name, problems), lines_(source.bytes, complaints_) {
    content_.file = source.name;
  }

  CalibrationDataContent Read() {
    while (lines_.Next()) ReadLine(lines_.text());
    if (!section_) {
      complaints_.Add(lines_.number(), "holds no measured flight times");
    } else if (*section_ != kHeadings.size() - 1 || !complete_) {
      complaints_.Add(lines_.number(), "ends before the last of its three sections is complete");
    }
    return std::move(content_);
  }

 private:
  void ReadLine(const std::string& line) {
    if (line.empty() || StartsWith(line, "GainChannel")) return;
    if (const auto ended = Between(line, "===CALIBRATION DATA ", "===")) {
      content_.ended = *ended;
      return;
    }
    for (std::size_t i = 0; i < kHeadings.size(); ++i) {
      if (!StartsWith(line, kHeadings[i])) continue;
      section_ = i;
      rows_ = 0;
      complete_ = false;
      return;
    }
    if (StartsWith(line, "Averages, ")) return;
    if (StartsWith(line, "StdDevs, ")) {
      complete_ = true;
      return;
    }
    ReadRow(line);
  }

  void ReadRow(const std::string& line) {
    const auto numbers = LoggedNumbers(line);
    if (!section_ || !numbers || numbers->size() < 2 ||
        numbers->front() != static_cast<double>(rows_)) {
      complaints_.Unexpected(lines_.number(), line,
                             fmt::format("spectrum {} and a number for each mass", rows_));
      return;
    }
    Columns& columns = Section(*section_);
    const std::size_t masses = numbers->size() - 1;
    if (rows_ == 0) columns.assign(masses, {});
    if (masses != columns.size()) {
      complaints_.Unexpected(lines_.number(), line, fmt::format("{} masses", columns.size()));
      return;
    }
    for (std::size_t m = 0; m < masses; ++m) columns[m].push_back((*numbers)[m + 1]);
    ++rows_;
  }

  Columns& Section(std::size_t section) {
    if (section == 0) return content_.times_ns;
    return section == 1 ? content_.masses : content_.errors_ppm;
  }

  Complaints complaints_;
  LogLines lines_;
  CalibrationDataContent content_;
  std::optional<std::size_t> section_;
  std::size_t rows_ = 0;
  bool complete_ = false;
};

}  // namespace

CalibrationDataContent ReadCalibrationData(const LogSource& source,
                                           std::vector<Problem>& problems) {
  return Reader(source, problems).Read();
}

}  // namespace tof::report
