#include "hosts/report/logs/tune_report_reader.h"

namespace tof::report {
namespace {

constexpr std::size_t kLinesAlways = 3;
constexpr std::size_t kLinesAfterSuccess = 5;

}  // namespace

std::optional<TuneReportContent> ReadTuneReport(const LogSource& source,
                                                std::vector<Problem>& problems) {
  Complaints complaints(source.name, problems);
  LogLines lines(source.bytes, complaints);
  std::vector<std::vector<double>> rows;
  while (lines.Next()) {
    const auto numbers = LoggedNumbers(lines.text());
    if (!numbers || (!rows.empty() && numbers->size() != rows.front().size())) {
      complaints.Unexpected(lines.number(), lines.text(), "a number for each mass");
      return std::nullopt;
    }
    rows.push_back(*numbers);
  }
  if (rows.size() != kLinesAlways && rows.size() != kLinesAfterSuccess) {
    complaints.Add(lines.number(), "does not have three or five lines");
  }
  if (rows.size() < kLinesAlways) return std::nullopt;
  return TuneReportContent{rows[0], rows[1], rows[2]};
}

}  // namespace tof::report
