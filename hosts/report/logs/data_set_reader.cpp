#include "hosts/report/logs/data_set_reader.h"

#include <fmt/format.h>

#include <optional>
#include <utility>

namespace tof::report {
namespace {

constexpr std::string_view kHeading = "Acq Date, Acq Time, MassIdx, MeasurementIdx, TOF, Abundance";

struct Row {
  std::string date;
  std::string time;
  double mass = 0.0;
  double measurement = 0.0;
  double time_ns = 0.0;
  double abundance = 0.0;
};

// The field before the next comma, which is taken away with it.
std::string TakeField(std::string_view& line) {
  const std::size_t comma = line.find(',');
  std::string field(line.substr(0, comma));
  line.remove_prefix(comma == std::string_view::npos ? line.size() : comma + 1);
  field.erase(0, field.find_first_not_of(' '));
  return field;
}

std::optional<Row> RowOf(std::string_view line) {
  Row row;
  row.date = TakeField(line);
  row.time = TakeField(line);
  const auto numbers = LoggedNumbers(line);
  if (!numbers || numbers->size() != 4) return std::nullopt;
  row.mass = (*numbers)[0];
  row.measurement = (*numbers)[1];
  row.time_ns = (*numbers)[2];
  row.abundance = (*numbers)[3];
  return row;
}

class Runs {
 public:
  Runs(Complaints& complaints, const std::function<void(DataSetRun)>& take)
      : complaints_(complaints), take_(take) {}

  void Add(std::size_t line, const Row& row) {
    // Runs of the same second begin anew at the first mass.
    const bool begins = row.mass == 0.0 && row.measurement == 0.0;
    if (begins || row.date != run_.date || row.time != run_.time) Finish(line);
    if (run_.times_ns.empty()) {
      run_.date = row.date;
      run_.time = row.time;
    }
    const auto masses = static_cast<double>(run_.times_ns.size());
    if (row.measurement == 0.0 && row.mass == masses) {
      run_.times_ns.emplace_back();
      run_.abundances.emplace_back();
    } else if (run_.times_ns.empty() || row.mass != masses - 1.0 ||
               row.measurement != static_cast<double>(run_.times_ns.back().size())) {
      complaints_.Add(line, fmt::format("mass {} and measurement {} do not follow the row before",
                                        row.mass, row.measurement));
      return;
    }
    run_.times_ns.back().push_back(row.time_ns);
    run_.abundances.back().push_back(row.abundance);
  }

  void Finish(std::size_t line) {
    if (run_.times_ns.empty()) return;
    if (run_.times_ns.back().size() != run_.times_ns.front().size()) {
      complaints_.Add(line, "a run ends here without all measurements of its last mass");
    }
    take_(std::exchange(run_, {}));
  }

 private:
  Complaints& complaints_;
  const std::function<void(DataSetRun)>& take_;
  DataSetRun run_;
};

}  // namespace

void ReadDataSet(const LogSource& source, std::vector<Problem>& problems,
                 const std::function<void(DataSetRun)>& take) {
  Complaints complaints(source.name, problems);
  LogLines lines(source.bytes, complaints);
  Runs runs(complaints, take);
  while (lines.Next()) {
    if (lines.text() == kHeading || lines.text().empty()) continue;
    if (const auto row = RowOf(lines.text())) {
      runs.Add(lines.number(), *row);
    } else {
      complaints.Unexpected(lines.number(), lines.text(), "a row of six fields");
    }
  }
  runs.Finish(lines.number());
}

}  // namespace tof::report
