#include "hosts/cli/masses.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "instruments/spectra/input_error.h"
#include "instruments/spectra/input_file.h"
#include "instruments/spectra/utf8_path.h"

namespace tof::cli {
namespace {

using spectra::InputError;
using spectra::InputPlace;
using spectra::Quoted;

constexpr std::string_view kBlanks = " \t\r,";

double MassOf(std::string_view text, const InputPlace& place) {
  const std::optional<double> mass = spectra::ParseDouble(text);
  if (!mass || *mass <= 0.0) throw InputError(place, Quoted(text), "a finite, positive mass");
  return *mass;
}

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

struct Column {
  std::string_view text;
  InputPlace place;
};

using Row = std::vector<Column>;

// The columns of `line`, which is the `number`th of `source`, without its comment.
Row ColumnsOf(std::string_view line, const std::string& source, std::size_t number) {
  line = line.substr(0, line.find('#'));
  Row columns;
  std::size_t at = line.find_first_not_of(kBlanks);
  while (at != std::string_view::npos) {
    const std::size_t end = std::min(line.find_first_of(kBlanks, at), line.size());
    columns.push_back({line.substr(at, end - at), {source, number, at + 1}});
    at = line.find_first_not_of(kBlanks, end);
  }
  return columns;
}

// The lines of `text` that hold data. The columns look into `text`.
std::vector<Row> RowsOf(std::string_view text, const std::string& source) {
  std::vector<Row> rows;
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    Row columns = ColumnsOf(text.substr(0, end), source, number);
    if (!columns.empty()) rows.push_back(std::move(columns));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return rows;
}

void RejectIfThere(const std::vector<double>& values, double value, const Column& column) {
  if (std::find(values.begin(), values.end(), value) == values.end()) return;
  throw InputError(column.place, Quoted(column.text) + " a second time", "each value once");
}

}  // namespace

std::vector<double> ParseMassList(std::string_view text, const std::string& source) {
  if (Trimmed(text).empty()) throw InputError({source}, "no masses", "at least one mass");
  std::vector<double> masses;
  for (;;) {
    const std::size_t comma = text.find(',');
    masses.push_back(MassOf(Trimmed(text.substr(0, comma)), {source}));
    if (comma == std::string_view::npos) return masses;
    text.remove_prefix(comma + 1);
  }
}

std::vector<double> MassesFromListOrFile(const std::string& list_or_path) {
  const std::filesystem::path path = spectra::PathOfUtf8(list_or_path);
  std::error_code not_a_file;
  if (!std::filesystem::exists(path, not_a_file)) return ParseMassList(list_or_path, "--masses");
  const std::string text = spectra::ReadWholeFile(path);
  std::vector<double> masses;
  for (const Row& row : RowsOf(text, list_or_path)) {
    masses.push_back(MassOf(row[0].text, row[0].place));
  }
  if (masses.empty()) throw InputError({list_or_path}, "no masses", "at least one mass");
  return masses;
}

MassesAndTimes ReadMassesAndTimes(const std::filesystem::path& path) {
  const std::string text = spectra::ReadWholeFile(path);
  MassesAndTimes result;
  for (const Row& row : RowsOf(text, path.string())) {
    if (row.size() != 2) {
      throw InputError(row[0].place, std::to_string(row.size()) + " columns",
                       "two columns: mass time_ns");
    }
    const double mass = MassOf(row[0].text, row[0].place);
    const std::optional<double> time_ns = spectra::ParseDouble(row[1].text);
    if (!time_ns) {
      throw InputError(row[1].place, Quoted(row[1].text), "a finite flight time in ns");
    }
    RejectIfThere(result.masses, mass, row[0]);
    RejectIfThere(result.times_ns, *time_ns, row[1]);
    result.masses.push_back(mass);
    result.times_ns.push_back(*time_ns);
  }
  if (result.masses.empty()) {
    throw InputError({path.string()}, "no data", "lines of two columns: mass time_ns");
  }
  return result;
}

}  // namespace tof::cli
